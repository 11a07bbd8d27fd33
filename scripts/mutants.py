#!/usr/bin/env python3
"""Measures the tests by what they catch: changes the sources, one line at a time, and looks which
test fails.

scripts/mutants.toml lists the mutants by file. Each has a name, the old text, which stands once in
the file, the new one, what that breaks, and the tests that could catch it, the likeliest first:
test programs or names of ctest. One that no test is to catch has the reason under `survives`.

    scripts/mutants.py --list                check the list and count it by folder; runs nothing
    scripts/mutants.py                       run every mutant that has no result yet
    scripts/mutants.py NAME... --jobs 1      run these; the start of a path names all below it
    scripts/mutants.py --minutes 60          begin no other one after an hour
    scripts/mutants.py --again NAME...       run these once more, as when a test is new
    scripts/mutants.py --table [--write]     print the table, or put it into docs/reliability.md

All happens in a copy of the sources, build/mutants/src, with the preset dev. The results stand in
build/mutants/results.json, so that a run can be ended and taken up again at any time. They hold for
a mutant and the file that it changes: either of them edited, it runs anew. Tests must pass on the
sources as they are, which is tried first; a failure counts when it comes twice. Exit code 1: the
list has mistakes, a mutant survives that need not, or one is killed that is said to survive.
"""

import argparse
import contextlib
import dataclasses
import hashlib
import itertools
import json
import os
import re
import resource
import signal
import subprocess
import sys
import time
import tomllib
from collections.abc import Iterator
from pathlib import Path

from source_copy import ROOT, SourceCopy, source_files

LIST = ROOT / "scripts/mutants.toml"
PAGE = ROOT / "docs/reliability.md"
COPY = SourceCopy("mutants")
BUILD = COPY.build
MARKS = ("<!-- mutants: begin -->", "<!-- mutants: end -->")

# Random tests are to be the same for all mutants, and to end at their first failure.
TEST_SETTINGS = {"BRADEP_SEED": "1", "GTEST_FAIL_FAST": "1"}
LEAST_TIMEOUT = 60  # seconds
TIMES_AS_LONG = 10  # as on unchanged sources


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    name: str
    old: str
    new: str
    breaks: str
    tests: tuple[str, ...]
    survives: str | None = None

    def changed(self, source: str) -> str:
        return source.replace(self.old, self.new, 1)

    def key(self, source: str) -> str:
        """Another one when the mutant or the file changes."""
        parts = (self.file, self.old, self.new, " ".join(self.tests), source)
        return hashlib.sha256("\0".join(parts).encode()).hexdigest()


@dataclasses.dataclass(frozen=True)
class Test:
    name: str
    command: tuple[str, ...]
    targets: tuple[str, ...]  # of ninja
    folder: str = str(BUILD)
    settings: tuple[str, ...] = ()


@dataclasses.dataclass(frozen=True)
class Outcome:
    seconds: float
    failure: str = ""  # the first test that fails, empty where all pass
    how: str = ""


def read(path: Path) -> str:
    return path.read_text(encoding="utf-8")


def load_list() -> list[Mutant]:
    files = tomllib.loads(read(LIST))
    return [Mutant(file=file, **{**entry, "tests": tuple(entry["tests"])})
            for file, entries in files.items() for entry in entries]


# The list


def line_changes(mutant: Mutant) -> int:
    old, new = mutant.old.split("\n"), mutant.new.split("\n")
    if len(old) != len(new):
        return max(len(old), len(new))
    return sum(a != b for a, b in zip(old, new))


def complaint(mutant: Mutant, known_tests: "Tests") -> str | None:
    path = ROOT / mutant.file
    if not path.is_file():
        return f"there is no {mutant.file}"
    found = read(path).count(mutant.old)
    if found != 1:
        return f"the old text stands {found} times in {mutant.file}"
    if line_changes(mutant) != 1:
        return f"{line_changes(mutant)} lines change"
    if not mutant.tests:
        return "no tests are named"
    missing = [name for name in mutant.tests if known_tests.find(name) is None]
    return f"there is no test {', '.join(missing)}" if missing else None


def complaints(mutants: list[Mutant], known_tests: "Tests") -> list[str]:
    all_of_them = [f"{mutant.name}: {text}" for mutant in mutants
                   if (text := complaint(mutant, known_tests))]
    names = [mutant.name for mutant in mutants]
    all_of_them += [f"{name}: two mutants have this name" for name in sorted(set(names))
                    if names.count(name) > 1]
    return all_of_them


def folder_of(mutant: Mutant) -> str:
    folder = mutant.file.rpartition("/")[0]
    return folder if folder.startswith("tools") else "/".join(folder.split("/")[:3])


def by_folder(mutants: list[Mutant]) -> dict[str, list[Mutant]]:
    folders: dict[str, list[Mutant]] = {}
    for mutant in mutants:
        folders.setdefault(folder_of(mutant), []).append(mutant)
    return folders


def print_counts(mutants: list[Mutant]) -> None:
    for folder, inside in by_folder(mutants).items():
        print(f"{len(inside):5}  {folder}")
    print(f"{len(mutants):5}  in all")


# The copy and its build


def sources_key() -> str:
    """Of all that a test program can depend on."""
    digest = hashlib.sha256()
    for name in source_files():
        if name.startswith(("docs/", "scripts/")) or name.endswith(".md"):
            continue
        digest.update(name.encode() + b"\0" + (ROOT / name).read_bytes() + b"\0")
    return digest.hexdigest()


def build(targets: tuple[str, ...], jobs: int | None) -> str | None:
    """What failed, None where nothing did."""
    command = ["ninja", "-C", str(BUILD), *([] if jobs is None else ["-j", str(jobs)]), *targets]
    done = subprocess.run(command, capture_output=True, text=True, errors="replace")
    return None if done.returncode == 0 else done.stdout + done.stderr


@contextlib.contextmanager
def restored(path: Path) -> Iterator[str]:
    """The text of a file, which it has again in the end."""
    source = read(path)
    try:
        yield source
    finally:
        path.write_text(source, encoding="utf-8")


# The tests


def ninja_targets() -> dict[str, str]:
    command = ["ninja", "-C", str(BUILD), "-t", "targets", "all"]
    lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    return dict(line.split(": ", 1) for line in lines if ": " in line)


def ctest_entries() -> list[dict]:
    command = ["ctest", "--test-dir", str(BUILD), "--show-only=json-v1"]
    output = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return json.loads(output)["tests"]


class Tests:
    """The tests of the copy, by the names that the list has for them."""

    def __init__(self) -> None:
        self._targets = ninja_targets()
        self._programs = {Path(target).name: target for target, rule in self._targets.items()
                          if "EXECUTABLE_LINKER" in rule}
        self._entries = {entry["name"]: entry for entry in ctest_entries() if "command" in entry}

    def find(self, name: str) -> Test | None:
        if target := self._programs.get(name):
            return Test(name, (str(BUILD / target),), (target,))
        entry = self._entries.get(name)
        return None if entry is None else self._of_ctest(entry)

    def _of_ctest(self, entry: dict) -> Test:
        command = tuple(entry["command"])
        inside = [arg.removeprefix(f"{BUILD}/") for arg in command]
        properties = {one["name"]: one["value"] for one in entry["properties"]}
        return Test(entry["name"], command, tuple(arg for arg in inside if arg in self._targets),
                    properties.get("WORKING_DIRECTORY", str(BUILD)),
                    tuple(properties.get("ENVIRONMENT", ())))


def first_failure(output: str, test: Test) -> str:
    """As GoogleTest tells it; the one that ran last where the program was ended in its midst."""
    if failed := re.search(r"^\[  FAILED  \] ([^\s,]+)", output, re.MULTILINE):
        return failed[1]
    begun = re.findall(r"^\[ RUN      \] (\S+)", output, re.MULTILINE)
    return begun[-1] if begun else test.name


def run_test(test: Test, timeout: float, gigabytes: int) -> Outcome:
    settings = {**os.environ, **dict(one.split("=", 1) for one in test.settings), **TEST_SETTINGS}
    most = gigabytes << 30
    start = time.monotonic()
    with open(COPY.folder / "output.txt", "w+", encoding="utf-8", errors="replace") as output:
        process = subprocess.Popen(
            test.command, cwd=test.folder, env=settings, start_new_session=True,
            stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT,
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (most, most)))
        try:
            code = process.wait(timeout)
            how = "" if code == 0 else "fails" if code > 0 else signal.Signals(-code).name
        except subprocess.TimeoutExpired:
            how = "does not end"
        finally:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)  # and what it has started
            process.wait()
        output.seek(0)
        failure = first_failure(output.read(), test) if how else ""
    return Outcome(time.monotonic() - start, failure, how)


# Results


class Results:
    """What is known, kept in a file that is whole at any time."""

    FILE = COPY.folder / "results.json"

    def __init__(self) -> None:
        known = json.loads(read(self.FILE)) if self.FILE.is_file() else {}
        self._mutants: dict[str, dict] = known.get("mutants", {})
        self._unchanged: dict[str, dict] = known.get("unchanged", {})

    def of(self, mutant: Mutant) -> dict | None:
        return self._mutants.get(mutant.key(read(ROOT / mutant.file)))

    def add(self, mutant: Mutant, source: str, result: dict) -> None:
        self._mutants[mutant.key(source)] = {"name": mutant.name, **result}
        self._save()

    def seconds_unchanged(self, test: str, sources: str) -> float | None:
        return self._unchanged.get(sources, {}).get(test)

    def add_unchanged(self, test: str, sources: str, seconds: float) -> None:
        self._unchanged = {sources: {**self._unchanged.get(sources, {}), test: seconds}}
        self._save()

    def _save(self) -> None:
        whole = {"mutants": self._mutants, "unchanged": self._unchanged}
        beside = self.FILE.with_suffix(".new")
        beside.write_text(json.dumps(whole, indent=1, sort_keys=True), encoding="utf-8")
        beside.replace(self.FILE)


class Runner:
    def __init__(self, tests: Tests, results: Results, options: argparse.Namespace) -> None:
        self.tests = tests
        self.results = results
        self.options = options
        self.sources = sources_key()

    def run(self, mutants: list[Mutant]) -> None:
        """Headers come last, since most of all is built again for each."""
        ordered = sorted(mutants, key=lambda mutant: mutant.file.endswith(".hpp"))
        self.try_unchanged(sorted({name for mutant in ordered for name in mutant.tests}))
        end = time.monotonic() + 60 * self.options.minutes
        number = itertools.count(1)
        for file, group in itertools.groupby(ordered, lambda mutant: mutant.file):
            with restored(COPY.sources / file) as source:
                for mutant in group:
                    if time.monotonic() > end:
                        return
                    self.run_one(mutant, source, f"{next(number)}/{len(ordered)}")

    def try_unchanged(self, names: list[str]) -> None:
        unknown = [self.tests.find(name) for name in names
                   if self.results.seconds_unchanged(name, self.sources) is None]
        for test in unknown:
            print(f"unchanged: {test.name}", flush=True)
            if failed := build(test.targets, self.options.jobs):
                sys.exit(f"the sources as they are do not build:\n{failed}")
            outcome = run_test(test, 3600, self.options.memory)
            if outcome.how:
                sys.exit(f"{test.name} does not pass on the sources as they are: "
                         f"{outcome.failure} {outcome.how}")
            self.results.add_unchanged(test.name, self.sources, outcome.seconds)

    def run_one(self, mutant: Mutant, source: str, place: str) -> None:
        start = time.monotonic()
        (COPY.sources / mutant.file).write_text(mutant.changed(source), encoding="utf-8")
        result = {**self.judged(mutant), "seconds": round(time.monotonic() - start)}
        self.results.add(mutant, source, result)
        print(f"{place} {mutant.name}: {shown(result)} ({result['seconds']} s)", flush=True)

    def judged(self, mutant: Mutant) -> dict:
        for test in map(self.tests.find, mutant.tests):
            if failed := build(test.targets, self.options.jobs):
                return {"status": "does not compile", "output": failed[-2000:]}
            usual = self.results.seconds_unchanged(test.name, self.sources)
            timeout = max(LEAST_TIMEOUT, TIMES_AS_LONG * usual)
            # Twice: one that depends on the time or the machine is nobody's killer.
            outcomes = [run_test(test, timeout, self.options.memory)]
            if outcomes[0].how and outcomes[0].how != "does not end":
                outcomes.append(run_test(test, timeout, self.options.memory))
            if all(outcome.how for outcome in outcomes):
                last = outcomes[-1]
                return {"status": "killed", "program": test.name, "test": last.failure,
                        "how": last.how}
        return {"status": "survives"}


def shown(result: dict | None) -> str:
    if result is None:
        return "not run"
    if result["status"] != "killed":
        return result["status"]
    how = "" if result["how"] == "fails" else f" ({result['how']})"
    program = "" if result["program"] == result["test"] else f"{result['program']}: "
    return f"{program}{result['test']}{how}"


# The table


def cell(text: str) -> str:
    return text.replace("|", r"\|")


def row(mutant: Mutant, results: Results) -> str:
    result = results.of(mutant)
    killer = shown(result)
    if result is not None and result["status"] == "killed":
        killer = f"`{killer}`"
    elif result is not None and mutant.survives:
        killer += f": {mutant.survives}"
    return f"| `{mutant.name}` | {cell(mutant.breaks)} | {cell(killer)} |"


def sums(mutants: list[Mutant], results: Results) -> list[str]:
    lines = ["| Folder | Mutants | Killed | Survive | Do not compile | Not run |",
             "|---|---|---|---|---|---|"]
    for folder, inside in [*by_folder(mutants).items(), ("in all", mutants)]:
        known = [results.of(mutant) for mutant in inside]
        states = ["not run" if one is None else one["status"] for one in known]
        counts = [states.count(state)
                  for state in ("killed", "survives", "does not compile", "not run")]
        lines.append(f"| {folder} | {len(inside)} | " + " | ".join(map(str, counts)) + " |")
    return lines


def table(mutants: list[Mutant], results: Results) -> str:
    lines = sums(mutants, results)
    for file, group in itertools.groupby(mutants, lambda mutant: mutant.file):
        lines += ["", f"`{file}`:", "", "| Mutant | What it breaks | Killed by |", "|---|---|---|"]
        lines += [row(mutant, results) for mutant in group]
    return "\n".join(lines) + "\n"


def write_table(text: str) -> None:
    page = read(PAGE)
    before, begin, rest = page.partition(MARKS[0])
    _, end, behind = rest.partition(MARKS[1])
    if not begin or not end:
        sys.exit(f"{PAGE} has no {' and '.join(MARKS)}")
    PAGE.write_text(f"{before}{begin}\n\n{text}\n{end}{behind}", encoding="utf-8")


# The command


def parsed() -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("names", nargs="*", metavar="NAME",
                        help="mutants, or starts of paths; all where none is named")
    parser.add_argument("--list", action="store_true", help="check and count them")
    parser.add_argument("--again", action="store_true", help="also those with a result")
    parser.add_argument("--table", action="store_true", help="print what is known")
    parser.add_argument("--write", action="store_true", help="with --table: into the page")
    parser.add_argument("--jobs", type=int, help="of ninja")
    parser.add_argument("--minutes", type=float, default=float("inf"), help="begin none after")
    parser.add_argument("--memory", type=int, default=16, metavar="GB",
                        help="address space of a test program (default: 16)")
    return parser.parse_args()


def chosen(mutants: list[Mutant], names: list[str]) -> list[Mutant]:
    def is_named(mutant: Mutant, name: str) -> bool:
        return name == mutant.name or ("/" in name and mutant.file.startswith(name))

    for name in names:
        if not any(is_named(mutant, name) for mutant in mutants):
            sys.exit(f"no such mutant: {name}")
    return [mutant for mutant in mutants
            if not names or any(is_named(mutant, name) for name in names)]


def is_as_listed(mutant: Mutant, results: Results) -> bool:
    result = results.of(mutant)
    wanted = "survives" if mutant.survives else "killed"
    return result is None or result["status"] == wanted


def check_and_run(mutants: list[Mutant], options: argparse.Namespace) -> int:
    selected = chosen(mutants, options.names)
    results = Results()
    COPY.update()
    # The list of a program's tests is not asked for while it is built.
    COPY.configure("-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST")
    tests = Tests()
    if mistakes := complaints(mutants, tests):
        print(*mistakes, sep="\n", file=sys.stderr)
        return 1
    if options.list:
        print_counts(selected)
        return 0
    todo = [mutant for mutant in selected if options.again or results.of(mutant) is None]
    Runner(tests, results, options).run(todo)
    wrong = [mutant for mutant in selected if not is_as_listed(mutant, results)]
    for mutant in wrong:
        print(f"{mutant.name}: {shown(results.of(mutant))}", file=sys.stderr)
    return 1 if wrong else 0


def main() -> int:
    options = parsed()
    mutants = load_list()
    if options.table:
        text = table(mutants, Results())
        write_table(text) if options.write else print(text, end="")
        return 0
    with COPY.alone():
        return check_and_run(mutants, options)


def interrupt(*_: object) -> None:
    raise KeyboardInterrupt


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, interrupt)
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(130)
