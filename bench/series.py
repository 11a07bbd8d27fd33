#!/usr/bin/env python3
"""Measures what `bradep track` takes to add a run to a series.

  series.py [--findings N] [--runs R] BUILD

BUILD is the build directory; `bradep` is its target. There are R imported result sets of N findings. In each, one
finding in a hundred is new, one is gone for good, one in a hundred is missing and comes back in the next run, and
lines have moved. Each run is added by a command of its own. The table has user and system time, and the size of
the database.
"""

import argparse
import json
import pathlib
import resource
import subprocess
import tempfile

from diffs import FINDINGS_OF_FILE, result


def write_log(path, count, run):
    first = run * (count // 100)
    with open(path, "w", encoding="utf-8") as out:
        out.write('{"version": "2.1.0", "runs": [{"tool": {"driver": {"name": "Maker"}}, "results": [')
        findings = (number for number in range(first, first + count) if (number + run) % 100)
        for i, number in enumerate(findings):
            line = 10 + number % FINDINGS_OF_FILE * 7 + run * (number // FINDINGS_OF_FILE % 5)
            out.write(("" if i == 0 else ",\n") + json.dumps(result(number, line, False)))
        out.write("]}]}")


def seconds_of(*command):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    done = subprocess.run([str(part) for part in command], check=True, capture_output=True, text=True)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime, done.stdout.strip()


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--findings", type=int, default=10000)
    parser.add_argument("--runs", type=int, default=50)
    parser.add_argument("build", type=pathlib.Path)
    arguments = parser.parse_args()
    bradep = (arguments.build / "tools" / "bradep").resolve()
    print("| run | seconds | database, MB | `diff` of the last two runs, seconds |\n|---|---|---|---|")
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        before = None
        for run in range(1, arguments.runs + 1):
            log, made = directory / "log", directory / f"{run}.set"
            write_log(log, arguments.findings, run)
            subprocess.run([bradep, "import", log, "-o", made], check=True)
            seconds, line = seconds_of(bradep, "track", directory / "series", made)
            if run <= 2 or run % 5 == 0:
                size = (directory / "series" / "track.db").stat().st_size / 1e6
                diff = f"{seconds_of(bradep, 'diff', before, made)[0]:.2f}" if before else ""
                print(f"| {run} | {seconds:.2f} | {size:.1f} | {diff} |", flush=True)
            if before:
                before.unlink()
            before = made
        print("\n" + line)


if __name__ == "__main__":
    main()
