"""Builds mutants and runs their tests: all that can be in one build, the others one by one."""

import argparse
import concurrent.futures
import itertools
import os
import re
import sys
import tempfile
import threading
import time
from collections.abc import Callable, Mapping
from pathlib import Path

from mutation.mutant_list import ROOT, Mutant, by_file, read
from mutation.results import Results, shown
from mutation.schemata import HEADER, HEADER_TEXT, Change, Schema
from mutation.mutant_copy import WORK, MutantCopy
from mutation.tests import Test, Tests, only_failed, run_test

LEAST_TIMEOUT = 60  # seconds
TIMES_AS_LONG = 10  # as without a mutant
PLACE_OF_ERROR = re.compile(r"^(?P<file>[^\s:]+):(?P<line>\d+):(?P<column>\d+):", re.MULTILINE)


class Judge:
    """Runs a mutant's tests in a copy."""

    def __init__(self, copy: MutantCopy, results: Results, options: argparse.Namespace) -> None:
        self.copy = copy
        self.results = results
        self.options = options
        self.tests = Tests(copy)
        self.key = copy.key()
        self.end = time.monotonic() + 60 * options.minutes
        self.stop = threading.Event()

    def goes_on(self) -> bool:
        return not self.stop.is_set() and time.monotonic() < self.end

    def try_unchanged(self, name: str) -> None:
        if self.results.seconds(self.key, name) is not None or not self.goes_on():
            return
        outcome = run_test(self.tests.find(name), 3600, self.options.memory)
        if outcome.how:
            sys.exit(f"{name} does not pass without a mutant: {outcome.failure} {outcome.how}")
        self.results.add_seconds(self.key, name, outcome.seconds)
        print(f"without a mutant: {name} ({outcome.seconds:.0f} s)", flush=True)

    def killed_by(self, test: Test, settings: Mapping[str, str]) -> dict | None:
        usual = self.results.seconds(self.key, test.name)
        timeout = max(LEAST_TIMEOUT, TIMES_AS_LONG * usual)
        outcome = run_test(test, timeout, self.options.memory, settings)
        if outcome.how and outcome.how != "does not end":
            # Twice: a test that depends on the time or the machine is nobody's killer.
            again = only_failed(test, outcome.failure)
            outcome = run_test(again, timeout, self.options.memory, settings)
            if not outcome.how:  # it may need those before it
                outcome = run_test(test, timeout, self.options.memory, settings)
        if not outcome.how:
            return None
        return {"status": "killed", "program": test.name, "test": outcome.failure,
                "how": outcome.how}


class BuiltApart:
    """One mutant after the other in the sources as they are."""

    def __init__(self, copy: MutantCopy, results: Results, options: argparse.Namespace) -> None:
        self.judge = Judge(copy, results, options)

    def run(self, mutants: list[Mutant]) -> None:
        """Headers come last, since most of all is built again for each."""
        ordered = sorted(mutants, key=lambda mutant: (
            mutant.file.endswith(".hpp"), mutant.file.startswith("sml/core/")))
        core = [one.name for one in ordered if re.match(r"sml/core/.*\.hpp", one.file)]
        print(f"built apart: {len(ordered)} mutants, {len(core)} of them in headers of sml/core",
              flush=True)
        for name in sorted({name for mutant in ordered for name in mutant.tests}):
            self._try_unchanged(name)
        number = itertools.count(1)
        for file, group in by_file(ordered):
            with self.judge.copy.restored(file) as source:
                for mutant in group:
                    if not self.judge.goes_on():
                        return
                    self._run_one(mutant, source, f"{next(number)}/{len(ordered)}")

    def _try_unchanged(self, name: str) -> None:
        if self.judge.results.seconds(self.judge.key, name) is not None:
            return
        targets = self.judge.tests.find(name).targets
        if failed := self.judge.copy.build(targets, self.judge.options.jobs):
            sys.exit(f"the sources as they are do not build:\n{failed}")
        self.judge.try_unchanged(name)

    def _run_one(self, mutant: Mutant, source: str, place: str) -> None:
        start = time.monotonic()
        path = self.judge.copy.folder / mutant.file
        path.write_text(mutant.changed(source), encoding="utf-8")
        result = {**self._judged(mutant), "built": "apart"}
        report(self.judge.results, mutant, result, start, place)

    def _judged(self, mutant: Mutant) -> dict:
        for test in map(self.judge.tests.find, mutant.tests):
            if failed := self.judge.copy.build(test.targets, self.judge.options.jobs):
                return {"status": "does not compile", "output": failed[-2000:]}
            if killed := self.judge.killed_by(test, {}):
                return killed
        return {"status": "survives"}


class BuiltTogether:
    """All mutants that can be chosen at run time, in one build."""

    # Neither warnings nor debugging: the code is the tool's, and is looked at by nobody.
    FLAGS = "-O1 -w -fdiagnostics-color=never -fdiagnostics-column-unit=byte"

    def __init__(self, mutants: list[Mutant], results: Results,
                 options: argparse.Namespace) -> None:
        self.results = results
        self.options = options
        self.copy = MutantCopy(WORK / "together", self.FLAGS)
        self.mutants = {mutant.number: mutant for mutant in mutants}
        self.schemata = {file: schema_of(file, group, results) for file, group in by_file(mutants)}

    def has(self, mutant: Mutant) -> bool:
        return mutant.number in self.schemata[mutant.file].numbers()

    def run(self, mutants: list[Mutant]) -> list[Mutant]:
        """Returns those that must be built apart."""
        start = time.monotonic()
        self._update()
        self.copy.configure()
        tests = Tests(self.copy)
        names = sorted({name for mutant in mutants for name in mutant.tests})
        # The libraries first: tests take longer to build.
        self._build(("bradep",))
        self._build(tuple({target for name in names for target in tests.find(name).targets}))
        chosen = [mutant for mutant in mutants if self.has(mutant)]
        print(f"built together: {len(chosen)} mutants ({time.monotonic() - start:.0f} s)",
              flush=True)
        judge = Judge(self.copy, self.results, self.options)
        at_once(judge, [lambda name=name: judge.try_unchanged(name) for name in names])
        apart = [mutant for mutant in mutants if not self.has(mutant)]
        at_once(judge, [lambda mutant=mutant, place=f"{i}/{len(chosen)}":
                        self._run_one(judge, mutant, place, apart)
                        for i, mutant in enumerate(chosen, 1)])
        return apart

    def _update(self) -> None:
        texts = {file: schema.text() for file, schema in self.schemata.items()}
        self.copy.update({**texts, HEADER: HEADER_TEXT})

    def _build(self, targets: tuple[str, ...]) -> None:
        while failed := self.copy.build(targets, self.options.jobs, "-k", "0"):
            moved = self._due_to(failed)
            if not moved:
                sys.exit(f"does not build, which is due to no mutant:\n{failed[-20000:]}")
            for number in sorted(moved):
                mutant = self.mutants[number]
                schema = self.schemata[mutant.file]
                schema.choose_larger(number)
                self.results.add_choice(mutant, schema.placed[number].choice)
                print(f"{mutant.name}: its code does not compile; "
                      f"{'the next construct' if self.has(mutant) else 'built apart'}", flush=True)
            self._update()

    def _due_to(self, output: str) -> set[int]:
        """The mutants that errors of the compiler are due to."""
        numbers: set[int] = set()
        for message in re.split(r"\n(?=[^\s:]+:\d+:\d+: (?:fatal )?error: )", output):
            if " error: " not in message:
                continue
            owners = [self._owners(found) for found in PLACE_OF_ERROR.finditer(message)]
            numbers.update(next(filter(None, owners), ()))
        return numbers

    def _owners(self, found: re.Match) -> tuple[int, ...]:
        path = Path(os.path.normpath(self.copy.build_folder / found["file"]))
        if not path.is_relative_to(self.copy.folder):
            return ()
        schema = self.schemata.get(path.relative_to(self.copy.folder).as_posix())
        return schema.owners(int(found["line"]), int(found["column"])) if schema else ()

    def _run_one(self, judge: Judge, mutant: Mutant, place: str, apart: list[Mutant]) -> None:
        if not judge.goes_on():
            return
        start = time.monotonic()
        with tempfile.TemporaryDirectory() as folder:
            reached = Path(folder) / "reached"
            settings = {"BRADEP_MUTANT": str(mutant.number),
                        "BRADEP_MUTANT_REACHED": str(reached)}
            for test in map(judge.tests.find, mutant.tests):
                if result := judge.killed_by(test, settings):
                    break
                if not judge.goes_on():
                    return
            else:
                result = {"status": "survives"}
            if not reached.exists():
                print(f"{mutant.name}: the tests never reach it; built apart", flush=True)
                apart.append(mutant)
                return
        report(judge.results, mutant, {**result, "built": "together"}, start, place)


def schema_of(file: str, mutants: list[Mutant], results: Results) -> Schema:
    text = read(ROOT / file)
    schema = Schema(text, [Change.of(mutant.number, text, mutant.old, mutant.new)
                           for mutant in mutants])
    for mutant in mutants:
        schema.choose_larger(mutant.number, results.choice(mutant))
    return schema


def at_once(judge: Judge, calls: list[Callable[[], None]]) -> None:
    most = judge.options.jobs or os.cpu_count()
    with concurrent.futures.ThreadPoolExecutor(most) as pool:
        futures = [pool.submit(call) for call in calls]
        try:
            for future in concurrent.futures.as_completed(futures):
                future.result()
        except BaseException:
            judge.stop.set()
            raise


def report(results: Results, mutant: Mutant, result: dict, start: float, place: str) -> None:
    result["seconds"] = round(time.monotonic() - start)
    results.add(mutant, result)
    print(f"{place} {mutant.name}: {shown(result)} ({result['seconds']} s)", flush=True)
