#!/usr/bin/env python3
"""Imports SARIF logs with bradep and compares `bradep show --json` with sarif_reference.py.

Usage: compare_with_reference.py BRADEP DIRECTORY...
Every .sarif file in the directories and in those that BRADEP_SARIF_DIRS names is compared. Both readers
must refuse a file called bad-*.sarif: with exit code 1, one line of message and no output file.
"""

import json
import os
import subprocess
import sys
import tempfile
from pathlib import Path

import sarif_reference

ORDER = [
    *("key", "run", "tool", "rule", "level", "kind", "baselineState", "suppressions"),
    *("message", "locations", "related", "flows", "more", "fingerprints"),
]


def canonical(value):
    """A text that is equal only for equal JSON: 1, 1.0 and true differ, and so do absent and null."""
    return json.dumps(value, sort_keys=True, ensure_ascii=True)


def difference(before, after, path=""):
    """The path of the first difference of two values."""
    if isinstance(before, dict) and isinstance(after, dict):
        for name in sorted({*before, *after}):
            if name not in before or name not in after:
                return f"{path}/{name} only {'before' if name in before else 'after'}"
            if found := difference(before[name], after[name], f"{path}/{name}"):
                return found
    elif isinstance(before, list) and isinstance(after, list):
        if len(before) != len(after):
            return f"{path}: {len(before)} elements, then {len(after)}"
        for at, (one, other) in enumerate(zip(before, after)):
            if found := difference(one, other, f"{path}/{at}"):
                return found
    elif canonical(before) != canonical(after):
        return f"{path}: {before!r:.100}, then {after!r:.100}"
    return None


def no_duplicates(pairs):
    names = [name for name, _ in pairs]
    assert len(names) == len(set(names)), f"a member twice in {names}"
    return dict(pairs)


def run_bradep(bradep, *arguments):
    return subprocess.run([bradep, *arguments], capture_output=True, check=False)


def shown_checks(bradep, result_set):
    shown = run_bradep(bradep, "show", "--json", result_set)
    if shown.returncode != 0 or shown.stderr:
        raise AssertionError(f"show --json: exit code {shown.returncode}, {shown.stderr!r}")
    text = shown.stdout.decode("utf-8")
    assert text == "" or text.endswith("\n"), "the last line has no end"
    for line in text.split("\n")[:-1]:
        check = json.loads(line, object_pairs_hook=no_duplicates)
        assert list(check) == [name for name in ORDER if name in check], f"members {list(check)}"
        yield check


def compare(bradep, log, scratch):
    """Returns the number of checks that agree. Raises AssertionError at the first difference."""
    result_set = scratch / "set.bradep"
    imported = run_bradep(bradep, "import", log, "-o", result_set)
    if log.name.startswith("bad-"):
        return refused(imported, result_set, log)
    assert imported.returncode == 0, imported.stderr.decode(errors="replace")
    assert imported.stderr == b"" and imported.stdout == b"", "import has something to say"
    expected = sarif_reference.checks([log])
    shown = list(shown_checks(bradep, result_set))
    assert len(shown) == len(expected), f"{len(shown)} checks shown, {len(expected)} expected"
    for number, (got, wanted) in enumerate(zip(shown, expected)):
        assert canonical(got) == canonical(wanted), f"check {number}:\n  shown    {got}\n  expected {wanted}"
    return len(shown)


def refused(imported, result_set, log):
    message = imported.stderr.decode()
    assert imported.returncode == 1, f"exit code {imported.returncode}"
    assert message.count("\n") == 1 and message.startswith(f"bradep: {log}:"), message
    assert not result_set.exists(), "a damaged log left a result set"
    try:
        sarif_reference.checks([log])
    except sarif_reference.Damaged:
        return 0
    raise AssertionError("the reference takes this log")


def logs(directories):
    extra = [name for name in os.environ.get("BRADEP_SARIF_DIRS", "").split(":") if name]
    for directory in [*directories, *extra]:
        found = sorted(Path(directory).glob("*.sarif"))
        if not found:
            raise SystemExit(f"no .sarif file in {directory}")
        yield from found


def main(bradep, *directories):
    failed = passed = 0
    for log in logs(directories):
        with tempfile.TemporaryDirectory() as scratch:
            try:
                count = compare(bradep, log, Path(scratch))
                passed += 1
                print(f"ok    {log} ({count} checks)")
            except (AssertionError, sarif_reference.Damaged, ValueError) as difference:
                failed += 1
                print(f"FAIL  {log}: {difference}")
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
    sys.exit(sarif_reference.on_a_deep_stack(lambda: main(*sys.argv[1:])))
