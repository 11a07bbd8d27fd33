"""Tests that choose by a seed."""

import os
import pathlib
import random
import tempfile
import unittest


class Seeded(unittest.TestCase):
    """Has a `seed`, which is BRADEP_SEED or random and is printed, and a `directory` that is removed."""

    def setUp(self):
        self.seed = int(os.environ.get("BRADEP_SEED", random.SystemRandom().getrandbits(32)))
        print(f"BRADEP_SEED={self.seed}", flush=True)
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)
