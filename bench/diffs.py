#!/usr/bin/env python3
"""Measures `bradep diff` beside verifying both result sets and reading their tables.

  diffs.py [--rounds R] [--sizes N,...] [--multitool PROGRAM] BUILD

BUILD is the build directory; `bradep` is its target. For each size, two logs of so many findings are made, with
lines moved, one finding in a hundred gone, one new and one changed; each tenth has a flow of three steps. All
commands run in turns, R times (3 by default); the table has the medians of user and system time. With the
executable of the SARIF Multitool, `match-results-forward` is measured over the same logs.

Memory is what the process has of its own at its peak, without the pages of mapped files, for each finding of
both sides.
"""

import argparse
import json
import math
import os
import pathlib
import random
import resource
import statistics
import subprocess
import sys
import tempfile
import time

RULES = [f"group{i % 5}/rule{i}" for i in range(40)]
FINDINGS_OF_FILE = 50
# What a diff reads, with all columns: no views, which look up other records for each row.
TABLES = ["checks", "checks__failure__steps", "checks__failure__named_ints", "check_data",
          "check_data__p1__signature_locations", "events", "infos"]


def result(number, line, changes):
    rng = random.Random(number)
    uri = f"src/part{number // FINDINGS_OF_FILE % 20}/file{number // FINDINGS_OF_FILE}.c"
    place = {"artifactLocation": {"uri": uri},
             "region": {"startLine": line, "startColumn": rng.randint(1, 60)}}
    made = {"ruleId": rng.choice(RULES), "level": "error" if changes else "warning",
            "message": {"text": f"The value of 'name{rng.randrange(200)}' is not used, stored at line {line - 1}"},
            "locations": [{"physicalLocation": place,
                           "logicalLocations": [{"name": f"function{number // 5}"}]}],
            "partialFingerprints": {"context/v1": f"{rng.getrandbits(24):06x}"}}
    if number % 10 == 0:
        made["codeFlows"] = [{"threadFlows": [{"locations": [
            {"location": {"message": {"text": f"step {i}"}, "physicalLocation": place}} for i in range(3)]}]}]
    return made


def write_log(path, count, side):
    """Of a hundred findings of a side, one is not on the other side."""
    with open(path, "w", encoding="utf-8") as out:
        out.write('{"version": "2.1.0", "runs": [{"tool": {"driver": {"name": "Maker"}}, "results": [')
        first = True
        for number in range(count + count // 100):
            if number % 101 == side:
                continue
            line = 10 + number % FINDINGS_OF_FILE * 7 + side * (number // 13 % 5)
            out.write("" if first else ",\n")
            out.write(json.dumps(result(number, line, side == 1 and number % 101 == 50)))
            first = False
        out.write("]}]}")


def columns_of(bradep, file, table):
    done = subprocess.run([bradep, "sql", "--format", "csv", file, f"SELECT * FROM {table} LIMIT 0"],
                          check=True, capture_output=True, text=True)
    return done.stdout.strip().split(",")


def reading(bradep, file):
    """A statement that reads all columns of all rows."""
    parts = []
    for table in TABLES:
        columns = " + ".join(f'coalesce(length("{name}"), 0)' for name in columns_of(bradep, file, table))
        parts.append(f"SELECT total({columns}) FROM {table}")
    return "; ".join(parts)


class Command:
    def __init__(self, name, *commands):
        self.name, self.commands = name, commands
        self.times, self.memory = [], []

    def run(self):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        peak = 0
        for command in self.commands:
            process = subprocess.Popen([str(part) for part in command], stdout=subprocess.DEVNULL,
                                       env={**os.environ, "DOTNET_SYSTEM_GLOBALIZATION_INVARIANT": "1"})
            peak = max(peak, peak_of_own_memory(process))
            if process.returncode != 0:
                sys.exit(f"{command} failed")
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        self.times.append(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
        self.memory.append(peak)

    @property
    def seconds(self):
        return statistics.median(self.times)


def peak_of_own_memory(process):
    """The peak of the process's anonymous memory in bytes, looked at every two milliseconds."""
    peak = 0
    while process.poll() is None:
        try:
            with open(f"/proc/{process.pid}/status", encoding="ascii") as status:
                for line in status:
                    if line.startswith("RssAnon:"):
                        peak = max(peak, 1024 * int(line.split()[1]))
        except OSError:
            pass
        time.sleep(0.002)
    return peak


def commands_of(bradep, directory, size, multitool):
    logs = [directory / f"{size}-{side}.sarif" for side in ["old", "new"]]
    sets = [log.with_suffix(".set") for log in logs]
    for side, (log, made) in enumerate(zip(logs, sets)):
        write_log(log, size, side)
        subprocess.run([bradep, "import", log, "-o", made], check=True)
    commands = [
        Command("verify both", [bradep, "verify", "-q", *sets]),
        Command("read the tables of both", *([bradep, "sql", file, reading(bradep, file)] for file in sets)),
        Command("`diff`, text", [bradep, "diff", *sets]),
        Command("`diff --format json`", [bradep, "diff", "--format", "json", *sets]),
    ]
    if multitool:
        commands.append(Command("`match-results-forward` over the logs",
                                [multitool, "match-results-forward", logs[1], "--previous", logs[0],
                                 "--output-file-path", directory / "matched.sarif", "--log", "ForceOverwrite"]))
    return commands


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--sizes", default="10000,100000")
    parser.add_argument("--multitool", type=pathlib.Path)
    parser.add_argument("build", type=pathlib.Path)
    arguments = parser.parse_args()
    bradep = (arguments.build / "tools" / "bradep").resolve()
    sizes = [int(size) for size in arguments.sizes.split(",")]
    with tempfile.TemporaryDirectory() as name:
        commands = {size: commands_of(bradep, pathlib.Path(name), size, arguments.multitool) for size in sizes}
        for turn in range(arguments.rounds):
            print(f"turn {turn + 1} of {arguments.rounds}", file=sys.stderr)
            for of_size in commands.values():
                for command in of_size:
                    command.run()
    print("| findings a side |  | seconds | times verifying and reading | own memory, bytes a finding |\n"
          "|---|---|---|---|---|")
    for size, of_size in commands.items():
        reference = of_size[0].seconds + of_size[1].seconds
        for command in of_size:
            print(f"| {size:,} | {command.name} | {command.seconds:.2f} | {command.seconds / reference:.2f} "
                  f"| {statistics.median(command.memory) / (2 * size):.0f} |")
    if len(sizes) > 1:
        first, last = commands[sizes[0]][2], commands[sizes[-1]][2]
        exponent = math.log(last.seconds / first.seconds) / math.log(sizes[-1] / sizes[0])
        print(f"\nThe time of `diff` grows with the exponent {exponent:.2f} from {sizes[0]:,} to {sizes[-1]:,}.")


if __name__ == "__main__":
    main()
