#!/usr/bin/env python3
"""A series that several processes use, or that a process leaves in the midst of adding a run.

    series_process_test.py BRADEP
"""

import contextlib
import json
import pathlib
import random
import resource
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time
import unittest

from pairs import Config, Log, SeriesMaker

RUNS = 30


class Processes(unittest.TestCase):
    bradep = None

    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(directory.cleanup)
        cls.directory = pathlib.Path(directory.name)
        rng = random.Random(1)
        config = Config(text="snippet")
        maker = SeriesMaker(rng, 1500, config)
        cls.sets = []
        for run in range(RUNS):
            log = cls.directory / f"{run}.sarif"
            Log(maker.new, config, "", rng).write(log, None)
            maker.next_world()
            cls.sets.append(log.with_suffix(".set"))
            subprocess.run([cls.bradep, "import", log, "-o", cls.sets[-1]], check=True)

    def setUp(self):
        directory = tempfile.TemporaryDirectory(dir=self.directory)
        self.addCleanup(directory.cleanup)
        self.series = pathlib.Path(directory.name) / "series"
        self.database = self.series / "track.db"

    def track(self, *sets):
        done = subprocess.run([self.bradep, "track", self.series, *sets], capture_output=True, text=True, check=False)
        self.assertEqual((done.stderr, done.returncode), ("", 0))
        return done.stdout

    def start(self, *sets):
        return subprocess.Popen([self.bradep, "track", self.series, *sets], stdout=subprocess.PIPE,
                                stderr=subprocess.PIPE, text=True)

    def contents(self):
        """All rows, but the times at which runs were added."""
        with sqlite3.connect(self.database) as connection:
            self.assertEqual(connection.execute("PRAGMA integrity_check").fetchone(), ("ok",))
            tables = {}
            for table in ["files", "identities", "gaps"]:
                tables[table] = connection.execute(f"SELECT * FROM {table} ORDER BY 1, 2").fetchall()
            tables["runs"] = connection.execute(
                "SELECT run, name, digest, open, new, returned, fixed, suppressed FROM runs ORDER BY run").fetchall()
            return tables

    def wait_for_journal(self, process):
        """Until the process writes to the database, or has ended."""
        journal = self.series / "track.db-journal"
        while process.poll() is None and not (journal.exists() and journal.stat().st_size > 0):
            time.sleep(0.0005)

    def test_a_killed_process_leaves_the_runs_before(self):
        self.track(self.sets[0])
        hit = 0
        for wait in [0, 0.001, 0.002, 0.004, 0.008, 0.016, 0.03, 0.06]:
            before = self.contents()
            process = self.start(self.sets[1])
            self.wait_for_journal(process)
            time.sleep(wait)
            process.kill()
            process.communicate()
            after = self.contents()
            if process.returncode == -signal.SIGKILL and after == before:
                hit += 1
            elif after != before:
                self.assertEqual(len(after["runs"]), len(before["runs"]) + 1)
                break
        self.assertGreater(hit, 0)
        killed = self.contents()
        if len(killed["runs"]) == 1:
            self.track(self.sets[1])
            killed = self.contents()
        self.database.unlink()
        self.track(*self.sets[:2])
        self.assertEqual(self.contents(), killed)

    def test_a_process_killed_at_the_first_run_leaves_a_series_that_can_be_used(self):
        process = self.start(self.sets[0])
        self.wait_for_journal(process)
        process.kill()
        process.communicate()
        self.assertEqual(process.returncode, -signal.SIGKILL)
        self.assertIn("run 1: ", self.track(self.sets[0]))

    def test_a_signal_ends_the_command_with_one_line(self):
        self.track(self.sets[0])
        before = self.contents()
        process = self.start(self.sets[1])
        self.wait_for_journal(process)
        process.send_signal(signal.SIGINT)
        out, err = process.communicate()
        if process.returncode == 0:  # it came too late
            self.assertIn("run 2: ", out)
        else:
            self.assertEqual((out, err, process.returncode), ("", "bradep: interrupted\n", 2))
            self.assertEqual(self.contents(), before)

    def test_a_signal_ends_the_wait_for_another_process(self):
        self.track(self.sets[0])
        with contextlib.closing(sqlite3.connect(self.database, isolation_level=None)) as other:
            other.execute("BEGIN IMMEDIATE")
            process = self.start(self.sets[1])
            with self.assertRaises(subprocess.TimeoutExpired):
                process.wait(1)
            process.send_signal(signal.SIGINT)
            out, err = process.communicate(timeout=10)
            self.assertEqual((out, err, process.returncode), ("", "bradep: interrupted\n", 2))
            process = self.start(self.sets[1])
            time.sleep(0.2)
            other.execute("COMMIT")
            self.assertIn("run 2: ", process.communicate(timeout=10)[0])

    def test_processes_wait_for_one_another(self):
        processes = [self.start(one) for one in self.sets[:4]]
        for process in processes:
            _, err = process.communicate()
            self.assertEqual((err, process.returncode), ("", 0))
        runs = self.contents()["runs"]
        self.assertEqual([run[0] for run in runs], [1, 2, 3, 4])
        self.assertEqual(sorted(run[1] for run in runs), sorted(map(str, self.sets[:4])))

    def test_a_full_disk_changes_nothing(self):
        self.track(self.sets[0])
        before = self.contents()
        size = self.database.stat().st_size
        done = subprocess.run([self.bradep, "track", self.series, self.sets[RUNS - 1]], capture_output=True, text=True,
                              check=False, preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_FSIZE, (size, size)))
        self.assertEqual((done.stdout, done.returncode), ("", 2), done.stderr)
        self.assertEqual(len(done.stderr.splitlines()), 1)
        self.assertEqual(self.contents(), before)

    def test_one_command_gives_what_many_give(self):
        for one in self.sets[:5]:
            self.track(one)
        many = self.contents()
        self.database.unlink()
        self.track(*self.sets[:5])
        self.assertEqual(self.contents(), many)

    def seconds_of(self, *command):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.run([self.bradep, *command], check=True, capture_output=True)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime

    def cost(self, number):
        """Of adding a run to those before it, in times of a diff."""
        shares = []
        kept = self.database.read_bytes()
        for _ in range(5):
            diff = self.seconds_of("diff", *self.sets[number - 1:number + 1])
            shares.append(self.seconds_of("track", self.series, self.sets[number]) / diff)
            self.database.write_bytes(kept)
        return min(shares)

    def test_adding_a_run_does_not_cost_the_series(self):
        self.track(*self.sets[:3])
        early = self.cost(3)
        self.track(*self.sets[3:RUNS - 1])
        late = self.cost(RUNS - 1)
        print(f"in times of a diff: run 4 costs {early:.2f}, run {RUNS} {late:.2f}")
        self.assertLess(late, 2 * early)

    def write_log(self, name, places):
        """Findings of four rules, all of a rule with one message."""
        results = [{"ruleId": f"r{file % 4}", "message": {"text": "The value is never read"}, "locations": [
            {"physicalLocation": {"artifactLocation": {"uri": f"src/{file}.c"}, "region": {"startLine": line}}}]}
                   for file, line in places]
        log = self.directory / name
        log.write_text(json.dumps({"version": "2.1.0", "runs": [
            {"tool": {"driver": {"name": "Maker"}}, "results": results}]}))
        return log

    def test_adding_a_run_does_not_cost_what_is_gone(self):
        files = 1000
        few = self.write_log("few", [(file, 7) for file in range(100)])
        many = self.write_log("many", [(file, line) for file in range(files) for line in range(1, 41)])
        more = self.write_log("more", [(file, 7) for file in range(100)] + [(file, 3) for file in range(files, files + 5)])
        seconds = {}
        for name, runs in {"without": [few], "with": [many, few]}.items():
            self.track(*runs)
            kept = self.database.read_bytes()
            costs = []
            for _ in range(5):
                costs.append(self.seconds_of("track", self.series, more))
                self.database.write_bytes(kept)
            seconds[name] = min(costs)
            self.database.unlink()
        print(f"seconds of user and system time: {seconds}")
        self.assertLess(seconds["with"], 2 * seconds["without"])


if __name__ == "__main__":
    Processes.bradep = sys.argv[1]
    unittest.main(argv=sys.argv[:1])
