#!/usr/bin/env python3
"""Compares pairs of logs whose truth is known, with every kind of edit.

    pairs_test.py BRADEP [FINDINGS [PAIRS [KINDS]]]

Each pair has about FINDINGS findings; there are PAIRS pairs of each of KINDS kinds of logs, by default of all.
BRADEP_SEED chooses them; the seed is printed.
"""

import json
import random
import subprocess
import sys
import unittest

from pairs import CONFIGS, ROOTS, Pair
from seeded import Seeded


class Pairs(Seeded):
    bradep, findings, pairs, kinds = None, 300, 2, len(CONFIGS)

    def diff(self, pair, directory):
        files, sources = [], []
        for side in ["old", "new"]:
            files.append(directory / f"{side}.sarif")
            getattr(pair, side).write(files[-1], directory / side)
            if pair.config.text == "source":
                sources += [f"--{side}-source", directory / side]
        done = subprocess.run([self.bradep, "diff", *files, *sources, "--format", "json"],
                              capture_output=True, check=False)
        self.assertEqual((done.stderr.decode(), done.returncode), ("", 0))
        return json.loads(done.stdout)

    def test_diff_tells_the_truth(self):
        found = 0
        configs = random.Random(self.seed).sample(CONFIGS, self.kinds)
        for number, config in enumerate(configs * self.pairs):
            seed = self.seed + number
            config.roots = ROOTS[seed % len(ROOTS)]
            with self.subTest(seed=seed, config=str(config)):
                directory = self.directory / str(number)
                directory.mkdir()
                pair = Pair(seed, self.findings, config)
                diff = self.diff(pair, directory)
                mistakes = pair.mistakes(diff)
                self.assertEqual(mistakes, [], f"{len(mistakes)} mistakes, {diff['counts']}")
                self.assertGreater(min(diff["counts"].values()), 0)
                found += sum(diff["counts"].values())
        print(f"{found} findings compared")


if __name__ == "__main__":
    Pairs.bradep, *numbers = sys.argv[1:]
    for name, number in zip(["findings", "pairs", "kinds"], numbers):
        setattr(Pairs, name, int(number))
    unittest.main(argv=sys.argv[:1])
