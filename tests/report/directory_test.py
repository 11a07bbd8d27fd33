#!/usr/bin/env python3
"""Writes reports where that is refused, fails or is interrupted.

usage: directory_test.py BRADEP FIXTURES
"""

import fcntl
import json
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

from report_reader import Report


def contents(path):
    return {str(file.relative_to(path)): file.read_bytes() for file in sorted(path.rglob("*")) if file.is_file()}


class Directory(unittest.TestCase):
    bradep = fixtures = None

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.here = pathlib.Path(cls.scratch.name)
        cls.log = pathlib.Path(cls.fixtures) / "flows.sarif"
        # Enough findings for some seconds of work.
        results = [{"ruleId": f"rule{i % 9}", "message": {"text": f"message {i}"}} for i in range(30000)]
        cls.large_log = cls.here / "large.sarif"
        cls.large_log.write_text(json.dumps(
            {"version": "2.1.0", "runs": [{"tool": {"driver": {"name": "Tool"}}, "results": results}]}))
        cls.large = cls.here / "large.set"
        subprocess.run([cls.bradep, "import", cls.large_log, "-o", cls.large], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def setUp(self):
        self.own = pathlib.Path(tempfile.mkdtemp(dir=self.here))
        self.out = self.own / "out"

    def report(self, *arguments, code=0, target=None, **more):
        done = subprocess.run([self.bradep, "report", *map(str, arguments), "-o", str(target or self.out)],
                              capture_output=True, text=True, check=False, timeout=300, **more)
        self.assertEqual(done.returncode, code, done.stderr)
        self.assertEqual(done.stdout, "")
        if code:
            self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
        return done.stderr

    def expect_only(self, *names):
        self.assertEqual(sorted(path.name for path in self.own.iterdir()), sorted(names))

    # What DIR may be.

    def test_a_new_or_an_empty_directory(self):
        self.report(self.log)
        self.expect_only("out")
        new = contents(self.out)
        self.out = self.own / "empty"
        self.out.mkdir()
        self.report(self.log)
        self.assertEqual(contents(self.out), new)
        self.expect_only("out", "empty")

    def test_spellings_of_a_directory(self):
        for name in ("a/", "./b", "c/."):
            self.report(self.log, target=f"{self.own}/{name}")
        self.report(self.log, target="d", cwd=self.own)
        (self.own / "e").mkdir()
        self.report(self.log, target=".", cwd=self.own / "e")
        (self.own / "link").symlink_to("f")
        self.report(self.log, target=self.own / "link")
        self.expect_only("a", "b", "c", "d", "e", "f", "link")
        self.assertTrue((self.own / "link").is_symlink())

    def test_an_earlier_report_is_replaced(self):
        self.report(self.large)
        os.chmod(self.out, 0o750)
        many = len(contents(self.out))
        self.report(self.log)
        self.assertLess(len(contents(self.out)), many)
        self.assertEqual(self.out.stat().st_mode & 0o777, 0o750)
        self.assertGreater(Report(self.out).index["findings"], 0)
        self.expect_only("out")

    def test_other_directories_are_refused(self):
        for name in ("notes.txt", "index.html", "data/index.js", "sub/"):
            self.out = self.own / f"of-{name.replace('/', '-')}"
            path = self.out / name
            (path if name.endswith("/") else path.parent).mkdir(parents=True)
            if not path.exists():
                path.write_text("mine")
            before = contents(self.out)
            self.assertIn("neither empty nor a report", self.report(self.log, code=2))
            self.assertEqual(contents(self.out), before)
        self.assertFalse([path for path in self.own.iterdir() if path.name.startswith(".")])

    def test_a_report_with_other_files_is_refused(self):
        self.report(self.log)
        for name in ("notes.txt", "data/notes.txt"):
            (self.out / name).write_text("mine")
            self.assertIn(f"holds {name}, which is no part of a report", self.report(self.log, code=2))
            (self.out / name).unlink()
        self.report(self.log)

    def test_what_is_no_directory_is_refused(self):
        self.out.write_text("file")
        self.assertIn("is no directory", self.report(self.log, code=2))
        self.assertEqual(self.out.read_text(), "file")
        self.report(self.log, code=2, target="/")
        self.report(self.log, code=2, target=self.own / "missing/out")
        self.expect_only("out")

    def test_damaged_input_is_refused(self):
        damaged = self.own / "damaged.set"
        damaged.write_bytes(self.large.read_bytes()[:5000])
        self.report(damaged, code=1)
        self.report(pathlib.Path(self.fixtures) / "bad-truncated.sarif", code=1)
        self.report(self.log, "--diff", damaged, code=1)
        self.report(self.own / "missing", code=2)
        self.report(self.log, "--source-root", self.own / "missing", code=2)
        self.report(self.log, "--track", self.own / "missing", code=2)
        self.expect_only("damaged.set")

    # What a failure leaves.

    def test_nothing_is_left_after_a_failed_write(self):
        def limited():
            resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000))
        self.assertIn("File too large", self.report(self.large, code=2, preexec_fn=limited))
        self.expect_only()
        self.report(self.log)
        before = contents(self.out)
        self.report(self.large, code=2, preexec_fn=limited)
        self.report(self.large, "--single", code=2, target=self.own / "single.html", preexec_fn=limited)
        self.assertEqual(contents(self.out), before)
        self.expect_only("out")

    def hidden(self):
        return self.own / ".out.bradep-report"

    def started(self):
        """A process that is writing."""
        process = subprocess.Popen([self.bradep, "report", self.large, "-o", self.out], stderr=subprocess.PIPE)
        data = self.hidden() / "data"
        while not (data.exists() and any(data.iterdir())):
            self.assertIsNone(process.poll(), "ended too early")
            time.sleep(0.002)
        return process

    def test_signals_leave_nothing(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            process = self.started()
            process.send_signal(number)
            self.assertEqual(process.wait(60), -number)
            process.stderr.close()
            self.expect_only()

    def test_the_next_report_removes_what_a_killed_one_has_left(self):
        process = self.started()
        process.kill()
        process.wait(60)
        process.stderr.close()
        self.expect_only(".out.bradep-report")
        self.report(self.log)
        self.expect_only("out")
        self.assertEqual(len([name for name in Report(self.out).names if name.startswith("details")]), 1)

    def test_two_at_once_are_told_apart(self):
        process = self.started()
        self.assertIn("another process is writing there", self.report(self.log, code=2))
        self.assertEqual(process.wait(120), 0)
        process.stderr.close()
        self.assertEqual(Report(self.out).index["findings"], 30000)
        self.expect_only("out")

    def test_an_earlier_report_that_is_locked_stays(self):
        self.report(self.log)
        descriptor = os.open(self.out, os.O_RDONLY)
        fcntl.flock(descriptor, fcntl.LOCK_EX)
        before = contents(self.out)
        self.report(self.large, code=2)
        os.close(descriptor)
        self.assertEqual(contents(self.out), before)
        self.expect_only("out")

    def test_a_link_in_place_of_the_hidden_directory_is_not_followed(self):
        victim = self.own / "victim"
        victim.mkdir()
        (victim / "file").write_text("mine")
        self.hidden().symlink_to(victim)
        self.report(self.log, code=2)
        self.assertEqual(contents(victim), {"file": b"mine"})

    def test_one_file_is_replaced_like_other_outputs(self):
        self.out = self.own / "out.html"
        self.out.write_text("old")
        self.report(self.log, "--single")
        self.assertGreater(Report(self.out).index["findings"], 0)
        copy = shutil.copy(self.log, self.own / "copy.sarif")
        self.assertIn("is also an input", self.report(copy, "--single", code=2, target=copy))
        self.expect_only("out.html", "copy.sarif")


if __name__ == "__main__":
    Directory.bradep, Directory.fixtures = map(os.path.abspath, sys.argv[1:3])
    unittest.main(argv=sys.argv[:1])
