"""The tables of a result set, made from the JSON that `bradep dump` prints.

A second implementation of what sml/tables/table.hpp and rows.hpp say, which shares nothing with
them but the descriptors that `bradep schema` prints.
"""
import fractions
import json
import re
import subprocess


class Number(str):
    """A JSON number as it is spelled."""


def run(command, *arguments):
    done = subprocess.run([command, *arguments], capture_output=True)
    if done.returncode != 0:
        raise RuntimeError(f"{' '.join(arguments)}: {done.stderr.decode(errors='replace')}")
    return done.stdout.decode(errors="surrogatepass")


def text_cell(text):
    """A text as a cell has it: lone surrogates and NUL are spelled out."""
    return re.sub("[\udc80-\udcff\0]", lambda found: "\\u%04x" % ord(found.group()), text)


def nearest_double(text):
    """The double nearest to a float's text; None for no number."""
    if text == "NAN":
        return None
    sign = -1.0 if text.startswith("-") else 1.0
    text = text.lstrip("-")
    if text == "INF":
        return sign * float("inf")
    digits, exponent = re.fullmatch(r"0X([0-9A-F.]+)P([+-]\d+)", text).groups()
    whole, _, part = digits.partition(".")
    number = fractions.Fraction(int(whole + part, 16), 16 ** len(part))
    number *= fractions.Fraction(2) ** int(exponent)
    try:
        return sign * (number.numerator / number.denominator)  # rounds to the nearest, ties to even
    except OverflowError:
        return sign * float("inf")


class Table:
    def __init__(self, name, path, parent):
        self.name, self.path, self.parent = name, path, parent
        self.columns = ["result_set"]
        self.rows = []


class Schema:
    """The tables of a root and their rows."""

    def __init__(self, schema, stem):
        self.types = schema["types"]
        self.root = next(root["type"] for root in schema["roots"] if root["stem"] == stem)
        self.tables = []
        self.orders = []  # big integers and their texts for ordering, to be compared
        root = self.add_table([], None)
        self.declare(root, self.root, [])
        self.name_tables()

    # A type as (kind, parts), where parts depend on the kind.
    def resolve(self, given):
        if isinstance(given, str):
            if given not in self.types:
                return given, None
            given = dict(self.types[given])
            return given.pop("kind"), given
        kind = next(iter(given))
        return kind, given[kind]

    def add_table(self, path, parent):
        table = Table("root", path, parent)
        if parent is not None:
            table.columns += ["row"] + (["parent", "position"] if parent.parent else [])
        self.tables.append(table)
        return table

    def name_tables(self):
        tops = [table for table in self.tables if table.parent and not table.parent.parent]
        for table in tops:
            for length in range(1, len(table.path) + 1):
                suffix = table.path[-length:]
                if sum(other.path[-length:] == suffix for other in tops) == 1:
                    break
            table.name = "__".join(suffix)
        for table in self.tables:
            if table.parent and table.parent.parent:
                own = table.path[len(table.parent.path):]
                table.name = "__".join([table.parent.name, *own])

    @staticmethod
    def column(names):
        return "__".join(names) or "value"

    def parts(self, kind, more):
        if kind == "tuple":
            return [(f"p{i}", part) for i, part in enumerate(more)]
        if kind == "flags":
            return [(f"p{i}", "bool") for i in range(more)]
        return [(field["name"], field["type"]) for field in more["fields"]]

    def own_column(self, element):
        kind, more = self.resolve(element)
        if kind == "boxed":
            return self.own_column(more)
        return kind in ("tuple", "flags", "record", "group", "list", "set", "map", "optional")

    def declare(self, table, given, names):
        kind, more = self.resolve(given)
        name = self.column(names)
        if kind in ("tuple", "flags", "record", "group"):
            for part, part_type in self.parts(kind, more):
                self.declare(table, part_type, names + [part])
        elif kind == "boxed":
            self.declare(table, more, names)
        elif kind == "optional":
            if self.own_column(more):
                table.columns.append(name)
            inner = names + ["value"] if self.resolve(more)[0] == "optional" else names
            self.declare(table, more, inner)
        elif kind in ("list", "set", "map"):
            child = self.add_table(table.path + (names or ["value"]), table)
            self.declare_entry(child, kind, more)
        elif kind in ("variant", "reference"):
            table.columns += [name, name + "_args"]
        elif kind == "integer":
            table.columns += [name, name + "_order"]
        elif kind == "double":
            table.columns += [name, name + "_double"]
        elif kind == "float":
            table.columns += [name, name + "_width", name + "_double"]
        else:
            table.columns.append(name)

    def key_parts(self, key):
        kind, more = self.resolve(key)
        if kind != "tuple":
            return None
        return [(f"key{i}", part) for i, part in enumerate(more)]

    def declare_entry(self, table, kind, more):
        if kind == "map":
            key, more = more
            for name, part in self.key_parts(key) or [("key", key)]:
                self.declare(table, part, [name])
        self.declare(table, more, [])

    def fill(self, value, result_set=1):
        """Adds the rows of a value, as `dump` prints it."""
        self.counts = {table.name: 0 for table in self.tables}
        self.result_set = result_set
        row = {"result_set": result_set}
        self.by_path = {tuple(table.path): table for table in self.tables}
        self.read(self.tables[0], row, self.root, [], value, None)
        self.tables[0].rows.append(row)

    def read(self, table, row, given, names, value, number):
        """Adds the columns of a value to a row; a missing value adds nothing."""
        kind, more = self.resolve(given)
        name = self.column(names)
        if kind in ("tuple", "flags"):
            for (part, part_type), element in zip(self.parts(kind, more), value, strict=True):
                self.read(table, row, part_type, names + [part], element, number)
        elif kind in ("record", "group"):
            for part, part_type in self.parts(kind, more):
                self.read(table, row, part_type, names + [part], value[part], number)
        elif kind == "boxed":
            self.read(table, row, more, names, value, number)
        elif kind == "optional":
            if self.own_column(more):
                row[name] = 0 if value is None else 1
            inner = names + ["value"] if self.resolve(more)[0] == "optional" else names
            if value is not None:
                self.read(table, row, more, inner, value, number)
        elif kind in ("list", "set", "map"):
            child = self.by_path[tuple(table.path + (names or ["value"]))]
            self.read_entries(child, kind, more, value, number)
        else:
            self.read_leaf(row, kind, name, value)

    def read_entries(self, table, kind, more, entries, parent):
        for position, entry in enumerate(entries):
            number = self.counts[table.name]
            self.counts[table.name] += 1
            row = {"result_set": self.result_set, "row": number}
            if table.parent.parent:
                row.update(parent=parent, position=position)
            element = more
            if kind == "map":
                key, element = more
                parts = self.key_parts(key)
                if parts is None:
                    self.read(table, row, key, ["key"], entry[0], number)
                else:
                    for (name, part), value in zip(parts, entry[0], strict=True):
                        self.read(table, row, part, [name], value, number)
                entry = entry[1]
            table.rows.append(row)
            self.read(table, row, element, [], entry, number)

    def read_leaf(self, row, kind, name, value):
        if kind in ("int32", "uint32"):
            row[name] = int(value)
        elif kind == "int64":
            row[name] = int(value)
        elif kind == "uint64":
            row[name] = value
        elif kind == "bool":
            row[name] = int(value)
        elif kind == "enumeration":
            row[name] = str(value)
        elif kind in ("string", "text"):
            row[name] = text_cell(value)
        elif kind in ("variant", "reference"):
            row[name] = value["arm"]
            row[name + "_args"] = Json(value["args"]) if "args" in value else None
        elif kind == "integer":
            row[name] = value
            row[name + "_order"] = Order(int(value))
        elif kind == "double":
            row[name] = str(value)
            row[name + "_double"] = None if "nan" in value else float(value)
        elif kind == "float":
            row[name] = value["hex"]
            row[name + "_width"] = int(value["width"])
            row[name + "_double"] = nearest_double(value["hex"])
        else:
            raise AssertionError(f"no such kind: {kind}")


class Json:
    """A value that a cell holds as JSON."""

    def __init__(self, value):
        self.value = value


class Order(int):
    """A big integer that a cell holds in the form for ordering."""


def loads(text):
    return json.loads(text, parse_int=Number, parse_float=Number)


def dumped(command, stem, file):
    return loads(run(command, "dump", "--root", stem, "-q", file))["value"]


def difference(table, rows, orders):
    """What is different between the expected rows of a table and these; None if nothing."""
    if len(rows) != len(table.rows):
        return f"{table.name}: {len(rows)} rows instead of {len(table.rows)}"
    for expected, found in zip(table.rows, rows):
        if list(found) != table.columns:
            return f"{table.name}: columns {list(found)} instead of {table.columns}"
        for column, cell in found.items():
            wanted = expected.get(column)
            if isinstance(wanted, Json):
                cell = loads(cell)
                wanted = wanted.value
            elif isinstance(wanted, Order):
                orders.append((int(wanted), cell.encode()))
                continue
            elif isinstance(wanted, float):
                cell = float(cell)
            elif isinstance(wanted, int) and not isinstance(wanted, str):
                cell = int(cell) if isinstance(cell, Number) else cell
            elif isinstance(cell, Number):
                return f"{table.name}.{column}: the number {cell} instead of {wanted!r}"
            if cell != wanted or type(cell) is not type(wanted):
                return f"{table.name}.{column}: {cell!r} instead of {wanted!r}"
    return None
