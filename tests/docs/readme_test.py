#!/usr/bin/env python3
"""README.md gives the numbers of types that the schema has.

    readme_test.py SOURCE_DIR
"""

import pathlib
import re
import sys
import unittest


class Readme(unittest.TestCase):
    sources = pathlib.Path()

    def lines_with(self, file, pattern):
        text = (self.sources / file).read_text(encoding="utf-8")
        return len(re.findall(pattern, text, re.MULTILINE))

    def expect(self, words):
        text = " ".join((self.sources / "README.md").read_text(encoding="utf-8").split())
        self.assertTrue(words in text, f"the top of README.md must say: {words}")

    def test_gives_the_number_of_record_and_variant_types(self):
        types = self.lines_with("tests/all_types.hpp", r"^ +X\(")
        self.expect(f"one C++ class for each of the {types} record and variant types")

    def test_gives_the_number_of_roots(self):
        roots = self.lines_with("sml/bindings/roots.def", r"^SML_ROOT\(")
        self.expect(f"seven entry points for each of {roots} root types")


if __name__ == "__main__":
    Readme.sources = pathlib.Path(sys.argv[1])
    unittest.main(argv=sys.argv[:1])
