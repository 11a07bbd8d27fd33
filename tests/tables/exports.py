"""What the tests of exports share: running the command, and reading exports."""

import csv
import json
import pathlib
import re
import sqlite3
import subprocess

MARK = {"mark": "of the next table"}
VIEWS = ["findings", "steps", "places", "rules", "files", "tools"]


def run(*command, **options):
    done = subprocess.run(list(map(str, command)), capture_output=True, text=True, errors="replace",
                          check=False, **options)
    assert done.returncode == 0, f"{command[:3]}: {done.stderr}"
    return done.stdout


def lines(text):
    return [json.loads(line) for line in text.split("\n") if line]


def asked(bradep, sets, names, stem=None):
    """The rows of tables and views by `bradep sql`: a list of cells for each."""
    sql = "".join(f"SELECT '{MARK['mark']}' AS mark; SELECT * FROM \"{name}\";" for name in names)
    root = ["--root", stem] if stem else []
    rows = []
    for row in lines(run(bradep, "sql", *root, "--format", "ndjson", *sets, sql)):
        if row == MARK:
            rows.append([])
        else:
            rows[-1].append(list(row.values()))
    return dict(zip(names, rows, strict=True))


def tables_and_views(bradep, stem=None):
    """What is exported: all but the table that tells about bytes."""
    printed = run(bradep, "tables", *(["--root", stem] if stem else []))
    names = re.findall(r'^CREATE (?:TABLE|VIEW) "?(\w+)"?', printed, re.MULTILINE)
    return [name for name in names if name != "sizes"]


def number_of(digest):
    """The number of a result set in files: the first 53 bits of the SHA-256 in its identity."""
    return int(digest.removeprefix("bytes:"), 16) >> (256 - 53)


def numbered(rows, sets):
    """Rows with the numbers that files have, of rows with others: `sets` are those of `result_sets`."""
    numbers = {row[0]: number_of(row[4]) for row in sets}
    return [[numbers[row[0]], *row[1:]] for row in rows]


def in_order(rows):
    """Rows in one order, whatever it was. 1 and 1.0 differ, as they do in a column."""
    return sorted(rows, key=repr)


def of_sqlite(database, names):
    """The rows, with the numbers that files have."""
    connection = sqlite3.connect(f"file:{database}?mode=ro", uri=True)
    try:
        sets = list(connection.execute("SELECT * FROM result_sets"))
        return {name: numbered(map(shown, connection.execute(f'SELECT * FROM "{name}"')), sets)
                for name in names}
    finally:
        connection.close()


def shown(row):
    """A row as JSON has it, which has no infinite numbers."""
    return [str(cell) if cell in (float("inf"), float("-inf")) else cell for cell in row]


def csv_rows(text):
    """The rows of a CSV file, with None for a null. The first one has the names of the columns."""
    assert text.endswith("\n"), "the last line does not end"
    rows = []
    row = []
    at = 0
    while at < len(text):
        if text[at] == '"':
            cell, at = quoted(text, at + 1)
        else:
            end = min(text.find(",", at) % (len(text) + 1), text.index("\n", at))
            cell, at = plain(text[at:end]), end
        row.append(cell)
        if text[at] == "\n":
            rows.append(row)
            row = []
        else:
            assert text[at] == ",", f"{text[at]!r} behind a cell"
        at += 1
    return rows


def quoted(text, at):
    parts = []
    while True:
        end = text.index('"', at)
        parts.append(text[at:end])
        if text[end + 1] != '"':
            return "".join(parts), end + 1
        parts.append('"')
        at = end + 2


def plain(text):
    if text == "\\N":
        return None
    if text in ("inf", "-inf"):
        return text
    return json.loads(text)


def of_directory(directory, names):
    """The rows of an export to files. A text file of Python would take "\\r" for a new line."""
    found = {}
    for name in names:
        found[name] = []
        for file in sorted((pathlib.Path(directory) / name).glob("*")):
            text = file.read_bytes().decode()
            if file.suffix == ".csv":
                found[name] += csv_rows(text)[1:]
            else:
                found[name] += [list(row.values()) for row in lines(text)]
    return found


def check_csv_reader():
    """The reader of this module agrees with that of Python where that knows no difference."""
    text = '"a","b"\n1,"x ""y"" \n, z"\n-2.5e-3,""\n'
    expected = [[cell if i == 0 or k else json.loads(cell) for k, cell in enumerate(row)]
                for i, row in enumerate(csv.reader(text.splitlines(keepends=True)))]
    assert csv_rows(text) == expected, (csv_rows(text), expected)


check_csv_reader()
