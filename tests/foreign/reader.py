#!/usr/bin/env python3
"""Prints bytes of the wire form as JSON. It was written from docs/wire-form.md alone.

reader.py SCHEMA.json STEM FILE prints the same line as `bradep dump --root STEM FILE`; SCHEMA.json
is the output of `bradep schema`. The exit code is 1 for unsafe bytes and 2 for wrong usage.
"""

import json
import math
import re
import sys
from decimal import Decimal
from fractions import Fraction

MAX_DEPTH = 400  # levels of variants and containers
SPACE = rb"[ \t\n\v\f\r]*"

# A level of a value takes a few calls, all between Python functions, which use no C stack.
sys.setrecursionlimit(max(sys.getrecursionlimit(), 100 * MAX_DEPTH))
sys.set_int_max_str_digits(0)


class Bad(Exception):
    """The bytes are unsafe: they are not part of the form."""


class Unequal(Exception):
    """The key or element is unequal to everything, even to itself."""


class Wire:
    """The bytes, the offset of the next one, and the strings defined so far."""

    def __init__(self, data):
        self.data = data
        self.at = 0
        self.depth = 0
        self.strings = {}  # by id

    def take(self, size):
        if size < 0:
            raise Bad(f"byte {self.at}: length {size}")
        start, self.at = self.at, self.at + size
        if self.at > len(self.data):
            raise Bad(f"byte {start}: {size} more bytes wanted, {len(self.data) - start} there")
        return self.data[start:self.at]

    def word(self, size=4, signed=True):
        return int.from_bytes(self.take(size), "little", signed=signed)

    def flag(self):
        return self.take(1) == b"T"

    def text(self):
        return self.take(self.word())

    def number_text(self):
        return self.text().partition(b"\0")[0]

    def enter(self):
        self.depth += 1
        if self.depth > MAX_DEPTH:
            raise Bad(f"byte {self.at}: deeper than {MAX_DEPTH}")

    def leave(self):
        self.depth -= 1

    def end(self):
        if self.at != len(self.data):
            raise Bad(f"byte {self.at}: more bytes behind the value")


# Each class below is a type. read() returns a value, which is read over `old` if that is not None;
# write() appends the value's JSON to the list `out`; key() returns a key, which is equal for equal
# values only.


class Type:
    def key(self, value):
        return value


class Word(Type):
    def __init__(self, size, signed):
        self.size = size
        self.signed = signed

    def read(self, wire, old):
        return wire.word(self.size, self.signed)

    def write(self, value, out):
        out.append(f'"{value}"' if self.size == 8 else str(value))


class Bool(Type):
    def read(self, wire, old):
        return wire.flag()

    def write(self, value, out):
        out.append("true" if value else "false")


class Flags(Type):
    def __init__(self, count):
        self.count = count

    def read(self, wire, old):
        return tuple([wire.flag() for _ in range(self.count)])

    def write(self, value, out):
        out.append(json.dumps(value, separators=(",", ":")))


class Enumeration(Type):
    def define(self, schema, definition):
        self.names = definition["enumerators"]

    def read(self, wire, old):
        return wire.word()

    def write(self, value, out):
        known = 0 <= value < len(self.names)
        out.append(quoted(self.names[value]) if known else str(value))


class Record(Type):
    def define(self, schema, definition):
        self.names = [field["name"] for field in definition["fields"]]
        self.types = [schema.type(field["type"]) for field in definition["fields"]]

    def read(self, wire, old):
        olds = old or [None] * len(self.types)
        return [type_.read(wire, part) for type_, part in zip(self.types, olds)]

    def write(self, value, out):
        separator = "{"
        for name, type_, part in zip(self.names, self.types, value):
            out.append(f"{separator}{quoted(name)}:")
            type_.write(part, out)
            separator = ","
        out.append("}" if value else "{}")

    def key(self, value):
        return tuple([type_.key(part) for type_, part in zip(self.types, value)])


class Tuple(Record):
    def __init__(self, types):
        self.types = types

    def write(self, value, out):
        write_array(zip(self.types, value), out)


class Optional(Type):
    """A value is a tuple with the element, or an empty tuple."""

    def __init__(self, element):
        self.element = element

    def read(self, wire, old):
        return (self.element.read(wire, None),) if wire.flag() else ()

    def write(self, value, out):
        if value:
            self.element.write(value[0], out)
        else:
            out.append("null")

    def key(self, value):
        return (self.element.key(value[0]),) if value else ()


class List(Type):
    def __init__(self, element):
        self.element = element

    def read(self, wire, old):
        value = [] if old is None else old
        wire.enter()
        for _ in range(wire.word(signed=False)):
            value.append(self.element.read(wire, None))
        wire.leave()
        return value

    def write(self, value, out):
        write_array([(self.element, part) for part in value], out)

    def key(self, value):
        return tuple([self.element.key(part) for part in value])


class Entries:
    """The entries of a set or map, in the order of the first occurrences of their keys."""

    def __init__(self):
        self.all = []  # [key, value]; None as value in a set
        self.by_key = {}

    def find(self, type_, key):
        """Returns the entry of the key, and whether it is new."""
        entry = [key, None]
        try:
            found = self.by_key.setdefault(type_.key(key), entry)
        except Unequal:
            found = entry
        if found is entry:
            self.all.append(entry)
        return found, found is entry


class Set(Type):
    def __init__(self, element):
        self.element = element

    def read(self, wire, old):
        value = old or Entries()
        wire.enter()
        for _ in range(wire.word(signed=False)):
            value.find(self.element, self.element.read(wire, None))
        wire.leave()
        return value

    def write(self, value, out):
        write_array([(self.element, entry[0]) for entry in value.all], out)

    def key(self, value):
        return frozenset([self.element.key(entry[0]) for entry in value.all])


class Map(Type):
    def __init__(self, key, value, read_over):
        self.key_type = key
        self.value_type = value
        self.entry_type = Tuple([key, value])
        self.read_over = read_over

    def read(self, wire, old):
        value = old or Entries()
        wire.enter()
        for _ in range(wire.word(signed=False)):
            entry, is_new = value.find(self.key_type, self.key_type.read(wire, None))
            if is_new:
                entry[1] = self.value_type.read(wire, None)
            elif self.read_over:
                entry[1] = self.value_type.read(wire, entry[1])
            else:
                self.value_type.read(wire, None)
        wire.leave()
        return value

    def write(self, value, out):
        write_array([(self.entry_type, entry) for entry in value.all], out)

    def key(self, value):
        return frozenset([self.entry_type.key(entry) for entry in value.all])


class Variant(Type):
    """A value is the tag and the payload; None if there is no payload."""

    def define(self, schema, definition):
        self.names = {arm["tag"]: arm["name"] for arm in definition["arms"]}
        self.payloads = {arm["tag"]: schema.type(arm["payload"])
                         for arm in definition["arms"] if "payload" in arm}
        last = definition["arms"][-1]
        self.others = self.payloads.get(last["tag"]) if last.get("serves_all_other_tags") else None

    def payload(self, tag):
        return self.payloads.get(tag) if tag in self.names else self.others

    def read(self, wire, old):
        wire.enter()
        tag = wire.word()
        over = old[1] if old is not None and old[0] == tag else None
        payload = self.payload(tag)
        value = (tag, None if payload is None else payload.read(wire, over))
        wire.leave()
        return value

    def write(self, value, out):
        tag, content = value
        known = tag in self.names
        out.append(f'{{"arm":{quoted(self.names[tag])}' if known else f'{{"arm":null,"tag":{tag}')
        payload = self.payload(tag)
        if payload is not None:
            out.append(',"args":')
            payload.write(content, out)
        out.append("}")

    def key(self, value):
        tag, content = value
        if tag < 0:
            raise Unequal
        payload = self.payload(tag)
        return tag, None if payload is None else payload.key(content)


class Reference(Variant):
    """A variant whose payload is always one word; unsigned for an unknown tag."""

    def define(self, schema, definition):
        super().define(schema, definition)
        self.others = schema.type("uint64")

    def read(self, wire, old):
        tag = wire.word()
        return tag, self.payload(tag).read(wire, None)


class Text(Type):
    def read(self, wire, old):
        return wire.text()

    def write(self, value, out):
        out.append(quoted(value.decode("utf-8", "surrogateescape")))


class String(Text):
    def read(self, wire, old):
        word = wire.word()
        if word > 0:
            return wire.strings.setdefault(word, b"")
        text = wire.text()
        wire.strings.setdefault(-word, text)
        return text


class Integer(Type):
    FORM = re.compile(SPACE + rb"(-?[0-9a-f][0-9a-f \t\n\v\f\r]*)\Z", re.I)

    def read(self, wire, old):
        match = self.FORM.match(wire.number_text())
        if match:
            return int(b"".join(match[1].split()), 16)
        return old or 0

    def write(self, value, out):
        out.append(f'"{value}"')


class Float(Type):
    """A value is the width and the text that a writer writes for the number."""

    # By width: bits of the mantissa, smallest and largest exponent.
    FORMATS = {16: (11, -23, 16), 32: (24, -148, 128), 40: (32, -156, 128), 48: (40, -164, 128),
               64: (53, -1073, 1024), 80: (64, -16444, 16384), 128: (113, -16493, 16384)}
    SIGN = re.compile(SPACE + rb"([+-]?)")
    NAN = re.compile(rb"nan|@nan@", re.I)
    INFINITY = re.compile(rb"inf|@inf@", re.I)
    NUMBER = re.compile(rb"(?:0x(?=\.?[0-9a-f]))?([0-9a-f]*)(?:\.([0-9a-f]*))?"
                        rb"(?:([p@])([+-]?[0-9]+))?", re.I)

    def read(self, wire, old):
        text = wire.number_text()
        at = wire.at
        width = wire.word()
        if width not in self.FORMATS:
            raise Bad(f"byte {at}: width {width}")
        return width, self.canonical(text, *self.FORMATS[width])

    def write(self, value, out):
        out.append(f'{{"width":{value[0]},"hex":"{value[1]}"}}')

    def canonical(self, text, bits, least, greatest):
        signed = self.SIGN.match(text)
        sign = "-" if signed[1] == b"-" else ""
        rest = text[signed.end():]
        if not text or self.NAN.match(rest):
            return "NAN"
        if self.INFINITY.match(rest):
            return f"{sign}INF"
        whole, part, mark, power = self.NUMBER.match(rest).groups(b"")
        if not whole + part:
            return "0X0P+0"
        digits = int(whole + part, 16)
        exponent = int(power or b"0") * (4 if mark == b"@" else 1) - 4 * len(part)
        digits, exponent = self.rounded(digits, exponent, bits, least)
        if digits == 0:
            return f"{sign}0X0P+0"
        if digits.bit_length() + exponent > greatest:
            return f"{sign}INF"
        return sign + self.spelled(digits, exponent)

    @staticmethod
    def rounded(digits, exponent, bits, least):
        """digits * 2 ** exponent, rounded to `bits` bits and to the smallest exponent."""
        before = digits, exponent
        excess = digits.bit_length() - bits
        if excess > 0:
            half, low = 1 << (excess - 1), digits & ((1 << excess) - 1)
            digits, exponent = digits >> excess, exponent + excess
            if low > half or (low == half and digits & 1):
                digits += 1
        if digits == 0 or digits.bit_length() + exponent >= least:
            return digits, exponent
        # Numbers up to 2 ** (least - 2), inclusive, are rounded to zero.
        digits, exponent = before
        top = digits.bit_length() + exponent - 1
        power_of_2 = digits & (digits - 1) == 0
        if top < least - 2 or (top == least - 2 and power_of_2):
            return 0, 0
        return 1, least - 1

    @staticmethod
    def spelled(digits, exponent):
        digits, exponent = digits << exponent % 4, exponent - exponent % 4
        text = f"{digits:X}"
        exponent += 4 * (len(text) - 1)
        part = text[1:].rstrip("0")
        return f"0X{text[0]}{'.' if part else ''}{part}P{exponent:+d}"


class Double(Type):
    FORM = re.compile(
        SPACE + rb"([+-]?)(?:(inf|nan)"
        rb"|0x(?:([0-9a-f]+)(?:\.([0-9a-f]*))?|\.([0-9a-f]+))(?:p([+-]?[0-9]+))?"
        rb"|([0-9]+)(?:\.([0-9]*))?(?:e([+-]?[0-9]+))?)", re.I)
    FIRST_DIGITS = re.compile(SPACE + rb"[+-]?(?:0x[0-9a-f]*|[0-9]+)", re.I)
    NO_DIGIT_OR_LETTER = re.compile(rb"[^0-9a-z]+", re.I)

    def read(self, wire, old):
        at = wire.at
        text = wire.number_text()
        try:
            # With another decimal point, the number in the text must be in range, too.
            first = self.FIRST_DIGITS.match(text)
            if first:
                between = self.NO_DIGIT_OR_LETTER.match(text, first.end())
                if between:
                    self.parsed(first[0] + b"." + text[between.end():])
            return self.parsed(text)
        except ValueError as error:
            raise Bad(f"byte {at}: double {error}") from None

    def parsed(self, text):
        match = self.FORM.match(text)
        if not match:
            raise ValueError("without a number")
        sign, name, hex_whole, hex_part, hex_only, power, whole, part, exponent = match.groups(b"")
        if name:
            value = float(name)
        elif whole:
            value = self.number(whole + part, 10, 10, int(exponent or b"0") - len(part))
        else:
            part = hex_part + hex_only
            value = self.number(hex_whole + part, 16, 2, int(power or b"0") - 4 * len(part))
        return math.copysign(value, -1.0 if sign == b"-" else 1.0)

    @staticmethod
    def number(digits, base, power_base, exponent):
        """digits * power_base ** exponent; an error if that is out of range."""
        digits = int(digits, base)
        if digits == 0:
            return 0.0
        exponent = min(max(exponent, -10 ** 12), 10 ** 12)
        magnitude = math.log2(digits) + math.log2(power_base) * exponent
        if magnitude > 1100:
            raise ValueError("too great")
        if magnitude < -1100:
            raise ValueError("too small")
        exact = digits * Fraction(power_base) ** exponent
        if exact > sys.float_info.max:
            raise ValueError("too great")
        value = float(exact)
        if exact < sys.float_info.min and value != exact:
            raise ValueError("too small")
        return value

    def write(self, value, out):
        sign = "-" if math.copysign(1.0, value) < 0 else ""
        if not math.isfinite(value):
            out.append(f'"{sign}{abs(value)}"')
        elif value == 0:
            out.append("-0.0" if sign else "0")
        else:
            out.append(sign + self.shortest(abs(value)))

    @staticmethod
    def shortest(value):
        _, digits, exponent = Decimal(repr(value)).as_tuple()
        point = len(digits) + exponent  # position of the point, counted from the first digit
        digits = "".join(map(str, digits)).rstrip("0")
        part = f".{digits[1:]}" if len(digits) > 1 else ""
        scientific = f"{digits[0]}{part}e{point - 1:+03d}"
        if point <= 0:
            plain = f"0.{'0' * -point}{digits}"
        elif point < len(digits):
            plain = f"{digits[:point]}.{digits[point:]}"
        else:
            plain = str(int(value))
        return plain if len(plain) <= len(scientific) else scientific


class Schema:
    """The types in the output of `bradep schema`, by type use and by stem."""

    KINDS = {"record": Record, "group": Record, "variant": Variant, "reference": Reference,
             "enumeration": Enumeration}

    def __init__(self, document):
        self.definitions = document["types"]
        self.named = {
            "int32": Word(4, True), "uint32": Word(4, False), "int64": Word(8, True),
            "uint64": Word(8, False), "bool": Bool(), "double": Double(), "integer": Integer(),
            "float": Float(), "string": String(), "text": Text()}
        self.roots = {root["stem"]: self.type(root["type"]) for root in document["roots"]}

    def type(self, use):
        if isinstance(use, str):
            if use not in self.named:
                definition = self.definitions[use]
                self.named[use] = self.KINDS[definition["kind"]]()
                self.named[use].define(self, definition)
            return self.named[use]
        if "boxed" in use:
            return self.type(use["boxed"])
        if "optional" in use:
            return Optional(self.type(use["optional"]))
        if "list" in use:
            return List(self.type(use["list"]))
        if "set" in use:
            return Set(self.type(use["set"]))
        if "map" in use:
            key, value = use["map"]
            return Map(self.type(key), self.type(value), use["repeated_key"] == "is read over")
        if "tuple" in use:
            return Tuple([self.type(part) for part in use["tuple"]])
        return Flags(use["flags"])


ESCAPED = re.compile(r'["\\\0-\x1f\x7f-\x9f\u061c\u200e\u200f\u2028-\u202e\u2066-\u2069'
                     r"\ud800-\udfff]")
SHORT = {'"': '\\"', "\\": "\\\\", "\n": "\\n", "\t": "\\t", "\r": "\\r"}


def quoted(text):
    return f'"{ESCAPED.sub(lambda match: escaped(match[0]), text)}"'


def escaped(character):
    return SHORT.get(character) or f"\\u{ord(character):04x}"


def write_array(elements, out):
    """Writes pairs of a type and a value."""
    separator = "["
    for type_, value in elements:
        out.append(separator)
        type_.write(value, out)
        separator = ","
    out.append("[]" if separator == "[" else "]")


def dump(schema, stem, data):
    """The line of JSON for the bytes of a root. Raises Bad if they are unsafe."""
    wire = Wire(data)
    root = schema.roots[stem]
    value = root.read(wire, None)
    wire.end()
    out = [f'{{"root":{quoted(stem)},"value":']
    root.write(value, out)
    return "".join(out) + "}\n"


def main(arguments):
    if len(arguments) != 3:
        print("usage: reader.py SCHEMA.json STEM FILE", file=sys.stderr)
        return 2
    schema_path, stem, path = arguments
    try:
        with open(schema_path, encoding="utf-8") as file:
            schema = Schema(json.load(file))
        with open(path, "rb") as file:
            data = file.read()
    except OSError as error:
        print(f"reader.py: {error}", file=sys.stderr)
        return 2
    if stem not in schema.roots:
        print(f"reader.py: no root {stem}", file=sys.stderr)
        return 2
    try:
        line = dump(schema, stem, data)
    except Bad as error:
        print(f"reader.py: {path}: {error}", file=sys.stderr)
        return 1
    sys.stdout.buffer.write(line.encode("utf-8"))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
