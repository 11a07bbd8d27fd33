"""The tests of a copy, and what happens when one is run."""

import contextlib
import dataclasses
import os
import re
import signal
import subprocess
import tempfile
import time
from collections.abc import Mapping
from pathlib import Path

from mutation.mutant_copy import MutantCopy

# Random tests are to be the same for all mutants, and to end at their first failure.
TEST_SETTINGS = {"BRADEP_SEED": "1", "GTEST_FAIL_FAST": "1"}


@dataclasses.dataclass(frozen=True)
class Test:
    name: str
    command: tuple[str, ...]
    targets: tuple[str, ...]  # of ninja
    folder: str
    settings: tuple[str, ...] = ()


@dataclasses.dataclass(frozen=True)
class Outcome:
    seconds: float
    failure: str = ""  # the first test that fails, empty where all pass
    how: str = ""


def only_failed(test: Test, failure: str) -> Test:
    """The one test of a program that failed."""
    if failure == test.name:
        return test
    return dataclasses.replace(test, command=(*test.command, f"--gtest_filter={failure}"))


class Tests:
    """By the names that the list of mutants has for them."""

    def __init__(self, copy: MutantCopy) -> None:
        self._folder = str(copy.build_folder)
        self._targets = copy.ninja_targets()
        self._programs = {Path(target).name: target for target, rule in self._targets.items()
                          if "EXECUTABLE_LINKER" in rule}
        self._entries = {entry["name"]: entry for entry in copy.ctest_entries()
                         if "command" in entry}

    def find(self, name: str) -> Test | None:
        if target := self._programs.get(name):
            return Test(name, (f"{self._folder}/{target}",), (target,), self._folder)
        entry = self._entries.get(name)
        return None if entry is None else self._of_ctest(entry)

    def _of_ctest(self, entry: dict) -> Test:
        command = tuple(entry["command"])
        inside = [arg.removeprefix(f"{self._folder}/") for arg in command]
        properties = {one["name"]: one["value"] for one in entry["properties"]}
        return Test(entry["name"], command, tuple(arg for arg in inside if arg in self._targets),
                    properties.get("WORKING_DIRECTORY", self._folder),
                    tuple(properties.get("ENVIRONMENT", ())))


def first_failure(output: str, test: Test) -> str:
    """As GoogleTest reports it; the test that ran last if the program was ended during it."""
    if failed := re.search(r"^\[  FAILED  \] ([^\s,]+)", output, re.MULTILINE):
        return failed[1]
    begun = re.findall(r"^\[ RUN      \] (\S+)", output, re.MULTILINE)
    return begun[-1] if begun else test.name


def run_test(test: Test, timeout: float, gigabytes: int, extra: Mapping[str, str] = {}) -> Outcome:
    settings = {**os.environ, **dict(one.split("=", 1) for one in test.settings), **TEST_SETTINGS,
                **extra}
    command = ["prlimit", f"--as={gigabytes << 30}", *test.command]
    start = time.monotonic()
    with tempfile.TemporaryFile("w+", encoding="utf-8", errors="replace") as output:
        process = subprocess.Popen(command, cwd=test.folder, env=settings, start_new_session=True,
                                   stdin=subprocess.DEVNULL, stdout=output,
                                   stderr=subprocess.STDOUT)
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
