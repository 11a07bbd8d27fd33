"""What the types of a printed schema are made of, for those who make another form of them.

A use is what stands where a type is told: a name, or an object such as {"list": use}.
"""

import json
import pathlib
import sys

COMPOUNDS = {"optional": "optional", "map": "map", "tuple": "parts", "whole": "parts",
             "list": "repeated", "set": "repeated"}


def unboxed(use):
    return use["boxed"] if isinstance(use, dict) and "boxed" in use else use


def held(use, value):
    """The expression of what is in the box, if there is one."""
    return f"*{value}" if unboxed(use) is not use else value


def element(use):
    return unboxed(next(use[kind] for kind in ("list", "set") if kind in use))


def entry(use):
    return {"tuple": use["map"]}


def whole(use):
    """A use of one part, for where only a type with parts can stand."""
    return {"whole": use}


class Generator:
    """Numbers the types that the other form names.

    `make(number, use)` of a derived class adds one.
    """

    def __init__(self, schema, words):
        self.types = schema["types"]
        self.root = schema["roots"][0]["type"]
        self.words = words
        self.numbers = {}  # by what they are made of
        self.declarations = []
        self.ahead = []  # the functions' declarations
        self.functions = []

    def kind(self, use):
        """word, integer, float, parts, variant, optional, map or repeated"""
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
        """Tag, name, use of the payload or None, and whether all other tags are served."""
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
        """Runs the body with the parts of v as v0, v1 and so on; gives what it returns."""
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
        """The body with the payload of an arm in use as p."""
        if not serves_rest:
            return f'auto const& p = v.template arm<"{name}">(); {body}'
        return f"with_last_payload<{tag}>(v, [&](auto const& p) {{ {body} }});"

    def add_function(self, head, body):
        self.ahead.append(f"{head};")
        self.functions.append(f"{head} {{ {body} }}")

    def write_functions(self, path):
        path.write_text("\n".join(self.ahead + self.functions) + "\n")


def main(generator, usage):
    """Runs a derived class on the arguments: a printed schema and a directory."""
    if len(sys.argv) != 3:
        sys.exit(usage)
    schema, directory = map(pathlib.Path, sys.argv[1:])
    generator(json.loads(schema.read_text())).write(directory)
