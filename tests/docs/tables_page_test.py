#!/usr/bin/env python3
"""Runs every example of a page, such as that on tables.

    tables_page_test.py BRADEP PAGE

A block that is headed by the name of a file is that file. In a block of the console, what follows a command, up
to the next one, must be what it prints.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

LEAST_EXAMPLES = 10

BLOCK = re.compile(r"^```(\w+)(?: (\S+))?\n(.*?)^```$", re.MULTILINE | re.DOTALL)


def examples_of(console):
    """Pairs of a command and what it prints. A command goes on in lines that start with blanks."""
    examples = []
    for line in console.splitlines(keepends=True):
        if line.startswith("$ "):
            examples.append([line[2:], ""])
        elif line.startswith("    ") and not examples[-1][1]:
            examples[-1][0] += line
        else:
            examples[-1][1] += line
    return examples


class TablesPage(unittest.TestCase):
    bradep = page = None

    def test_shows_what_commands_print(self):
        compared = 0
        with tempfile.TemporaryDirectory() as directory:
            directory = pathlib.Path(directory)
            os.symlink(os.path.abspath(self.bradep), directory / "bradep")
            paths = {"PATH": f"{directory}:{os.environ['PATH']}"}
            for kind, name, text in BLOCK.findall(self.page):
                if name:
                    (directory / name).write_text(text, encoding="utf-8")
                if kind != "console":
                    continue
                for command, expected in examples_of(text):
                    done = subprocess.run(["bash", "-c", command], cwd=directory, env={**os.environ, **paths},
                                          capture_output=True, check=False)
                    self.assertEqual((done.stdout + done.stderr).decode(), expected, command)
                    compared += 1
        self.assertGreaterEqual(compared, LEAST_EXAMPLES)


if __name__ == "__main__":
    TablesPage.bradep = sys.argv[1]
    TablesPage.page = pathlib.Path(sys.argv[2]).read_text(encoding="utf-8")
    unittest.main(argv=sys.argv[:1])
