#!/usr/bin/env python3
"""Compares the tables of every root with a second implementation, on golden files and random ones.

usage: tables_test.py BRADEP RANDOM_VALUES GOLDEN_DIR [FILE:ROOT...]
"""
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile

import tables_reference as reference


MARK = {"mark": "of the next table"}


def rows_of_tables(command, stem, file, tables):
    """The rows of all tables, by one call of the command."""
    mark = json.dumps(MARK["mark"]).replace('"', "'")
    sql = "".join(f'SELECT {mark} AS mark; SELECT * FROM "{table}";' for table in tables)
    lines = reference.run(command, "sql", "--root", stem, "--format", "ndjson", file, sql)
    rows = []
    for row in map(reference.loads, lines.splitlines()):
        if row == MARK:
            rows.append([])
        else:
            rows[-1].append(row)
    return dict(zip(tables, rows, strict=True))


def declared(command, stem):
    """The columns of each table, as `bradep tables` prints them."""
    tables = {}
    name = None
    for line in reference.run(command, "tables", "--root", stem).splitlines():
        if line.startswith("CREATE TABLE"):
            name = line.split('"')[1]
            tables[name] = []
        elif line.startswith('  "') and name:
            tables[name].append(line.split('"')[1])
        elif line.startswith(")"):
            name = None
    return tables


DECLARED = {}  # by stem


def check(command, schema, stem, file, orders):
    expected = reference.Schema(schema, stem)
    expected.fill(reference.dumped(command, stem, file))
    tables = DECLARED.setdefault(stem, declared(command, stem))
    compared = 0
    names = [table.name for table in expected.tables]
    rows = rows_of_tables(command, stem, file, names)
    for table in expected.tables:
        if tables.get(table.name) != table.columns:
            return f"{table.name}: declared {tables.get(table.name)} instead of {table.columns}", 0
        what = reference.difference(table, rows[table.name], orders)
        if what:
            return what, 0
        compared += len(table.rows)
    return None, compared


def check_orders(orders):
    """The texts for ordering must be ordered by bytes as the integers are."""
    orders.sort()
    for (number, text), (other, other_text) in zip(orders, orders[1:]):
        if (number == other) != (text == other_text) or text > other_text:
            return f"{number} has {text}, {other} has {other_text}"
    return None


def is_safe(command, stem, file):
    done = subprocess.run([command, "verify", "-q", "--root", stem, file], capture_output=True)
    return done.returncode == 0


def odd_files(command, golden, directory):
    """Golden files with a changed byte that are safe to read, mostly odd ones."""
    seed = int(os.environ.get("BRADEP_SEED", random.randrange(2**32)))
    print(f"BRADEP_SEED={seed} for changed bytes")
    generator = random.Random(seed)
    changed = []
    for i in range(200):
        source = generator.choice(golden)
        content = bytearray(source.read_bytes())
        content[generator.randrange(len(content))] = generator.choice([0, 1, 2, 70, 84, 255])
        file = pathlib.Path(directory) / f"{stem_of(source)}.changed{i}.bin"
        file.write_bytes(content)
        if is_safe(command, stem_of(source), str(file)):
            changed.append(file)
        else:
            file.unlink()
    assert len(changed) > 20
    return changed


def stem_of(file):
    return file.name.split(".")[0]


def main():
    command, random_values, goldens, *more = sys.argv[1:]
    schema = json.loads(reference.run(command, "schema"))
    stems = {root["stem"] for root in schema["roots"]}
    golden = sorted(pathlib.Path(goldens).glob("*.bin"))
    assert {stem_of(file) for file in golden} == stems, "a root has no golden file"
    orders = []
    rows = failures = 0
    with tempfile.TemporaryDirectory() as directory:
        print(reference.run(random_values, directory), end="")  # the seed
        odd_files(command, golden, directory)
        files = [(str(file), stem_of(file))
                 for file in golden + sorted(pathlib.Path(directory).iterdir())]
        files += [tuple(one.rsplit(":", 1)) for one in more]
        for file, stem in files:
            what, compared = check(command, schema, stem, file, orders)
            rows += compared
            if what:
                failures += 1
                print(f"{file}: {what}")
    wrong_order = check_orders(orders)
    print(f"{len(files)} files, {rows} rows, {len(orders)} big integers compared")
    if wrong_order:
        print(wrong_order)
    assert rows > 0 and orders
    sys.exit(1 if failures or wrong_order else 0)


if __name__ == "__main__":
    main()
