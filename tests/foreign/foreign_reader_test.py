#!/usr/bin/env python3
"""Tests that the reader written from the page on the wire form prints the same as `bradep dump`.

foreign_reader_test.py BRADEP READER GOLDEN_DIR [SEED [DAMAGES]]
"""

import importlib.util
import json
import os
import random
import subprocess
import sys
import tempfile
import unittest

WORD = 4

NUMBER_PIECES = [b"0", b"1", b"1", b"F", b"000001", b"800000", b".", b"-", b"+", b" ", b"\t", b"0x",
                 b"p", b"@", b"p-25", b"p-150", b"@32", b"p99999999999999999999", b"nan", b"@inf@",
                 b"g", b"\0"]


def load(path):
    """Loads the module of a file without writing a compiled one beside it."""
    sys.dont_write_bytecode = True
    spec = importlib.util.spec_from_file_location("reader", path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def word(value):
    return value.to_bytes(WORD, "little", signed=True)


def random_string(chance):
    """A string whose id may be defined twice, too late, or not at all."""
    identifier = chance.randint(-4, 4)
    return word(identifier) + (b"" if identifier > 0 else word(1) + chance.choice([b"a", b"b"]))


def random_table(chance):
    """The bytes of a String_To_StringSet_T with repeated keys and elements."""
    data = word(4)
    for _ in range(4):
        data += random_string(chance) + word(3)
        data += b"".join([random_string(chance) for _ in range(3)])
    return data


def random_number(chance):
    text = b"".join(chance.choices(NUMBER_PIECES, k=chance.randint(0, 5)))
    return word(len(text)) + text


def random_float(chance):
    """Any text, or a number with one bit too many or near the smallest or largest of its width."""
    if chance.random() < 0.5:
        return random_number(chance) + word(chance.choice([16, 32, 40, 48, 64, 80, 128]))
    width, bits, least, greatest = chance.choice(
        [(16, 11, -23, 16), (32, 24, -148, 128), (64, 53, -1073, 1024)])
    bits = chance.choice([1, bits, bits + 1])
    mantissa = chance.getrandbits(bits) | 1 << (bits - 1) | 1
    exponent = chance.choice([least, 0, greatest]) + chance.randint(-2, 2) - bits
    text = f"{mantissa:x}p{exponent}".encode()
    return word(len(text)) + text + word(width)


def random_range(chance):
    """The bytes of an Answers_AnswerInspectionPoint with two integers or two floats."""
    if chance.random() < 0.25:
        return (b"F" + word(0) + word(0)
                + b"".join([b"T" + random_number(chance) for _ in range(2)]))
    floats = [random_float(chance) for _ in range(2)]
    return b"F" + word(0) + word(1) + 3 * word(0) + b"T" + b"".join(floats) + b"F"


def swap_words(data, chance):
    words = range(len(data) // WORD)
    offset = chance.randrange(WORD)
    first, second = [chance.choice(words) * WORD + offset for _ in range(2)]
    data[first:first + WORD], data[second:second + WORD] = (data[second:second + WORD],
                                                            data[first:first + WORD])


def damaged(data, chance):
    """The bytes with one to three random damages."""
    data = bytearray(data)
    for _ in range(chance.choice([1, 1, 1, 2, 3])):
        at = chance.randrange(len(data) + 1)
        damage = chance.choice(["bit", "byte", "insert", "delete", "swap"])
        if damage == "insert":
            data[at:at] = chance.randbytes(chance.randint(1, WORD))
        elif damage == "delete":
            del data[at:at + chance.randint(1, WORD)]
        elif damage == "swap" and len(data) >= 2 * WORD:
            swap_words(data, chance)
        elif damage == "bit" and at < len(data):
            data[at] ^= 1 << chance.randrange(8)
        elif at < len(data):
            data[at] = chance.choice([0, 1, 2, 0x46, 0x54, 0xFF, chance.randrange(256)])
    return bytes(data)


class ForeignReader(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.reader = load(READER)
        cls.directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.directory.cleanup)
        cls.schema_path = os.path.join(cls.directory.name, "schema.json")
        with open(cls.schema_path, "wb") as file:
            subprocess.run([BRADEP, "schema"], stdout=file, check=True)
        with open(cls.schema_path, encoding="utf-8") as file:
            cls.schema = cls.reader.Schema(json.load(file))
        cls.golden = {}
        for name in sorted(os.listdir(GOLDEN)):
            if not name.endswith(".bin"):
                continue
            with open(os.path.join(GOLDEN, name), "rb") as file:
                cls.golden[name] = name.partition(".")[0], file.read()

    def path_of(self, data):
        path = os.path.join(self.directory.name, "bytes")
        with open(path, "wb") as file:
            file.write(data)
        return path

    def dumped(self, stem, data):
        """The output of `bradep dump`; None if the bytes are unsafe."""
        result = subprocess.run([BRADEP, "dump", "--root", stem, self.path_of(data)],
                                capture_output=True, check=False)
        self.assertIn(result.returncode, (0, 1), result.stderr)
        return result.stdout if result.returncode == 0 else None

    def read(self, stem, data):
        """The output of the reader; None if it refuses the bytes."""
        try:
            return self.reader.dump(self.schema, stem, data).encode("utf-8")
        except self.reader.Bad:
            return None

    def compare(self, stem, data):
        """Compares both outputs. Returns whether the bytes are unsafe."""
        expected = self.dumped(stem, data)
        self.assertEqual(self.read(stem, data), expected, f"{stem} {data.hex()}")
        return expected is None

    def test_reads_all_golden_files(self):
        self.assertEqual({stem for stem, _ in self.golden.values()}, set(self.schema.roots))
        for name, (stem, data) in self.golden.items():
            with self.subTest(name):
                self.assertFalse(self.compare(stem, data))

    def test_reads_damaged_files_alike(self):
        print(f"seed {SEED}", file=sys.stderr)
        chance = random.Random(SEED)
        names = list(self.golden)
        bad = 0
        for number in range(DAMAGES):
            stem, data = self.golden[chance.choice(names)]
            with self.subTest(f"seed {SEED}, damage {number}"):
                bad += self.compare(stem, damaged(data, chance))
        print(f"{DAMAGES} damaged files, {bad} of them bad", file=sys.stderr)
        self.assertTrue(0 < bad < DAMAGES)

    def test_reads_odd_values_alike(self):
        chance = random.Random(SEED)
        for number in range(DAMAGES // 5):
            for stem, make in [("String_To_StringSet_T", random_table),
                               ("Answers_AnswerInspectionPoint", random_range)]:
                with self.subTest(f"seed {SEED}, {stem} {number}"):
                    self.assertFalse(self.compare(stem, make(chance)))

    def test_reads_deep_values(self):
        stem = "IL_Extras_ZelvaniteResultData"
        head = [4, 1, 3, -1, 0, 0]  # Annotated_Command, one Valued_Event_Annote, its text and int32
        for depth, is_bad in [(397, False), (398, True), (50000, True)]:
            # Nested arms: the last is Info_Var, all others are Info_Field; then a text for each.
            words = head + [2] * (depth - 1) + [5] + [1] * depth
            data = b"".join(map(word, words))
            with self.subTest(depth):
                self.assertEqual(self.compare(stem, data), is_bad)

    def run_reader(self, stem, data):
        return subprocess.run(
            [sys.executable, READER, self.schema_path, stem, self.path_of(data)],
            capture_output=True, check=False)

    def test_is_a_command(self):
        for stem, data in dict(self.golden.values()).items():
            with self.subTest(stem):
                result = self.run_reader(stem, data)
                self.assertEqual(result.returncode, 0, result.stderr)
                self.assertEqual(result.stdout, self.dumped(stem, data))

    def test_command_refuses_bad_bytes(self):
        for data in [b"", b"TT"]:
            result = self.run_reader("Answers_Answer", data)
            self.assertEqual(result.returncode, 1)
            self.assertEqual(result.stdout, b"")
            self.assertEqual(result.stderr.count(b"\n"), 1, result.stderr)


if __name__ == "__main__":
    BRADEP, READER, GOLDEN = sys.argv[1:4]
    SEED = int(sys.argv[4]) if len(sys.argv) > 4 else 1
    DAMAGES = int(sys.argv[5]) if len(sys.argv) > 5 else 500
    unittest.main(argv=sys.argv[:1])
