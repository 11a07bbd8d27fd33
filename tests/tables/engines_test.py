#!/usr/bin/env python3
"""Loads exports into other databases, which must hold the same and give the same answers.

usage: engines_test.py BRADEP MAKE_WORKLOAD RANDOM_VALUES PAGE DIRECTORY

DIRECTORY is for the data of the databases; in it, `npm` has the packages that are needed. The servers must
run. BRADEP_FLEET_SIZES=1 prints how large everything is, and how long it took.
"""

import contextlib
import json
import os
import pathlib
import random
import re
import shutil
import sqlite3
import sys
import time
import unittest

import engines
import exports
import fleet
from questions_test import SEED, answers_of_command, differences, questions

FORMATS = ["csv", "ndjson"]
SETS = "String_To_StringSet_T"
NUMBERS = "Answers_AnswerInspectionPoint"

ODD_TEXTS = [
    "", "\\N", "\\n", '"', '""', '"\\N"', "N", "NULL", "null", "\n", "a\nb\n", "\r", "\r\n", "a\r", "\\", "\\.", "\\.\n",
    "\n\\.\n", "a\n\\.", "a\n\\.\r\nb", 'a\n\\."\nb', ",", ",,", "a,b", "\t", "'", "''", "\udc80", "\udcff\udc80", "a\udc80\"",
    "\0", "a\0b", "\x01\x02\x03", "\x7f\x1b[0m", "\\x41", "\\udc80", "{}", '{"a":1}', "[1]", "größer", "\u2028", "\ufeff",
    "\U0001f600", " ", " a ", "a ", "0", "-0", "1e5", "nan", "inf", "true", "2024-01-01", "$1", "%s", "/*", "--", ";",
    "x" * 100_000, "\"" * 5000, "long " * 1_000_000,
]


class Engines(unittest.TestCase):
    bradep = make_workload = random_values = page = directory = None
    shape = {"projects": 8, "nights": 25, "count": 460, "kernels": 12, "checks": 2000}

    @classmethod
    def setUpClass(cls):
        print(f"BRADEP_SEED={SEED}")
        cls.data = cls.directory / "fleet"
        shutil.rmtree(cls.data, ignore_errors=True)
        cls.data.mkdir()
        cls.names = fleet.make(cls.bradep, cls.make_workload, cls.data, SEED, **cls.shape)
        cls.times = []
        cls.expected = cls.timed("questions, bradep sql",
                                 lambda: answers_of_command(cls.bradep, cls.data, cls.names))
        cls.timed("export to sqlite", lambda: cls.export(cls.names, "sqlite", cls.data / "fleet.db"))
        cls.tables = exports.tables_and_views(cls.bradep)

    @classmethod
    def tearDownClass(cls):
        if os.environ.get("BRADEP_FLEET_SIZES"):
            for seconds, what in cls.times:
                print(f"{seconds:8.2f} s  {what}")

    @classmethod
    def timed(cls, what, work):
        start = time.monotonic()
        result = work()
        cls.times.append((time.monotonic() - start, what))
        return result

    @classmethod
    def export(cls, names, kind, target, *options):
        exports.run(cls.bradep, "export", *names, f"--{kind}", target, *options, cwd=cls.data)

    def counts(self, ask):
        """How many rows each table has."""
        parts = [f'SELECT \'{name}\' AS name, count(*) AS number FROM "{name}"' for name in self.tables]
        return sorted(row for part in parts for row in ask(part))

    def test_there_are_enough(self):
        self.assertGreaterEqual(len(self.names), 200)
        findings = sum(row[1] for row in self.expected["findings_by_rule"])
        self.assertGreaterEqual(findings, 100_000)
        self.assertEqual([name for name, rows in self.expected.items() if not rows], [])

    def test_answers_are_equal_everywhere(self):
        """First a part is loaded, then the rest, then nothing more."""
        database = self.data / "fleet.db"
        expected_counts = sorted([name, len(rows)] for name, rows in
                                 exports.of_sqlite(database, self.tables).items())
        for kind in FORMATS:
            files = self.data / kind
            loaded = [engine(self.directory / "npm", self.data, f"fleet_{kind}") for engine in engines.ENGINES]
            for names in [self.names[::3], self.names, self.names]:
                self.timed(f"export to {kind}, {len(names)}", lambda: self.export(names, kind, files))
                for engine in loaded:
                    self.timed(f"load {kind}, {engine.name}, {len(names)}", lambda: engine.load(files))
            for engine in loaded:
                with self.subTest(engine=engine.name, kind=kind):
                    self.assertEqual(self.counts(engine.ask), expected_counts)
                    answers = {name: self.timed(f"{name}, {engine.name}", lambda: engine.ask(text))
                               for name, text in questions(engine.name).items()}
                    self.assertEqual(list(differences(answers, self.expected)), [])
            self.report_sizes(kind, files, loaded)

    def report_sizes(self, kind, files, loaded):
        if not os.environ.get("BRADEP_FLEET_SIZES"):
            return
        sets = sum((self.data / name).stat().st_size for name in self.names)
        sizes = {"result sets": sets, "sqlite": (self.data / "fleet.db").stat().st_size,
                 kind: sum(file.stat().st_size for file in files.rglob("*") if file.is_file()),
                 f"{kind} on the disk": engines.size_of(files)}
        sizes |= {engine.name: engine.size() for engine in loaded}
        for what, size in sizes.items():
            print(f"{size / 1e6:10.2f} MB  {what}")

    def test_an_exported_database_gives_the_same_answers(self):
        with contextlib.closing(sqlite3.connect(self.data / "fleet.db")) as connection:
            answers = {name: self.timed(f"{name}, sqlite", lambda: list(map(list, connection.execute(text))))
                       for name, text in questions("sqlite").items()}
        self.assertEqual(list(differences(answers, self.expected)), [])

    def test_a_load_that_was_ended_is_done_anew(self):
        """ClickHouse has no transaction over several tables."""
        files = self.data / "ended"
        shutil.rmtree(files, ignore_errors=True)
        self.export(self.names[:6], "csv", files)
        engine = engines.ClickHouse(None, None, "ended")
        engine.load(files)
        expected = self.counts(engine.ask)
        for host in engine.hosts:
            engine.sql("ALTER TABLE result_sets_local DELETE WHERE 1", host)
        while engine.ask("SELECT count() FROM result_sets") != [[0]]:
            time.sleep(0.1)
        engine.load(files)
        self.assertEqual(self.counts(engine.ask), expected)

    def check_everything(self, name, stem, sets):
        """All tables are equal, to the last byte."""
        database = self.data / f"{name}.db"
        self.export(sets, "sqlite", database, "--root", stem)
        tables = exports.tables_and_views(self.bradep, stem)
        expected = exports.of_sqlite(database, tables)
        for kind in FORMATS:
            self.export(sets, kind, self.data / f"{name}.{kind}", "--root", stem)
            for kind_of_engine in engines.ENGINES:
                engine = kind_of_engine(self.directory / "npm", self.data, f"{name}_{kind}")
                with self.subTest(engine=engine.name, kind=kind):
                    engine.load(self.data / f"{name}.{kind}")
                    for table in tables:
                        found = engine.ask(f'SELECT * FROM "{table}"')
                        self.assertEqual(exports.in_order(as_numbers(found, expected[table])),
                                         exports.in_order(expected[table]), table)
        return expected

    def test_odd_texts_are_the_same_everywhere(self):
        value = [[text, [text, text + "!"]] for text in ODD_TEXTS]
        text = json.dumps({"root": SETS, "value": value})
        exports.run(self.bradep, "encode", "-", "-o", self.data / "odd.bin", input=text)
        expected = self.check_everything("odd", SETS, ["odd.bin"])
        self.assertEqual(sum(len(rows) for name, rows in expected.items() if name != "result_sets"),
                         3 * len(ODD_TEXTS) + 1)

    def test_numbers_are_the_same_everywhere(self):
        values = self.data / "values"
        values.mkdir()
        print(exports.run(self.random_values, values).strip())
        self.check_everything("numbers", NUMBERS, sorted(values.glob(f"{NUMBERS}.*")))

    def test_the_python_with_pandas_runs(self):
        page = pathlib.Path(self.page).read_text(encoding="utf-8")
        blocks = re.findall(r"^```python\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
        blocks = [block for block in blocks if "pandas" in block]
        self.assertTrue(blocks, "no example")
        for block in blocks:
            # Debian's package is for Debian's interpreter.
            printed = exports.run("/usr/bin/python3", "-c", block, cwd=self.data)
            self.assertGreater(len(printed.splitlines()), 2)

    def test_the_statements_of_the_page_on_fleets_run(self):
        files = self.data / "page"
        shutil.rmtree(files, ignore_errors=True)
        names = [name for name in self.names if name.startswith("project03/")]
        self.export(names, "csv", files)
        engine = engines.ClickHouse(None, None, "page")
        engine.load(files)
        page = pathlib.Path(self.page).with_name("fleet.md").read_text(encoding="utf-8")
        blocks = [block.replace("bradep, fleet,", "bradep, page,") for block in
                  re.findall(r"^```sql\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)]
        create, count, ask = blocks
        for host in engine.hosts:
            engine.sql(create, host)
        engine.sql(count)
        engine.sql(count)  # adds nothing
        of_all = engine.ask("SELECT count(*) FROM findings WHERE suppressed = 0")
        self.assertEqual(engine.ask("SELECT sum(findings) FROM nightly"), of_all)
        answer = engine.ask(ask.rstrip().removesuffix(";"))
        self.assertEqual(len({row[0] for row in answer}), len(names))
        self.assertEqual(sum(row[2] for row in answer), of_all[0][0])


def as_numbers(rows, expected):
    """1 for 1.0 where the expected cell is a float: JSON does not tell them apart."""
    is_float = [any(isinstance(row[i], float) for row in expected) for i in range(len(expected[0]))] if expected else []
    return [[float(cell) if is_float[i] and isinstance(cell, int) else cell for i, cell in enumerate(row)]
            for row in rows]


if __name__ == "__main__":
    Engines.bradep, Engines.make_workload, Engines.random_values, Engines.page = map(os.path.abspath, sys.argv[1:5])
    Engines.directory = pathlib.Path(sys.argv[5]).resolve()
    unittest.main(argv=[sys.argv[0], *sys.argv[6:]])
