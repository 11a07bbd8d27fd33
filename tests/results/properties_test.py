#!/usr/bin/env python3
"""What a diff must not depend on: the process that wrote a set, the order of files, which side is the old one.

    properties_test.py BRADEP

BRADEP_SEED chooses the logs; the seed is printed.
"""

import json
import os
import random
import signal
import sqlite3
import subprocess
import sys
import unittest

from pairs import Config, Pair
from seeded import Seeded

PARTS = 3
SWAPPED = {"new": "absent", "absent": "new", "unchanged": "unchanged", "updated": "updated"}


class Properties(Seeded):
    bradep = None

    def setUp(self):
        super().setUp()
        self.rng = random.Random(self.seed)
        config = Config(text=self.rng.choice(["none", "snippet", "context"]), functions=self.rng.random() < 0.5,
                        fingerprints=self.rng.random() < 0.3, roots=self.rng.choice([("", ""), ("/a/", "c:/b/")]))
        self.pair = Pair(self.seed, 400, config)
        self.logs = []
        for side in ["old", "new"]:
            self.logs.append(self.directory / f"{side}.sarif")
            getattr(self.pair, side).write(self.logs[-1], None)

    def run_bradep(self, *arguments, code=0):
        done = subprocess.run([self.bradep, *map(str, arguments)], capture_output=True, check=False)
        self.assertEqual((done.stderr.decode(), done.returncode), ("", code), arguments)
        return done.stdout.decode()

    def diff(self, *arguments):
        return json.loads(self.run_bradep("diff", *arguments, "--format", "json"))

    def imported(self, log, name):
        made = self.directory / name
        self.run_bradep("import", log, "-o", made)
        return made

    def without_files(self, diff):
        for one in diff["findings"]:
            del one["oldFile"], one["newFile"]
        return diff

    def test_order_of_bytes_does_not_matter(self):
        """The order of maps differs between the processes that write them; that of canonical bytes is another."""
        diffs, bytes_of_sets = [], set()
        for form in [0, 1]:
            sets = []
            for log in self.logs:
                made = [self.imported(log, log.stem), self.directory / f"{log.stem}.canonical"]
                self.run_bradep("canon", made[0], "-o", made[1])
                sets.append(made[form])
            bytes_of_sets.add(sets[0].read_bytes())
            diffs.append(self.without_files(self.diff(*sets)))
        self.assertEqual(len(bytes_of_sets), 2)
        self.assertEqual(diffs[1], diffs[0])

    def test_set_and_log_have_one_diff(self):
        config = self.pair.config
        if config.text != "none":  # a set does not hold the text
            config.text = "none"
            self.pair = Pair(1, 400, config)
            for side, log in zip(["old", "new"], self.logs):
                getattr(self.pair, side).write(log, None)
        sets = [self.imported(log, log.stem) for log in self.logs]
        self.assertEqual(self.without_files(self.diff(*sets)), self.without_files(self.diff(*self.logs)))

    def test_nothing_is_new_in_the_same_set(self):
        sets = [self.imported(self.logs[0], name) for name in ["one", "other"]]
        diff = self.diff(*sets)
        self.assertEqual({state: count for state, count in diff["counts"].items() if count},
                         {"unchanged": len(self.pair.old.keys)})
        for one in diff["findings"]:
            self.assertEqual(one["old"], one["new"])
        for counts in diff["records"].values():
            self.assertEqual((counts["new"], counts["absent"]), (0, 0))

    def test_swapped_sides_exchange_new_and_absent(self):
        def seen(diff, swaps):
            return sorted((SWAPPED[one["state"]], one["new"] or "", one["old"] or "", one["stage"] or "")
                          if swaps else (one["state"], one["old"] or "", one["new"] or "", one["stage"] or "")
                          for one in diff["findings"])
        self.assertEqual(seen(self.diff(*self.logs), False), seen(self.diff(*reversed(self.logs)), True))

    def parts(self, log):
        """The results of a log in several logs."""
        whole = json.loads(log.read_text())
        results = whole["runs"][0]["results"]
        parts = []
        for i in range(PARTS):
            whole["runs"][0]["results"] = results[i::PARTS]
            parts.append(self.directory / f"{log.stem}.part{i}.sarif")
            parts[-1].write_text(json.dumps(whole))
        return parts

    def test_order_of_files_does_not_matter(self):
        olds, news = map(self.parts, self.logs)
        first = self.diff("--old", *olds, "--new", *news)
        self.rng.shuffle(olds)
        self.rng.shuffle(news)
        self.assertEqual(self.diff("--new", *news, "--old", *olds), first)
        self.assertEqual(first["counts"], self.diff(*self.logs)["counts"])
        for side, files in [("a", olds), ("b", news)]:
            (self.directory / side).mkdir()
            for file in files:
                file.rename(self.directory / side / file.name)
        of_directories = self.diff(self.directory / "a", self.directory / "b")
        self.assertEqual(self.without_files(of_directories), self.without_files(first))

    def test_each_finding_is_there_once(self):
        diff = self.diff(*self.logs)
        for side in ["old", "new"]:
            keys = [one[side] for one in diff["findings"] if one[side]]
            self.assertEqual(sorted(keys), sorted(getattr(self.pair, side).keys))
        lines = self.run_bradep("diff", *self.logs, "--format", "ndjson").splitlines()
        self.assertEqual([json.loads(line) for line in lines], diff["findings"])

    def test_database_has_the_diff(self):
        database = self.directory / "out.db"
        self.run_bradep("diff", *self.logs, "--sqlite", database)
        with sqlite3.connect(database) as connection:
            rows = connection.execute("SELECT state, old_key, new_key, rule, message, uri, line FROM diff")
            found = sorted(map(repr, rows))
            updated = connection.execute("SELECT count(*) FROM pairs WHERE state = 'updated'").fetchone()[0]
            changed = connection.execute("SELECT count(DISTINCT pair) FROM changes").fetchone()[0]
            self.assertEqual(connection.execute("PRAGMA integrity_check").fetchone(), ("ok",))
        wanted = sorted(repr((one["state"], one["old"], one["new"], one["rule"], one["message"], one["uri"],
                              one["line"])) for one in self.diff(*self.logs)["findings"])
        self.assertEqual(found, wanted)
        self.assertEqual(updated, changed)

    def test_interrupted_import_leaves_nothing(self):
        results = json.loads(self.logs[0].read_bytes())["runs"][0]["results"]
        log = self.directory / "large.sarif"
        log.write_text(json.dumps({"version": "2.1.0", "runs": [{
            "tool": {"driver": {"name": "T"}}, "results": results * 100}]}), encoding="utf-8")
        temporary = self.directory / "temporary"
        temporary.mkdir()
        process = subprocess.Popen([self.bradep, "diff", log, log], stdout=subprocess.DEVNULL,
                                   env={**os.environ, "TMPDIR": str(temporary)})
        while not any(temporary.iterdir()):
            self.assertIsNone(process.poll(), "it is over before it was interrupted")
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(), -signal.SIGINT)
        self.assertEqual(list(temporary.iterdir()), [])


if __name__ == "__main__":
    Properties.bradep = sys.argv[1]
    unittest.main(argv=sys.argv[:1])
