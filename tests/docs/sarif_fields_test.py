#!/usr/bin/env python3
"""Compares the tables on the page on SARIF with the rows that import and restore use.

    sarif_fields_test.py PRINTER PAGE BUILD        compares them
    sarif_fields_test.py PRINTER PAGE --update     writes the tables into the page
"""

import difflib
import pathlib
import subprocess
import sys

BEGIN = "<!-- fields: begin -->\n"
END = "<!-- fields: end -->\n"


def cut(page):
    """Splits the page: the text before the tables, the tables, and the text after them."""
    if page.count(BEGIN) != 1 or page.count(END) != 1:
        sys.exit(f"the page has not one {BEGIN.strip()} and one {END.strip()}")
    before, rest = page.split(BEGIN)
    table, behind = rest.split(END)
    return before + BEGIN, table, END + behind


def main(printer, page_name, build_or_update):
    page = pathlib.Path(page_name)
    before, table, behind = cut(page.read_text(encoding="utf-8"))
    printed = subprocess.run([printer], check=True, capture_output=True, timeout=60).stdout.decode()
    if build_or_update == "--update":
        page.write_text(before + printed + behind, encoding="utf-8")
        return 0
    if table == printed:
        return 0
    sys.stdout.writelines(difflib.unified_diff(
        table.splitlines(keepends=True), printed.splitlines(keepends=True), page_name, "the table"))
    print(f"\nTo mend the page: cmake --build {build_or_update} --target sarif_fields_page")
    return 1


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
