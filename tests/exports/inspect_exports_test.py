#!/usr/bin/env python3
"""Tests that the inspection library exports exactly the names in inspect_exports.txt.

    inspect_exports_test.py NM LIBRARY HEADER...    runs the tests
    inspect_exports_test.py NM LIBRARY --update     rewrites inspect_exports.txt from the library

The headers are the installed ones. They must declare the exported functions and no others.
"""

import pathlib
import re
import sys
import unittest

from exports_test import exported_names

LIST = pathlib.Path(__file__).with_name("inspect_exports.txt")


def declared_functions(headers):
    """The names of the functions that the headers mark as exported."""
    mark = r'(?<!#define )(?:SML_API|__attribute__\(\(visibility\("default"\)\)\))'
    return {name for header in headers
            for name in re.findall(rf"{mark}[^;{{]*?\b(\w+)\(", header.read_text())}


class InspectExports(unittest.TestCase):
    names = set()
    headers = []

    def test_library_exports_the_listed_names(self):
        self.assertEqual(sorted(self.names), LIST.read_text().splitlines())

    def test_installed_headers_declare_what_is_exported(self):
        exported = {re.search(r"(\w+)(?:\[.*?\])?(?:\(|$)", name).group(1) for name in self.names}
        self.assertEqual(sorted(exported), sorted(declared_functions(self.headers)))


if __name__ == "__main__":
    InspectExports.names = exported_names(sys.argv[1], sys.argv[2])
    if sys.argv[3:] == ["--update"]:
        LIST.write_text("".join(f"{name}\n" for name in sorted(InspectExports.names)))
    else:
        InspectExports.headers = [pathlib.Path(header) for header in sys.argv[3:]]
        unittest.main(argv=sys.argv[:1])
