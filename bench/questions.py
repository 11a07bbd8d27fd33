#!/usr/bin/env python3
"""Measures `bradep sql`, `list` and `export`, beside other tools that answer the same questions.

  questions.py [--rounds R] [--checks N] [--multitool PROGRAM [--sarif LOG]] [--duckdb DIR] BUILD

BUILD is the build directory; `bradep` and `make_workload` are its targets. All commands run in
turns, R times (5 by default); the table has the medians. `jq` takes part if it is installed, DuckDB
if DIR is a directory with the npm module @duckdb/node-api in it, and the SARIF Multitool if PROGRAM
is its executable; it asks LOG, or a log of N findings that is made here.

Memory is what the process has of its own at its peak, without the pages of mapped files.
"""

import argparse
import json
import math
import os
import pathlib
import random
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "tests" / "tables"))
sys.dont_write_bytecode = True
import fleet

ROOT = "Application_Results_Application_Results"
SMALL_FILES = 1000
BY_CATEGORY = "SELECT rule, category, count(*) FROM findings GROUP BY 1, 2"
JOIN = ("SELECT count(*), max(s.uri) FROM steps AS s JOIN findings AS f"
        " USING (result_set, finding) WHERE f.level <> 'none'")
JQ_BY_CATEGORY = "reduce inputs as $check ({}; .[$check[1].category.arm] += 1)"
DUCKDB_BY_CATEGORY = """
const duckdb = require('@duckdb/node-api');
(async () => {
  const connection = await (await duckdb.DuckDBInstance.create()).connect();
  const rows = await connection.runAndReadAll(
    "SELECT json->1->'category'->>'arm' AS category, count(*) FROM read_json_objects('" +
    process.argv[1] + "', format = 'newline_delimited', maximum_object_size = 268435456) GROUP BY 1");
  console.log(rows.getRowsJson().length);
})();
"""


def peak_of_own_memory(process):
    """The peak of the process's anonymous memory in MB, looked at every two milliseconds."""
    peak = 0
    while process.poll() is None:
        try:
            with open(f"/proc/{process.pid}/status") as status:
                for line in status:
                    if line.startswith("RssAnon:"):
                        peak = max(peak, int(line.split()[1]))
        except OSError:
            pass
        time.sleep(0.002)
    return peak / 1000


def shell_quoted(command):
    return " ".join(part if part.isalnum() else f"'{part}'" for part in command)


class Command:
    def __init__(self, name, command, size=0, before=None, environment=None, directory=None):
        self.name, self.command, self.size, self.before = name, command, size, before
        self.environment, self.directory = environment, directory
        self.times, self.memory = [], []

    def run(self):
        if self.before:
            self.before()
        start = time.perf_counter()
        process = subprocess.Popen([str(part) for part in self.command], cwd=self.directory,
                                   stdout=subprocess.DEVNULL,
                                   env={**os.environ, **(self.environment or {})})
        self.memory.append(peak_of_own_memory(process))
        self.times.append(time.perf_counter() - start)
        if process.returncode != 0:
            sys.exit(f"{shell_quoted(map(str, self.command))} failed")

    @property
    def seconds(self):
        return statistics.median(self.times)


def removed(path):
    def remove():
        if path.is_dir():
            shutil.rmtree(path)
        path.unlink(missing_ok=True)
    return remove


def commands_over(bradep, file, directory):
    size = file.stat().st_size / 1e6
    root = ["--root", ROOT]
    database = directory / "out.db"
    files = directory / "csv"
    return [
        Command("`verify`", [bradep, "verify", *root, file]),
        Command("findings by rule and category", [bradep, "sql", *root, file, BY_CATEGORY]),
        Command("`list --category OVFL --count`",
                [bradep, "list", *root, "--category", "OVFL", "--count", file]),
        Command("findings joined with steps", [bradep, "sql", *root, file, JOIN]),
        Command("`stats`", [bradep, "stats", *root, file]),
        Command("`export --sqlite`", [bradep, "export", *root, "--sqlite", database, file], size,
                removed(database)),
        Command("`export --csv`", [bradep, "export", *root, "--csv", files, file], size,
                removed(files)),
    ]


def peers_over(bradep, file, directory, duckdb):
    lines = directory / "checks.ndjson"
    with open(lines, "wb") as out:
        subprocess.run([bradep, "dump", "--root", ROOT, "--ndjson", "checks", file], check=True,
                       stdout=out)
    dump = [bradep, "dump", "--root", ROOT, "--ndjson", "checks", file]
    peers = [Command("`dump --ndjson checks`, as input for the next ones", dump)]
    if shutil.which("jq"):
        peers.append(Command("categories by `jq` over that",
                             ["jq", "-n", JQ_BY_CATEGORY, lines]))
    if duckdb:
        peers.append(Command("categories by DuckDB over that",
                             ["node", "-e", DUCKDB_BY_CATEGORY, lines], directory=duckdb))
    return peers


def small_files(bradep, make, directory):
    """Many files of one check each."""
    first = directory / "small.bin"
    subprocess.run([make, "1", first], check=True, stdout=subprocess.DEVNULL)
    many = directory / "many"
    many.mkdir()
    for i in range(SMALL_FILES):
        shutil.copy(first, many / f"{i}.bin")
    return Command(f"{SMALL_FILES:,} files of one check, `SELECT count(*) FROM checks`",
                   [bradep, "sql", "--root", ROOT, *sorted(many.iterdir()),
                    "SELECT count(*) FROM checks"])


def made_log(count, directory):
    """A log of so many findings, in 2,000 files."""
    rng = random.Random(1)
    files = [f"src/part{i % 40}/file{i}.c" for i in range(2000)]
    log = directory / "made.sarif"
    log.write_text(json.dumps(fleet.log("project", fleet.TOOLS[0],
                                        [fleet.finding(rng, files, i) for i in range(count)])))
    return log


def over_sarif(bradep, log, multitool, directory):
    imported = directory / "imported.set"
    subprocess.run([bradep, "import", log, "-o", imported], check=True)
    rule = subprocess.run([bradep, "sql", "--format", "csv", "--no-header", imported,
                           "SELECT rule FROM findings LIMIT 1"], check=True, capture_output=True,
                          text=True).stdout.strip()
    return [
        Command(f"imported: `list --rule {rule} --count`",
                [bradep, "list", "--rule", rule, "--count", imported]),
        Command("the same by the SARIF Multitool's `query` over the log",
                [multitool, "query", log, "--expression", f"RuleId == '{rule}'"],
                environment={"DOTNET_SYSTEM_GLOBALIZATION_INVARIANT": "1"}),
    ]


def print_table(commands, verify):
    print("|  | seconds | times `verify` | own memory, MB | MB/s |\n|---|---|---|---|---|")
    for command in commands:
        rate = f"{command.size / command.seconds:.0f}" if command.size else ""
        print(f"| {command.name} | {command.seconds:.3f} | {command.seconds / verify.seconds:.2f} "
              f"| {statistics.median(command.memory):.0f} | {rate} |")


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--checks", type=int, default=100_000)
    parser.add_argument("--sarif", type=pathlib.Path)
    parser.add_argument("--multitool", type=pathlib.Path)
    parser.add_argument("--duckdb", type=pathlib.Path)
    parser.add_argument("build", type=pathlib.Path)
    arguments = parser.parse_args()
    if arguments.sarif and not arguments.multitool:
        parser.error("--sarif goes with --multitool")
    bradep = (arguments.build / "tools" / "bradep").resolve()
    make = arguments.build / "bench" / "make_workload"
    with tempfile.TemporaryDirectory() as name:
        directory = pathlib.Path(name)
        sizes = [arguments.checks // 10, arguments.checks]
        files = [directory / f"{size}.bin" for size in sizes]
        for size, file in zip(sizes, files):
            subprocess.run([make, str(size), file], check=True, stdout=subprocess.DEVNULL)
        smaller_join = Command("join", [bradep, "sql", "--root", ROOT, files[0], JOIN])
        commands = commands_over(bradep, files[1], directory)
        commands += [small_files(bradep, make, directory)]
        commands += peers_over(bradep, files[1], directory, arguments.duckdb)
        if arguments.multitool:
            log = arguments.sarif or made_log(arguments.checks, directory)
            commands += over_sarif(bradep, log, arguments.multitool, directory)
        for turn in range(arguments.rounds):
            print(f"turn {turn + 1} of {arguments.rounds}", file=sys.stderr)
            for command in [smaller_join, *commands]:
                command.run()
        print(f"{arguments.checks:,} checks, {files[1].stat().st_size / 1e6:.0f} MB; "
              f"medians of {arguments.rounds} runs:\n")
        print_table(commands, commands[0])
        join = next(command for command in commands if command.command[-1] == JOIN)
        exponent = math.log10(join.seconds / smaller_join.seconds)
        print(f"\nThe join's time grows with the exponent {exponent:.2f} from {sizes[0]:,} to "
              f"{sizes[1]:,} checks.")


if __name__ == "__main__":
    main()
