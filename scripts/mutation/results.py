"""What is known of each mutant, kept in a file that is whole at any time."""

import functools
import json
import threading

from mutation.mutant_list import ROOT, Mutant, read
from mutation.mutant_copy import WORK


class Results:
    FILE = WORK / "results.json"

    def __init__(self) -> None:
        known = json.loads(read(self.FILE)) if self.FILE.is_file() else {}
        self._mutants: dict[str, dict] = known.get("mutants", {})
        self._seconds: dict[str, dict] = known.get("seconds", {})  # of tests, by copy
        self._choices: dict[str, int] = known.get("choices", {})
        self._lock = threading.Lock()

    def of(self, mutant: Mutant) -> dict | None:
        return self._mutants.get(self._key(mutant))

    def add(self, mutant: Mutant, result: dict) -> None:
        self._put(self._mutants, self._key(mutant), {"name": mutant.name, **result})

    def seconds(self, copy: str, test: str) -> float | None:
        """What a test takes while no mutant is in effect."""
        return self._seconds.get(copy, {}).get(test)

    def add_seconds(self, copy: str, test: str, seconds: float) -> None:
        self._put(self._seconds, copy, {**self._seconds.get(copy, {}), test: seconds})

    def choice(self, mutant: Mutant) -> int:
        """Which of its constructs a mutant goes around; those before don't compile."""
        return self._choices.get(self._key(mutant), 0)

    def add_choice(self, mutant: Mutant, choice: int) -> None:
        self._put(self._choices, self._key(mutant), choice)

    @staticmethod
    @functools.cache  # of the sources that the run began with
    def _key(mutant: Mutant) -> str:
        return mutant.key(read(ROOT / mutant.file))

    def _put(self, where: dict, key: str, value: object) -> None:
        with self._lock:
            where[key] = value
            whole = {"mutants": self._mutants, "seconds": self._seconds, "choices": self._choices}
            beside = self.FILE.with_suffix(".new")
            beside.write_text(json.dumps(whole, indent=1, sort_keys=True), encoding="utf-8")
            beside.replace(self.FILE)


def shown(result: dict | None) -> str:
    if result is None:
        return "not run"
    if result["status"] != "killed":
        return result["status"]
    how = "" if result["how"] == "fails" else f" ({result['how']})"
    program = "" if result["program"] == result["test"] else f"{result['program']}: "
    return f"{program}{result['test']}{how}"
