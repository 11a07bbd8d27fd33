#!/usr/bin/env python3
"""Runs every worked example of the page on the wire form.

    wire_form_test.py BRADEP PAGE

`dump` must print exactly the JSON. Bytes marked `written` must be good, and `encode` must make the same
bytes again; bytes marked `odd` must be odd.
"""

import pathlib
import re
import subprocess
import sys
import unittest

LEAST_EXAMPLES = 15

BLOCK = re.compile(r"^```wire\n(.*?)^```$", re.MULTILINE | re.DOTALL)
HEADING = re.compile(r"root (\w+), (written|odd)")
FIELDS = re.compile(r"((?:[0-9A-F]{2} {1,2})*[0-9A-F]{2}) +; \S.*")


class Example:
    """An example: a heading, lines of bytes, and the JSON of the value on one or more lines."""

    def __init__(self, text):
        heading, *rest = text.splitlines()
        found = HEADING.fullmatch(heading)
        if not found:
            raise ValueError(f"no heading: {heading!r}")
        self.stem, self.state = found.groups()

        start = next((at for at, line in enumerate(rest) if line.startswith("= ")), None)
        if not start:
            raise ValueError(f"no bytes or no JSON: {text!r}")
        fields = [FIELDS.fullmatch(line) for line in rest[:start]]
        if None in fields:
            raise ValueError(f"no field: {rest[fields.index(None)]!r}")
        self.bytes = bytes.fromhex("".join(field.group(1) for field in fields))

        first, *further = rest[start:]
        if not all(line.startswith("  ") for line in further):
            raise ValueError(f"JSON that goes on without two blanks: {further!r}")
        value = first.removeprefix("= ") + "".join(line.removeprefix("  ") for line in further)
        self.line = f'{{"root":"{self.stem}","value":{value}}}\n'


def examples_of(page):
    openings = len(re.findall(r"^\s*[`~]{3,}\s*wire", page, re.MULTILINE))
    blocks = BLOCK.findall(page)
    if len(blocks) != openings:
        raise ValueError(f"{openings} blocks begin, {len(blocks)} are whole")
    return [Example(block) for block in blocks]


class WireForm(unittest.TestCase):
    bradep = page = None

    @classmethod
    def setUpClass(cls):
        cls.examples = examples_of(cls.page.read_text(encoding="utf-8"))

    def run_command(self, command, *arguments, given):
        return subprocess.run([self.bradep, command, *arguments, "-"], input=given,
                              capture_output=True, timeout=60)

    def for_each(self, check, states=("written", "odd")):
        for number, example in enumerate(self.examples, 1):
            if example.state in states:
                with self.subTest(number=number, root=example.stem):
                    check(example)

    def test_there_are_enough(self):
        self.assertGreaterEqual(len(self.examples), LEAST_EXAMPLES)

    def test_dump_prints_the_json(self):
        def check(example):
            dump = self.run_command("dump", "--root", example.stem, given=example.bytes)
            self.assertEqual(dump.stdout.decode(), example.line)
            self.assertEqual(dump.returncode, 0, dump.stderr)

        self.for_each(check)

    def test_written_ones_are_good(self):
        def check(example):
            self.assertEqual(self.verify(example, "--strict"), 0)

        self.for_each(check, ["written"])

    def test_odd_ones_are_odd(self):
        def check(example):
            self.assertEqual(self.verify(example), 0)
            self.assertEqual(self.verify(example, "--strict"), 1)

        self.for_each(check, ["odd"])

    def test_encode_gives_the_bytes_of_written_ones(self):
        def check(example):
            encode = self.run_command("encode", "-o", "-", given=example.line.encode())
            self.assertEqual(encode.returncode, 0, encode.stderr)
            self.assertEqual(encode.stdout.hex(" "), example.bytes.hex(" "))

        self.for_each(check, ["written"])

    def verify(self, example, *options):
        return self.run_command("verify", *options, "--root", example.stem,
                                given=example.bytes).returncode


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    WireForm.bradep = sys.argv.pop(1)
    WireForm.page = pathlib.Path(sys.argv.pop(1))
    unittest.main()
