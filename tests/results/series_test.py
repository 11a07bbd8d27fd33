#!/usr/bin/env python3
"""Tracks series of runs in which it is known which findings are the same, are gone and come back.

    series_test.py BRADEP [FINDINGS [RUNS [KINDS]]]

The first run of each series has about FINDINGS findings; there is one series of RUNS runs of each of KINDS kinds
of logs, by default of all. BRADEP_SEED chooses them; the seed is printed.
"""

import collections
import json
import random
import subprocess
import sys
import unittest

from pairs import CONFIGS, ROOTS, Log, SeriesMaker
from seeded import Seeded


class Truth:
    """What is known of the findings of a series, and of the identities that they were given."""

    def __init__(self):
        self.groups = {}       # of the last sighting, by number
        self.groups_of_id = {}
        self.open, self.open_ids = set(), set()

    def expected(self, log):
        """What has become of the findings in this run."""
        found = collections.Counter()
        for number in log.world.findings:
            group = log.group(number)
            found[self.state(number, self.groups, self.open), self.groups.get(number), group] += 1
            self.groups[number] = self.without_file(group)
        now = set(log.world.findings)
        found.update(("fixed", self.groups[number], None) for number in self.open - now)
        self.open = now
        return found

    def tracked(self, log, rows):
        """The same as the identities say."""
        places = collections.defaultdict(list)
        for number, one in log.world.findings.items():
            places[self.place(log, number, one)].append(number)
        found = collections.Counter()
        for row in rows:
            group = log.group(places[row["uri"], row["line"], row["column"], row["rule"], row["message"]].pop())
            found[self.state(row["id"], self.groups_of_id, self.open_ids), self.groups_of_id.get(row["id"]), group] += 1
            self.groups_of_id[row["id"]] = self.without_file(group)
        now = {row["id"] for row in rows}
        found.update(("fixed", self.groups_of_id[one], None) for one in self.open_ids - now)
        self.open_ids = now
        return found

    def without_file(self, group):
        """Functions can move, also after a finding is gone."""
        *before, file, function, text = group
        return *before, None if function else file, function, text

    def state(self, one, known, open_ones):
        return "new" if one not in known else "there" if one in open_ones else "returned"

    def place(self, log, _, one):
        file, line, _ = log.places[one.line]
        return log.uri(file), line, one.column, one.rule, log.message(one)


class SeriesTruth(Seeded):
    maxDiff = None
    bradep, findings, runs, kinds = None, 200, 10, len(CONFIGS)

    def setUp(self):
        super().setUp()
        self.states = collections.Counter()

    def run_bradep(self, *arguments):
        done = subprocess.run([self.bradep, *map(str, arguments)], capture_output=True, check=False)
        self.assertEqual((done.stderr.decode(), done.returncode), ("", 0))
        return done.stdout.decode()

    def compare(self, directory, number, log, truth):
        file, sources = directory / f"{number}.sarif", directory / f"sources{number}"
        log.write(file, sources)
        given = ["--source", sources] if log.config.text == "source" else []
        counts = json.loads(self.run_bradep("track", directory / "series", file, *given, "--format", "ndjson"))
        listed = "".join(self.run_bradep("track", directory / "series", "--list", state, "--format", "ndjson")
                         for state in ["open", "suppressed"])
        expected = truth.expected(log)
        tracked = truth.tracked(log, [json.loads(line) for line in listed.splitlines()])
        mistakes = [f"not found: {count} {one}" for one, count in (expected - tracked).items()]
        mistakes += [f"wrong: {count} {one}" for one, count in (tracked - expected).items()]
        self.assertEqual(mistakes, [], f"{len(mistakes)} mistakes in run {number}, {counts}")
        self.count(log, counts, expected)

    def count(self, log, counts, expected):
        """Suppressed findings are counted apart."""
        self.assertEqual(counts["open"] + counts["suppressed"], len(log.world.findings))
        self.assertEqual(counts["suppressed"], sum(one.suppressed for one in log.world.findings.values()))
        for (state, _, _), found in expected.items():
            self.states[state] += found

    def test_identities_tell_the_truth(self):
        for number, config in enumerate(random.Random(self.seed).sample(CONFIGS, self.kinds)):
            seed = self.seed + number
            roots = ROOTS[seed % len(ROOTS)]
            with self.subTest(seed=seed, config=str(config), roots=roots):
                directory = self.directory / str(number)
                directory.mkdir()
                rng = random.Random(seed)
                maker = SeriesMaker(rng, self.findings, config)
                truth = Truth()
                self.compare(directory, 1, Log(maker.old, config, roots[0], rng), truth)
                for run in range(2, self.runs + 1):
                    # The root moves every third run.
                    self.compare(directory, run, Log(maker.new, config, roots[run // 3 % 2], rng), truth)
                    maker.next_world()
        print(dict(self.states))
        self.assertGreater(min(self.states[state] for state in ["new", "there", "returned", "fixed"]), 0)


if __name__ == "__main__":
    SeriesTruth.bradep, *numbers = sys.argv[1:]
    for name, value in zip(["findings", "runs", "kinds"], numbers):
        setattr(SeriesTruth, name, int(value))
    unittest.main(argv=sys.argv[:1])
