#!/usr/bin/env python3
"""Exports result sets to SQLite, CSV and JSON, also where that fails or is interrupted.

usage: export_test.py BRADEP RANDOM_VALUES FIXTURES WIRE_FORM_PAGE
"""

import contextlib
import fcntl
import hashlib
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import sqlite3
import stat
import subprocess
import sys
import tempfile
import time
import unittest

import exports
RESULT_SET = "Base_Gui_Internal_Form_Datas_Aggregated_Results_T"
FORMATS = ["csv", "ndjson"]
TARGETS = ["sqlite", *FORMATS]
SEED = int(os.environ.get("BRADEP_SEED", random.SystemRandom().randrange(2**32)))


def contents(path):
    """All that a path has in it: names, bytes, and for directories when files were written."""
    path = pathlib.Path(path)
    if not path.exists():
        return None
    if path.is_file():
        return hashlib.sha256(path.read_bytes()).hexdigest()
    return {str(file.relative_to(path)): (file.stat().st_mtime_ns, file.stat().st_ino, contents(file))
            for file in path.rglob("*") if file.is_file()}


class Export(unittest.TestCase):
    bradep = fixtures = random_values = page = None

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.here = pathlib.Path(cls.scratch.name)
        cls.sets = []
        logs = [log for log in sorted(pathlib.Path(cls.fixtures).glob("*.sarif"))
                if not log.name.startswith("bad-")]
        for log in logs:
            cls.sets.append(cls.here / f"{log.stem}.rs")
            exports.run(cls.bradep, "import", log, "-o", cls.sets[-1])
        cls.expected = cls.asked(cls.sets, exports.tables_and_views(cls.bradep))

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def setUp(self):
        self.own = pathlib.Path(tempfile.mkdtemp(dir=self.here))

    @classmethod
    def asked(cls, sets, names, stem=None):
        """The rows of tables and views, with the numbers of exports, each result set once."""
        rows = exports.asked(cls.bradep, sets, names, stem)
        once = {row[4]: row[0] for row in reversed(rows["result_sets"])}
        return {name: exports.in_order(exports.numbered(
                    [row for row in of_table if row[0] in once.values()], rows["result_sets"]))
                for name, of_table in rows.items()}

    def export(self, sets, kind, target, code=0, options=(), **more):
        done = subprocess.run([self.bradep, "export", *map(str, sets), f"--{kind}", str(target), *options],
                              capture_output=True, text=True, check=False, timeout=600, **more)
        self.assertEqual(done.returncode, code, done.stderr)
        self.assertEqual(done.stdout, "")
        return done.stderr

    def exported(self, kind, target, names):
        read = exports.of_sqlite if kind == "sqlite" else exports.of_directory
        return {name: exports.in_order(rows) for name, rows in read(target, names).items()}

    def expect(self, expected, kind, target):
        found = self.exported(kind, target, expected)
        for name, rows in expected.items():
            self.assertEqual(found[name], rows, f"{name} of {target}")
        if kind != "sqlite":
            empty = [name for name, rows in expected.items() if not rows and (target / name).exists()]
            self.assertEqual(empty, [], "tables without rows")
            self.assertFalse(list(target.glob(".*")), "something hidden is left")

    def for_each_target(self, kinds=TARGETS):
        return [(kind, self.own / f"out.{kind}") for kind in kinds]

    # What is written.

    def test_has_the_rows_that_statements_give(self):
        self.assertGreater(len(self.expected["findings"]), 100)
        for kind, target in self.for_each_target():
            self.export(self.sets, kind, target)
            self.expect(self.expected, kind, target)

    def test_numbers_in_files_are_the_first_bits_of_the_digest(self):
        for kind, target in self.for_each_target(FORMATS):
            self.export(self.sets[:1], kind, target)
            digest = exports.run(self.bradep, "digest", self.sets[0]).split()[0]
            row, = self.exported(kind, target, ["result_sets"])["result_sets"]
            self.assertEqual(row[0], int(digest[:14], 16) >> 3)
            self.assertEqual(row[4], digest)

    def test_numbers_in_a_database_are_in_the_order_of_adding(self):
        target = self.own / "out.db"
        self.export(self.sets[:2], "sqlite", target)
        self.export([self.sets[1], self.sets[2]], "sqlite", target)
        with contextlib.closing(sqlite3.connect(target)) as connection:
            found = list(connection.execute("SELECT result_set, digest FROM result_sets ORDER BY 1"))
        digests = [exports.run(self.bradep, "digest", one).split()[0] for one in self.sets[:3]]
        self.assertEqual(found, list(enumerate(digests, 1)))

    def test_every_root_has_the_same_rows_everywhere(self):
        values = self.own / "values"
        values.mkdir()
        environment = {**os.environ, "BRADEP_SLOW_TESTS": ""}
        print(exports.run(self.random_values, values, env=environment).strip())
        stems = {file.name.split(".")[0] for file in values.iterdir()}
        self.assertGreaterEqual(len(stems), 40)
        for stem in sorted(stems):
            files = sorted(values.glob(f"{stem}.*"))
            expected = self.asked(files, exports.tables_and_views(self.bradep, stem), stem)
            for kind in TARGETS:
                with self.subTest(stem=stem, kind=kind):
                    target = self.own / f"{stem}.{kind}"
                    self.export(files, kind, target, options=["--root", stem])
                    self.expect(expected, kind, target)

    def test_a_set_without_canonical_form_is_known_by_its_bytes(self):
        stem, data = self.odd_example()
        odd = self.own / "odd.bin"
        odd.write_bytes(data)
        identity = "bytes:" + hashlib.sha256(data).hexdigest()
        for kind, target in self.for_each_target():
            self.export([odd], kind, target, options=["--root", stem])
            row, = self.exported(kind, target, ["result_sets"])["result_sets"]
            self.assertEqual((row[0], row[4]), (exports.number_of(identity), identity))

    def odd_example(self):
        """Odd bytes without canonical form, of the page on the wire form, with their root."""
        page = pathlib.Path(self.page).read_text(encoding="utf-8")
        for block in re.findall(r"^```wire\n(.*?)^```$", page, re.MULTILINE | re.DOTALL):
            heading, *rest = block.splitlines()
            stem = re.fullmatch(r"root (\w+), odd", heading)
            if not stem:
                continue
            fields = [line.split(";")[0] for line in rest if ";" in line and not line.startswith("=")]
            data = bytes.fromhex("".join(fields))
            digest = subprocess.run([self.bradep, "digest", "--root", stem[1], "-"], input=data,
                                    capture_output=True, check=False)
            if digest.returncode != 0:
                return stem[1], data
        raise AssertionError("the page has no such example")

    # Adding.

    def test_the_same_set_is_not_added_twice(self):
        for kind, target in self.for_each_target():
            self.export(self.sets, kind, target)
            before = contents(target)
            renamed = self.own / "renamed.rs"
            shutil.copy(self.sets[1], renamed)
            said = self.export([self.sets[0], renamed, self.sets[0]], kind, target)
            self.assertEqual(said, "".join(f"bradep: {name}: is in {target} already\n"
                                           for name in [self.sets[0], renamed, self.sets[0]]))
            self.assertEqual(contents(target), before)

    def test_sets_added_one_by_one_are_as_all_at_once(self):
        for kind, target in self.for_each_target():
            for one in self.sets:
                self.export([one], kind, target)
            self.expect(self.expected, kind, target)

    def test_adding_writes_no_file_anew(self):
        for kind, target in self.for_each_target(FORMATS):
            self.export(self.sets[:3], kind, target)
            before = contents(target)
            self.export(self.sets, kind, target)
            after = contents(target)
            self.assertGreater(len(after), len(before))
            self.assertEqual({name: after[name] for name in before}, before)

    def test_two_processes_add_one_after_the_other(self):
        target = self.own / "out.db"
        self.export(self.sets[:1], "sqlite", target)
        halves = [self.sets[1::2], self.sets[2::2]]
        processes = [subprocess.Popen([self.bradep, "export", *half, "--sqlite", target]) for half in halves]
        self.assertEqual([process.wait(timeout=600) for process in processes], [0, 0])
        self.expect(self.expected, "sqlite", target)

    def test_a_signal_ends_the_wait_for_another_process(self):
        target = self.own / "out.db"
        self.export(self.sets[:1], "sqlite", target)
        before = contents(target)
        with contextlib.closing(sqlite3.connect(target, isolation_level=None)) as other:
            other.execute("BEGIN IMMEDIATE")
            process = subprocess.Popen([self.bradep, "export", *self.sets[1:], "--sqlite", target])
            with self.assertRaises(subprocess.TimeoutExpired):
                process.wait(timeout=1)
            process.send_signal(signal.SIGINT)
            self.assertEqual(process.wait(timeout=10), -signal.SIGINT)
        self.assertEqual(contents(target), before)

    def test_only_one_process_writes_to_a_directory(self):
        for kind, target in self.for_each_target(FORMATS):
            self.export(self.sets[:1], kind, target)
            descriptor = os.open(target, os.O_RDONLY)
            fcntl.flock(descriptor, fcntl.LOCK_EX)
            said = self.export(self.sets, kind, target, code=2)
            os.close(descriptor)
            self.assertIn("another process is writing there", said)

    def test_two_sets_of_one_number_are_refused_in_files(self):
        for kind, target in self.for_each_target(FORMATS):
            self.export(self.sets[:1], kind, target)
            digest = self.exported(kind, target, ["result_sets"])["result_sets"][0][4]
            other = digest[:-1] + ("0" if digest[-1] != "0" else "1")
            mark, = (target / "result_sets").iterdir()
            mark.write_text(mark.read_text().replace(digest, other))
            said = self.export(self.sets[:1], kind, target, code=1)
            self.assertIn("another result set with the number", said)

    # What is refused.

    def test_input_that_is_no_good_leaves_the_old_content(self):
        damaged = self.own / "damaged.rs"
        damaged.write_bytes(self.sets[0].read_bytes()[:-1])
        for kind, target in self.for_each_target():
            self.assertIn(str(damaged), self.export([damaged], kind, target, code=1))
            self.assertIsNone(contents(target), "nothing is made")
            self.assertIn("No such file", self.export([self.own / "none"], kind, target, code=2))
            self.export(self.sets[:1], kind, target)
            before = contents(target)
            self.export([damaged], kind, target, code=1)
            self.assertEqual(contents(target), before)

    def test_a_damaged_file_behind_others_leaves_a_database_as_it_was(self):
        damaged = self.own / "damaged.rs"
        damaged.write_bytes(self.sets[0].read_bytes()[:-1])
        target = self.own / "out.db"
        self.export([*self.sets, damaged], "sqlite", target, code=1)
        self.assertEqual(list(self.own.iterdir()), [damaged])
        self.export(self.sets[:1], "sqlite", target)
        before = contents(target)
        self.export([*self.sets, damaged], "sqlite", target, code=1)
        self.assertEqual(contents(target), before)

    def test_files_before_a_damaged_one_are_in_a_directory(self):
        damaged = self.own / "damaged.rs"
        damaged.write_bytes(self.sets[0].read_bytes()[:-1])
        for kind, target in self.for_each_target(FORMATS):
            self.export([*self.sets, damaged], kind, target, code=1)
            self.expect(self.expected, kind, target)

    def test_another_root_is_refused(self):
        number = self.own / "number.bin"
        number.write_bytes(bytes(8))
        roots = [line.split()[0] for line in exports.run(self.bradep, "roots").splitlines()]
        fitting = [stem for stem in roots
                   if subprocess.run([self.bradep, "verify", "-q", "--root", stem, number],
                                     capture_output=True, check=False).returncode == 0]
        self.assertGreaterEqual(len(fitting), 2)
        for kind, target in self.for_each_target():
            self.export([number], kind, target, options=["--root", fitting[0]])
            before = contents(target)
            said = self.export([number], kind, target, code=1, options=["--root", fitting[1]])
            self.assertIn(f"has values of {fitting[0]}", said)
            self.assertEqual(contents(target), before)

    def test_the_root_of_the_target_is_the_default(self):
        number = self.own / "number.bin"
        number.write_bytes(bytes(8))
        other = self.own / "other.bin"
        other.write_bytes(bytes([1, 0, 0, 0, 0, 0, 0, 0]))
        roots = [line.split()[0] for line in exports.run(self.bradep, "roots").splitlines()]
        fitting = [stem for stem in roots
                   if all(subprocess.run([self.bradep, "verify", "-q", "--root", stem, file],
                                         capture_output=True, check=False).returncode == 0
                          for file in [number, other])]
        for kind, target in self.for_each_target():
            self.export([number], kind, target, options=["--root", fitting[-1]])
            self.export([other], kind, target)
            said = self.export(self.sets[:1], kind, target, code=1)
            self.assertIn(fitting[-1], said)

    def refused_databases(self):
        """Files that are no export, each with a reason to refuse it."""
        def changed(name, *statements):
            path = self.own / name
            self.export(self.sets[:1], "sqlite", path)
            with contextlib.closing(sqlite3.connect(path)) as connection:
                connection.executescript(";".join(statements))
            return path

        text = self.own / "text"
        text.write_text("not a database, but longer than the header of one is: " + "x" * 100)
        empty = self.own / "empty"
        empty.touch()
        other = self.own / "other.db"
        with contextlib.closing(sqlite3.connect(other)) as connection:
            connection.executescript("CREATE TABLE result_sets (result_set, name, root, size, digest)")
        yield text, "no database that export has written"
        yield empty, "no database that export has written"
        yield other, "no database that export has written"
        yield changed("dropped", "DROP TABLE blocks"), "its blocks is another one"
        yield changed("widened", "ALTER TABLE checks ADD COLUMN more"), "its checks is another one"
        yield changed("view", "DROP VIEW files", "CREATE VIEW files AS SELECT 1"), "its files is another one"

    def test_a_file_that_is_no_export_is_refused(self):
        for path, reason in self.refused_databases():
            with self.subTest(path=path.name):
                before = contents(path)
                said = self.export(self.sets[:2], "sqlite", path, code=1)
                self.assertIn(reason, said)
                self.assertEqual(said.count("\n"), 1)
                self.assertEqual(contents(path), before)
        self.assertIn("no regular file", self.export(self.sets, "sqlite", self.own, code=2))
        self.assertIn("no regular file", self.export(self.sets, "sqlite", "/dev/null", code=2))

    def test_what_a_user_adds_to_a_database_stays(self):
        target = self.own / "out.db"
        self.export(self.sets[:1], "sqlite", target)
        with contextlib.closing(sqlite3.connect(target)) as connection:
            connection.executescript("CREATE TABLE projects (result_set, project);"
                                     "INSERT INTO projects VALUES (1, 'one');"
                                     "CREATE INDEX own ON checks (result_set, category)")
        self.export(self.sets, "sqlite", target)
        self.expect(self.expected, "sqlite", target)
        with contextlib.closing(sqlite3.connect(target)) as connection:
            self.assertEqual(list(connection.execute("SELECT * FROM projects")), [(1, "one")])
            self.assertTrue(list(connection.execute("SELECT 1 FROM sqlite_schema WHERE name = 'own'")))

    def test_a_directory_that_is_no_export_is_refused(self):
        for kind, target in self.for_each_target(FORMATS):
            target.mkdir()
            (target / "other").write_text("kept")
            said = self.export(self.sets, kind, target, code=1)
            self.assertIn("is not empty", said)
            self.assertEqual([file.name for file in target.iterdir()], ["other"])
            self.assertIn("cannot write", self.export(self.sets, kind, target / "other", code=2))
            exported = self.own / f"other.{kind}"
            self.export(self.sets[:1], kind, exported)
            for other in FORMATS:
                if other != kind:
                    self.export(self.sets, other, exported, code=1)

    def test_an_empty_directory_is_taken(self):
        for kind, target in self.for_each_target(FORMATS):
            target.mkdir()
            self.export(self.sets[:1], kind, target)

    # Where it can't be written.

    def test_a_place_that_is_not_there_is_named(self):
        for kind, target in self.for_each_target():
            nowhere = target / "in" / "nothing"
            self.assertIn(str(nowhere), self.export(self.sets, kind, nowhere, code=2))
            self.assertIsNone(contents(target))

    def test_a_place_without_permission_is_left_alone(self):
        def unprivileged():
            if os.getuid() == 0:
                os.setgid(65534)
                os.setuid(65534)

        for kind, target in self.for_each_target():
            self.export(self.sets[:1], kind, target)
            before = contents(target)
            for path in [*target.rglob("*"), target, self.own]:
                path.chmod(stat.S_IRUSR | stat.S_IRGRP | stat.S_IROTH | 0o111 * path.is_dir())
            for one in [self.here, *self.sets]:
                one.chmod(0o755)
            self.export(self.sets, kind, target, code=2, preexec_fn=unprivileged)
            self.export(self.sets, kind, self.own / "new", code=2, preexec_fn=unprivileged)
            for path in [self.own, target, *target.rglob("*")]:
                path.chmod(0o755)
            self.assertEqual(contents(target), before)
            self.assertIsNone(contents(self.own / "new"))

    def test_a_full_disk_leaves_the_old_content(self):
        def small_files():
            resource.setrlimit(resource.RLIMIT_FSIZE, (self.limit, self.limit))

        first = min(self.sets, key=lambda one: one.stat().st_size)
        for kind, target in self.for_each_target():
            for self.limit in [0, 1000, 5000]:
                said = self.export(self.sets, kind, target, code=2, preexec_fn=small_files)
                self.assertIn("cannot write", said)
                self.assertEqual(os.listdir(self.own), [])
            self.export([first], kind, target)
            before = contents(target)
            self.limit = target.stat().st_size if kind == "sqlite" else 1000
            self.export(self.sets[::-1], kind, target, code=2, preexec_fn=small_files)
            if kind == "sqlite":
                self.assertEqual(contents(target), before)
            else:
                self.check_interrupted(kind, target, set())
                self.assertFalse(list(target.glob(".*")))
            shutil.rmtree(target) if target.is_dir() else target.unlink()

    # Interrupted.

    def start(self, kind, target):
        return subprocess.Popen([self.bradep, "export", *self.sets, f"--{kind}", target],
                                stderr=subprocess.PIPE, text=True)

    def interrupted(self, kind, target, interruption):
        """Interrupts an export at some time. Returns whether it was not done yet."""
        process = self.start(kind, target)
        time.sleep(self.random.uniform(0, self.duration))
        process.send_signal(interruption)
        said = process.communicate(timeout=600)[1]
        self.assertIn(process.returncode, [0, -interruption], said)
        return process.returncode != 0

    def check_interrupted(self, kind, target, numbers):
        """What is there is whole: of the result sets with these numbers before, or of all."""
        if not target.exists():
            return self.assertEqual(numbers, set())
        if kind == "sqlite":
            with contextlib.closing(sqlite3.connect(target)) as connection:
                self.assertEqual(connection.execute("PRAGMA integrity_check").fetchall(), [("ok",)])
        found = self.exported(kind, target, self.expected)
        there = {row[0] for row in found["result_sets"]}
        every = {row[0] for row in self.expected["result_sets"]}
        if kind == "sqlite":
            self.assertIn(there, [numbers, every])
        self.assertLessEqual(numbers, there)
        for name, rows in self.expected.items():
            whole = [row for row in rows if row[0] in there]
            self.assertEqual([row for row in found[name] if row[0] in there], whole, name)
        return None

    def test_a_signal_leaves_nothing_half_written(self):
        self.check_signals(signal.SIGINT, signal.SIGTERM, signal.SIGHUP)

    def test_a_killed_process_leaves_nothing_half_written(self):
        self.check_signals(signal.SIGKILL)

    def check_signals(self, *signals):
        print(f"BRADEP_SEED={SEED}")
        self.random = random.Random(SEED)
        for kind, target in self.for_each_target():
            start = time.monotonic()
            self.export(self.sets, kind, self.own / "timed")
            self.duration = time.monotonic() - start
            for before in [[], self.sets[:2]]:
                stopped = sum(self.check_signal(kind, target, one, before) for one in signals * (6 // len(signals)))
                self.assertGreater(stopped, 0, "no export was interrupted")
            timed = self.own / "timed"
            shutil.rmtree(timed) if timed.is_dir() else timed.unlink()

    def check_signal(self, kind, target, one, before):
        if before:
            self.export(before, kind, target)
        numbers = {row[0] for row in self.expected["result_sets"]
                   if row[1] in map(str, before)}
        was_stopped = self.interrupted(kind, target, one)
        if one != signal.SIGKILL:
            self.assertLessEqual({path.name for path in self.own.iterdir()}, {"timed", target.name})
            if kind != "sqlite" and target.exists():
                self.assertFalse(list(target.glob(".*")))
        self.check_interrupted(kind, target, numbers)
        self.export(self.sets, kind, target)
        self.expect(self.expected, kind, target)
        for path in self.own.iterdir():
            if path.name != "timed":
                shutil.rmtree(path) if path.is_dir() else path.unlink()
        return was_stopped


if __name__ == "__main__":
    Export.bradep, Export.random_values, Export.fixtures, Export.page = sys.argv[1:5]
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]])
