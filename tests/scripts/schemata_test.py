#!/usr/bin/env python3
"""Tests scripts/mutation: where a mutant goes in a source text, and that the program made of it
does what the mutant says, and only where it is chosen.

    schemata_test.py SCRIPTS COMPILER
"""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPTS, COMPILER = sys.argv[1:3]
sys.path.insert(0, SCRIPTS)

from mutation.cpp_text import code_of, masked  # noqa: E402
from mutation.schemata import HEADER, HEADER_LINE, HEADER_TEXT, Change, Schema  # noqa: E402

PROGRAM = """\
#include <cstdio>
#include <string>

namespace {

constexpr int table[] = {1, 2, 3};

struct Counter {
    explicit Counter(int start) : value_(start + 1) {}  // one more
    int value_;
};

int sum(int most) {
    int total = 0;
    for (int i = 0; i < most; ++i)
        if (i == 2)
            total += 10;
        else
            total += i;  // "else" follows
    return total;
}

std::string quoted(std::string const& text) {
    auto const quote = '"';
    std::string result;
    result += quote;
    if (auto const size = text.size(); size > 3) return "(long)";
    return result + text + quote;
}

}  // namespace

int main() {
    std::printf("%d %d ", sum(4), Counter(6).value_);
    std::printf("%s %d\\n", quoted("ab{").c_str(), table[1]);
}
"""
USUAL = '14 7 "ab{" 2\n'


def schema_of(*changes: tuple[str, str]) -> Schema:
    return Schema(PROGRAM, [Change.of(number, PROGRAM, old, new)
                            for number, (old, new) in enumerate(changes, 1)])


class Programs(unittest.TestCase):
    def printed(self, schema: Schema, *chosen: int) -> list[str]:
        """By the program without a mutant, then with each of the chosen ones."""
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            (folder / HEADER).parent.mkdir()
            (folder / HEADER).write_text(HEADER_TEXT, encoding="utf-8")
            (folder / "main.cpp").write_text(schema.text(), encoding="utf-8")
            subprocess.run([COMPILER, "-std=c++20", "-w", "-I.", "main.cpp", "-o", "main"],
                           cwd=folder, check=True)
            return [self.run_program(folder, number) for number in (None, *chosen)]

    def run_program(self, folder: Path, number: int | None) -> str:
        reached = folder / "reached"
        reached.unlink(missing_ok=True)
        chosen = {} if number is None else {"BRADEP_MUTANT": str(number)}
        settings = {**os.environ, **chosen, "BRADEP_MUTANT_REACHED": str(reached)}
        printed = subprocess.run([folder / "main"], env=settings, check=True, capture_output=True,
                                 text=True).stdout
        self.assertEqual(reached.exists(), number is not None)
        return printed

    def test_each_mutant_has_an_effect_when_it_is_chosen(self):
        schema = schema_of(
            ("i < most", "i <= most"),
            ("if (i == 2)", "if (true)"),
            ("total += i;", "total -= i;"),
            ("total += 10;", ""),
            ("int total = 0;", "int total = 1;"),
            ("value_(start + 1)", "value_(start)"),
            ("size > 3", "size > 2"),
            ("""auto const quote = '"';""", """auto const* const quote = "'";"""),
            ("result += quote;", "result += '<';"))
        # A value of another type can't stand beside the old one, but its block can.
        schema.choose_larger(8)
        self.assertEqual(schema.placed[8].construct.kind, "block")
        self.assertEqual(
            self.printed(schema, *range(1, 10)),
            [USUAL, '18 7 "ab{" 2\n', '40 7 "ab{" 2\n', '6 7 "ab{" 2\n', '4 7 "ab{" 2\n',
             '15 7 "ab{" 2\n', '14 6 "ab{" 2\n', '14 7 (long) 2\n', "14 7 'ab{' 2\n",
             '14 7 <ab{" 2\n'])

    def test_mutants_of_one_construct_are_a_chain(self):
        schema = schema_of(("i < most", "i <= most"), ("i < most", "i < 1"))
        self.assertEqual(self.printed(schema, 1, 2), [USUAL, '18 7 "ab{" 2\n', '0 7 "ab{" 2\n'])


class Places(unittest.TestCase):
    def test_what_is_evaluated_while_compiling_is_left(self):
        self.assertEqual(schema_of(("{1, 2, 3}", "{1, 3, 3}")).numbers(), [])

    def test_lines_stay(self):
        schema = schema_of(("total += 10;", "total += 9;"), ("return total;", "return -total;"))
        before, after = PROGRAM.split("\n"), schema.text().split("\n")
        self.assertEqual(after[0] + "\n", HEADER_LINE)
        self.assertEqual(len(after), len(before) + 1)
        self.assertEqual([i for i, line in enumerate(before) if line != after[i + 1]], [16, 19])

    def test_an_error_is_due_to_the_mutant_at_its_place(self):
        schema = schema_of(("total += 10;", "nothing();"), ("return total;", "return -total;"))
        lines = schema.text().split("\n")
        line = next(i for i, text in enumerate(lines, 1) if "nothing" in text)
        self.assertEqual(schema.owners(line, lines[line - 1].index("nothing") + 1), (1,))
        self.assertEqual(schema.owners(line + 3, lines[line + 2].index("-total") + 1), (2,))
        self.assertEqual(schema.owners(3, 1), ())


class Texts(unittest.TestCase):
    def test_a_mask_is_as_long_as_the_text(self):
        text = 'a("{\\"", \'}\', 1\'000, R"x()")x"); // {\n/* ( */ b();'
        self.assertEqual(len(masked(text)), len(text))
        self.assertEqual(masked(text).count("("), 2)
        self.assertEqual(masked(text).count("{"), 0)

    def test_comments_and_white_space_are_no_code(self):
        self.assertEqual(code_of("a = b;  // c\n/* d */ e"), code_of("a=\nb; e"))
        self.assertNotEqual(code_of('a = "b c";'), code_of('a = "bc";'))
        self.assertNotEqual(code_of('a = "//b";'), code_of('a = "//c";'))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
