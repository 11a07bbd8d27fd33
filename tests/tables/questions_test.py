#!/usr/bin/env python3
"""Asks a fleet's result sets the questions in `questions`: by `bradep sql`, and in an exported database.

usage: questions_test.py BRADEP MAKE_WORKLOAD PAGE
"""

import contextlib
import json
import os
import pathlib
import random
import re
import sqlite3
import sys
import tempfile
import unittest

import exports
import fleet

QUESTIONS = pathlib.Path(__file__).with_name("questions")
SEED = int(os.environ.get("BRADEP_SEED", random.SystemRandom().randrange(2**32)))


def questions(engine):
    """The questions, by name, as an engine takes them."""
    texts = {}
    for file in sorted(QUESTIONS.glob("*.sql")):
        name, *of_engine = file.name.split(".")[:-1]
        if not of_engine:
            texts.setdefault(name, file.read_text(encoding="utf-8"))
        elif of_engine == [engine]:
            texts[name] = file.read_text(encoding="utf-8")
    return texts


def answers_of_command(bradep, directory, names):
    """The answers of `bradep sql`, as lists of cells."""
    mark = json.dumps(exports.MARK["mark"]).replace('"', "'")
    texts = questions("sqlite")
    statements = "".join(f"SELECT {mark} AS mark;\n{text};\n" for text in
                         texts.values())
    answers = []
    for row in exports.lines(exports.run(bradep, "sql", "--format", "ndjson", "-f", "-", *names,
                                         input=statements, cwd=directory)):
        if row == exports.MARK:
            answers.append([])
        else:
            answers[-1].append(row)
    return {name: [list(row.values()) for row in answer]
            for name, answer in zip(texts, answers, strict=True)}


def differences(answers, expected):
    """Where answers differ. The order of the rows does not count, as their numbers are in another
    order in an export."""
    for name, rows in expected.items():
        if exports.in_order(answers[name]) != exports.in_order(rows):
            only = [row for row in answers[name] if row not in rows]
            missing = [row for row in rows if row not in answers[name]]
            yield f"{name}: {len(answers[name])} rows, not {len(rows)}; only here {only[:3]}, missing {missing[:3]}"


class Questions(unittest.TestCase):
    bradep = make_workload = page = None

    @classmethod
    def setUpClass(cls):
        print(f"BRADEP_SEED={SEED}")
        cls.scratch = tempfile.TemporaryDirectory()
        cls.directory = pathlib.Path(cls.scratch.name)
        cls.names = fleet.make(cls.bradep, cls.make_workload, cls.directory, SEED, projects=3, nights=5,
                               count=80, kernels=2, checks=150)
        cls.expected = answers_of_command(cls.bradep, cls.directory, cls.names)
        exports.run(cls.bradep, "export", *cls.names, "--sqlite", "fleet.db", cwd=cls.directory)

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def test_every_question_has_answers(self):
        self.assertGreaterEqual(len(self.expected), 10)
        self.assertEqual([name for name, rows in self.expected.items() if not rows], [])

    def test_an_exported_database_gives_the_same_answers(self):
        with contextlib.closing(sqlite3.connect(self.directory / "fleet.db")) as connection:
            answers = {name: list(map(list, connection.execute(text)))
                       for name, text in questions("sqlite").items()}
        self.assertEqual(list(differences(answers, self.expected)), [])

    def test_asking_for_one_set_reads_no_whole_table(self):
        whole = {}
        with contextlib.closing(sqlite3.connect(self.directory / "fleet.db")) as connection:
            tables = {name for name, in connection.execute("SELECT name FROM sqlite_schema WHERE type = 'table'")}
            for view in exports.VIEWS:
                plan = connection.execute(f"EXPLAIN QUERY PLAN SELECT * FROM {view} WHERE result_set = 1")
                scans = [row[3].split() for row in plan]
                whole[view] = [words[1] for words in scans
                               if words[0] == "SCAN" and len(words) == 2 and words[1] in tables]
        # It asks which checks have a place, of all result sets.
        self.assertEqual(whole, {**{view: [] for view in exports.VIEWS}, "places": ["checks"]})

    def test_the_python_on_the_page_runs(self):
        page = pathlib.Path(self.page).read_text(encoding="utf-8")
        blocks = re.findall(r"^```python\n(.*?)^```$", page, re.MULTILINE | re.DOTALL)
        plain = [block for block in blocks if "pandas" not in block]
        self.assertTrue(plain, "no example")
        for block in plain:
            printed = exports.run(sys.executable, "-c", block, cwd=self.directory)
            self.assertGreater(len(printed.splitlines()), 2)


if __name__ == "__main__":
    Questions.bradep, Questions.make_workload, Questions.page = map(os.path.abspath, sys.argv[1:4])
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])
