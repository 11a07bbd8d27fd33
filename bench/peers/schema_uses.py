"""Reads the types of a printed schema, for generators of another form of them.

A type use refers to a type: a name, or an object such as {"list": use}.
"""

import json
import pathlib
import sys

COMPOUNDS = {"optional": "optional", "map": "map", "tuple": "parts", "whole": "parts",
             "list": "repeated", "set": "repeated"}


def unboxed(use):
    return use["boxed"] if isinstance(use, dict) and "boxed" in use else use


def held(use, value):
    """The expression for the content of the box if the use is boxed; else `value`."""
    return f"*{value}" if unboxed(use) is not use else value


def element(use):
    return unboxed(next(use[kind] for kind in ("list", "set") if kind in use))


def entry(use):
    return {"tuple": use["map"]}


def whole(use):
    """A type use with `use` as its only part, for places that need a type with parts."""
    return {"whole": use}


class Generator:
    """Numbers the types that need a name in the other form.

    A derived class has `make(number, use)`, which adds one of them.
    """

    def __init__(self, schema, words):
        self.types = schema["types"]
        self.root = schema["roots"][0]["type"]
        self.words = words
        self.numbers = {}  # by the JSON text of their use
        self.declarations = []
        self.ahead = []  # declarations of the functions
        self.functions = []

    def kind(self, use):
        """The kind of a use: word, integer, float, parts, variant, optional, map or repeated."""
        use = unboxed(use)
        if isinstance(use, dict):
            return next(kind for key, kind in COMPOUNDS.items() if key in use)
        if use in ("integer", "float"):
            return use
        if use in self.words:
            return "word"
        kind = self.types[use]["kind"]
        return {"enumeration": "word", "variant": "variant"}.get(kind, "parts")

    def word(self, use):
        return self.words.get(use, self.words["int32"])

    def parts(self, use):
        use = unboxed(use)
        if isinstance(use, dict):
            return use["tuple"] if "tuple" in use else [use["whole"]]
        if self.types[use]["kind"] == "reference":
            return ["int32", "uint64"]
        return [field["type"] for field in self.types[use]["fields"]]

    def arms(self, use):
        """Yields for each arm: tag, name, use of the payload or None, whether it is the catch-all."""
        for arm in self.types[unboxed(use)]["arms"]:
            yield (arm["tag"], arm["name"], arm.get("payload"),
                   arm.get("serves_all_other_tags", False))

    def number(self, use):
        use = unboxed(use)
        key = json.dumps(use)
        if key not in self.numbers:
            self.numbers[key] = len(self.numbers)
            self.make(self.numbers[key], use)
        return self.numbers[key]

    def over_parts(self, use, const, body):
        """Code that runs the body with the parts of v as v0, v1 and so on, and returns its result."""
        use = unboxed(use)
        parts = self.parts(use)
        arguments = ", ".join(f"[[maybe_unused]] auto {const}& v{i}" for i in range(len(parts)))
        function = f"[&]({arguments}) {{ {body} }}"
        if not isinstance(use, dict):
            return f"return v.with_fields({function});"
        return f"return std::apply({function}, v);" if "tuple" in use else f"return {function}(v);"

    @staticmethod
    def word_out(use, value):
        if use == "string":
            return f"s.string({value})"
        return f"word_of({value})"

    @staticmethod
    def word_in(use, source, target):
        if use == "string":
            return f"l.string({source}, {target});"
        return f"{target} = static_cast<std::remove_reference_t<decltype({target})>>({source});"

    @staticmethod
    def with_payload(tag, name, serves_rest, body):
        """Code that runs the body with the payload of the present arm as p."""
        if not serves_rest:
            return f'auto const& p = v.template arm<"{name}">(); {body}'
        return f"with_last_payload<{tag}>(v, [&](auto const& p) {{ {body} }});"

    def add_function(self, head, body):
        self.ahead.append(f"{head};")
        self.functions.append(f"{head} {{ {body} }}")

    def write_functions(self, path):
        path.write_text("\n".join(self.ahead + self.functions) + "\n")


def main(generator, usage):
    """Runs a generator with the command's arguments: a printed schema and a directory."""
    if len(sys.argv) != 3:
        sys.exit(usage)
    schema, directory = map(pathlib.Path, sys.argv[1:])
    generator(json.loads(schema.read_text())).write(directory)
