#!/usr/bin/env python3
"""Compares the views of imported logs with `bradep show --json`, and with the same views over real tables.

Usage: views_test.py BRADEP DIRECTORY...
Imports every .sarif file in the directories and in those that BRADEP_SARIF_DIRS names, asks all result sets
together, and copies their tables into a database of SQLite, where the views must have the same rows.
"""

import json
import os
import re
import sqlite3
import subprocess
import sys
import tempfile
import unittest
from collections import Counter
from pathlib import Path

VIEWS = ["findings", "steps", "places", "rules", "files", "tools"]
MARK = {"mark": "of the next table"}


def run(*command):
    done = subprocess.run(command, capture_output=True, check=False)
    assert done.returncode == 0, done.stderr.decode(errors="replace")
    return done.stdout.decode()


def lines(text):
    return [json.loads(line) for line in text.split("\n") if line]


def logs(directories):
    extra = [name for name in os.environ.get("BRADEP_SARIF_DIRS", "").split(":") if name]
    for directory in [*directories, *extra]:
        found = sorted(Path(directory).glob("*.sarif"))
        assert found, f"no .sarif file in {directory}"
        yield from (log for log in found if not log.name.startswith("bad-"))


def asked(command, sets, names):
    """The rows of tables or views, as tuples."""
    sql = "".join(f"SELECT '{MARK['mark']}' AS mark; SELECT * FROM \"{name}\";" for name in names)
    rows = []
    for row in lines(run(command, "sql", "--format", "ndjson", *sets, sql)):
        if row == MARK:
            rows.append([])
        else:
            rows[-1].append(row)
    return dict(zip(names, rows, strict=True))


def in_cells(value):
    """A text as cells have it."""
    if isinstance(value, str):
        return "".join(f"\\u{ord(c):04x}" if c == "\0" or 0xDC80 <= ord(c) <= 0xDCFF else c for c in value)
    if isinstance(value, list):
        return [in_cells(one) for one in value]
    if isinstance(value, dict):  # what the set holds as JSON text, `more`, is not in the views
        return {name: in_cells(one) for name, one in value.items() if name != "more"}
    return value


def without_nulls(**members):
    return {name: value for name, value in members.items() if value is not None}


def place(row, *more):
    names = ["uri", "base", "line", "column", *more]
    return without_nulls(**{name: row.get(name) for name in names})


def step(row):
    return without_nulls(uri=row["uri"], line=row["line"], column=row["column"], message=row["message"])


def shown(check):
    """What a line of `show --json` says and the views hold."""
    check = in_cells(check)
    members = {name: check.get(name) for name in
               ["run", "tool", "rule", "level", "kind", "baselineState", "message"]}
    places = {"location": check.get("locations", []), "related": check.get("related", [])}
    for one in places["related"]:
        one.pop("id", None)
    is_suppressed = any(one.get("status", "accepted") == "accepted" for one in check.get("suppressions", []))
    flows = check.get("flows", [])
    # A flow without steps has no row.
    steps = {(i, j): thread for i, flow in enumerate(flows) for j, thread in enumerate(flow) if thread}
    return {**members, "places": places, "suppressed": int(is_suppressed), "steps": steps}


def viewed(finding, steps, places):
    """The same, of the rows of the views."""
    members = {name: finding[name] for name in ["run", "tool", "rule", "level", "kind", "message"]}
    members["baselineState"] = finding["baseline_state"]
    found = {"location": [], "related": []}
    for row in sorted(places, key=lambda row: row["position"]):
        more = without_nulls(endLine=row["end_line"], endColumn=row["end_column"], message=row["message"])
        assert row["position"] == len(found[row["kind"]]), row
        found[row["kind"]].append({**place(row), **more})
    threads = {}
    for row in sorted(steps, key=lambda row: (row["flow"], row["thread"], row["position"])):
        thread = threads.setdefault((row["flow"], row["thread"]), [])
        assert row["position"] == len(thread), row
        thread.append(step(row))
    return {**members, "places": found, "suppressed": finding["suppressed"], "steps": threads}


def first_location(finding):
    more = without_nulls(endLine=finding["end_line"], endColumn=finding["end_column"])
    return {**place(finding), **more}


def by_finding(rows):
    groups = {}
    for row in rows:
        groups.setdefault((row["result_set"], row["finding"]), []).append(row)
    return groups


def versions(log):
    """By the number of a run: the version of its tool."""
    drivers = [run["tool"]["driver"] for run in (json.loads(log.read_bytes().decode("utf-8-sig"))["runs"] or [])
               if run.get("tool")]
    return {number: driver.get("version") or driver.get("semanticVersion")
            for number, driver in enumerate(drivers)}


class Views(unittest.TestCase):
    command = ""
    logs = []

    @classmethod
    def setUpClass(cls):
        cls.directory = tempfile.TemporaryDirectory()
        cls.sets = []
        for number, log in enumerate(cls.logs):
            cls.sets.append(os.path.join(cls.directory.name, f"{number}.set"))
            run(cls.command, "import", str(log), "-o", cls.sets[-1])
        cls.views = asked(cls.command, cls.sets, VIEWS)

    @classmethod
    def tearDownClass(cls):
        cls.directory.cleanup()

    def test_have_every_member_that_show_prints(self):
        steps = by_finding(self.views["steps"])
        places = by_finding(self.views["places"])
        findings = {(row["result_set"], row["key"]): row for row in self.views["findings"]}
        compared = 0
        for number, (log, file) in enumerate(zip(self.logs, self.sets), 1):
            for check in lines(run(self.command, "show", "--json", file)):
                uri, ordinal = in_cells(check["key"])
                finding = findings.pop((number, f"{uri}:{ordinal}"))
                identity = (number, finding["finding"])
                with self.subTest(log=log.name, key=check["key"]):
                    expected = shown(check)
                    self.assertEqual(viewed(finding, steps.pop(identity, []), places.pop(identity, [])), expected)
                    self.assertEqual(first_location(finding), (expected["places"]["location"] or [{}])[0])
                compared += 1
        self.assertGreater(compared, 30)
        self.assertEqual((findings, steps, places), ({}, {}, {}), "rows that show does not print")

    def test_have_the_version_of_the_tool(self):
        expected = {(number, run): version for number, log in enumerate(self.logs, 1)
                    for run, version in versions(log).items()}
        found = {(row["result_set"], row["run"]): row["tool_version"] for row in self.views["findings"]}
        self.assertTrue(any(found.values()))
        self.assertEqual(found, {run: expected.get(run) for run in found})

    def test_count_the_findings(self):
        def counted(view, *columns):
            self.assertEqual(len({tuple(row[name] for name in columns) for row in self.views[view]}),
                             len(self.views[view]), view)
            return {tuple(row[name] for name in columns): row["findings"] for row in self.views[view]}

        def expected(*columns):
            return Counter(tuple(row[name] for name in columns) for row in self.views["findings"])

        for view, columns in [("rules", ["result_set", "tool", "rule"]), ("files", ["result_set", "uri"]),
                              ("tools", ["result_set", "tool", "tool_version"])]:
            self.assertEqual(counted(view, *columns), expected(*columns))
        runs = {(row["result_set"], row["tool"], row["tool_version"], row["run"]) for row in self.views["findings"]}
        for row in self.views["tools"]:
            tool = (row["result_set"], row["tool"], row["tool_version"])
            self.assertEqual(row["runs"], sum(run[:3] == tool for run in runs), row)

    def test_are_the_same_over_real_tables(self):
        statements = run(self.command, "tables")
        tables = re.findall(r'^CREATE TABLE "(.*)"', statements, re.MULTILINE)
        rows = asked(self.command, self.sets, tables)
        with sqlite3.connect(":memory:") as database:
            database.executescript(statements + "CREATE INDEX i ON events (result_set, key0, key1)")
            for table in tables:
                for row in rows[table]:
                    names = ",".join(f'"{name}"' for name in row)
                    values = ",".join("?" * len(row))
                    database.execute(f'INSERT INTO "{table}" ({names}) VALUES ({values})', list(row.values()))
            database.row_factory = sqlite3.Row
            for view in VIEWS:
                expected = [dict(row) for row in database.execute(f"SELECT * FROM {view}")]
                order = lambda row: json.dumps(row, sort_keys=True)
                self.assertEqual(sorted(self.views[view], key=order), sorted(expected, key=order), view)


if __name__ == "__main__":
    Views.command = sys.argv[1]
    Views.logs = list(logs(sys.argv[2:]))
    unittest.main(argv=sys.argv[:1])
