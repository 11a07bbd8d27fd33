#!/usr/bin/env python3
"""Makes Protocol Buffers messages, and how a graph goes into and out of them, of a printed schema.

  generate_protobuf.py SCHEMA.json DIRECTORY

SCHEMA.json is what `bradep schema --root STEM` prints. Writes graph.proto and graph_messages.hpp.
Strings are numbers of a table in the message of the root; big integers and floats are bytes.
"""

import json
import pathlib
import sys

SCALARS = {"int32": "sint32", "uint32": "uint32", "int64": "sint64", "uint64": "fixed64",
           "bool": "bool", "double": "double", "string": "uint32", "integer": "bytes"}


class Generator:
    def __init__(self, schema):
        self.types = schema["types"]
        self.root = schema["roots"][0]["type"]
        self.numbers = {}  # of messages, by what they are made of
        self.messages = []
        self.functions = []

    def kind(self, use):
        """scalar, message, optional, repeated or map"""
        if isinstance(use, str):
            if use in SCALARS or self.types.get(use, {}).get("kind") == "enumeration":
                return "scalar"
            return "message"
        if "boxed" in use:
            return self.kind(use["boxed"])
        if "optional" in use:
            return "optional"
        if "map" in use:
            return "map"
        if "tuple" in use:
            return "message"
        return "repeated"

    @staticmethod
    def element(use):
        return next(use[kind] for kind in ("list", "set") if kind in use)

    def scalar(self, use):
        return SCALARS.get(use, "sint32")

    def message(self, use):
        """The number of the message for a use; makes it the first time."""
        if isinstance(use, dict) and "boxed" in use:
            use = use["boxed"]
        key = json.dumps(use)
        if key in self.numbers:
            return self.numbers[key]
        number = self.numbers[key] = len(self.numbers)
        if use == "float":
            self.add_float(number)
        elif isinstance(use, dict):
            parts = use["tuple"] if "tuple" in use else [use]  # a container in a place for one value
            self.add_parts(number, parts, "apply" if "tuple" in use else "whole")
        elif self.types[use]["kind"] == "variant":
            self.add_variant(number, self.types[use])
        elif self.types[use]["kind"] == "reference":
            self.add_parts(number, ["int32", "uint64"], "fields")
        else:
            self.add_parts(number, [field["type"] for field in self.types[use]["fields"]], "fields")
        return number

    def entry(self, use):
        """The number of the message for an entry of a map."""
        return self.message({"tuple": use["map"]})

    def declare(self, use, name, number):
        kind = self.kind(use)
        if kind == "scalar":
            return f"{self.scalar(use)} {name} = {number};"
        if kind == "message":
            return f"M{self.message(use)} {name} = {number};"
        if kind == "optional":
            inner = use["optional"]
            if self.kind(inner) == "scalar":
                return f"optional {self.scalar(inner)} {name} = {number};"
            return f"M{self.message(inner)} {name} = {number};"
        if kind == "map":
            return f"repeated M{self.entry(use)} {name} = {number};"
        inner = self.element(use)
        if self.kind(inner) == "scalar":
            return f"repeated {self.scalar(inner)} {name} = {number};"
        return f"repeated M{self.message(inner)} {name} = {number};"

    def scalar_out(self, use, value):
        return f"s.{use}({value})" if use in ("string", "integer") else value

    def save(self, use, name, value):
        kind = self.kind(use)
        if kind == "scalar":
            return f"m.set_{name}({self.scalar_out(use, value)});"
        if kind == "message":
            boxed = "*" if isinstance(use, dict) and "boxed" in use else ""
            return f"save_{self.message(use)}(s, *m.mutable_{name}(), {boxed}{value});"
        if kind == "optional":
            inner = use["optional"]
            if self.kind(inner) in ("scalar", "message"):
                return f"if ({value}) {{ {self.save(inner, name, '*' + value)} }}"
            return f"if ({value}) save_{self.message(inner)}(s, *m.mutable_{name}(), *{value});"
        if kind == "map":
            return (f"for (auto const& e : {value}) "
                    f"save_{self.entry(use)}(s, *m.add_{name}(), e);")
        inner = self.element(use)
        if self.kind(inner) == "scalar":
            return (f"for (auto const& e : {value}) "
                    f"m.add_{name}({self.scalar_out(inner, 'e')});")
        return (f"for (auto const& e : {value}) "
                f"save_{self.message(inner)}(s, *m.add_{name}(), e);")

    def load_scalar(self, use, source, target):
        if use in ("string", "integer"):
            return f"l.{use}({source}, {target});"
        return f"{target} = static_cast<std::remove_reference_t<decltype({target})>>({source});"

    def load(self, use, name, target):
        kind = self.kind(use)
        if kind == "scalar":
            return self.load_scalar(use, f"m.{name}()", target)
        if kind == "message":
            boxed = "*" if isinstance(use, dict) and "boxed" in use else ""
            return f"load_{self.message(use)}(l, m.{name}(), {boxed}{target});"
        if kind == "optional":
            inner = use["optional"]
            load = (self.load(inner, name, "v") if self.kind(inner) in ("scalar", "message") else
                    f"load_{self.message(inner)}(l, m.{name}(), v);")
            return f"if (m.has_{name}()) {{ auto& v = {target}.emplace(); {load} }}"
        if kind == "map":
            key, value = use["map"]
            return (f"reserve({target}, m.{name}_size()); for (auto const& e : m.{name}()) "
                    f"load_entry({target}, [&](auto& k) {{ {self.load_of_entry(key, 'f0', 'k')} }}, "
                    f"[&](auto& v) {{ {self.load_of_entry(value, 'f1', 'v')} }});")
        inner = self.element(use)
        one = (self.load_scalar(inner, "e", "v") if self.kind(inner) == "scalar" else
               f"load_{self.message(inner)}(l, e, v);")
        return (f"reserve({target}, m.{name}_size()); for (auto const& e : m.{name}()) "
                f"load_element({target}, [&](auto& v) {{ {one} }});")

    def load_of_entry(self, use, name, target):
        return f"auto const& m = e; {self.load(use, name, target)}"

    def add_float(self, number):
        self.messages.append(f"message M{number} {{ bytes number = 1; uint32 width = 2; }}")
        self.add_functions(number, "m.set_number(s.number(v)); "
                                   "m.set_width(static_cast<std::uint32_t>(v.width));",
                           "l.number(m.number(), m.width(), v);")

    def add_parts(self, number, parts, manner):
        names = [f"f{i}" for i in range(len(parts))]
        declared = " ".join(self.declare(use, name, i + 1)
                            for i, (use, name) in enumerate(zip(parts, names)))
        self.messages.append(f"message M{number} {{ {declared} }}")

        def over(const, body):
            arguments = ", ".join(f"auto {const}& v{i}" for i in range(len(parts)))
            function = f"[&]({arguments}) {{ {body} }}"
            if manner == "fields":
                return f"v.with_fields({function});"
            if manner == "apply":
                return f"std::apply({function}, v);"
            return f"({function})(v);"

        used = " ".join(f"static_cast<void>(v{i});" for i in range(len(parts)))
        saves = " ".join(self.save(use, name, f"v{i}")
                         for i, (use, name) in enumerate(zip(parts, names)))
        loads = " ".join(self.load(use, name, f"v{i}")
                         for i, (use, name) in enumerate(zip(parts, names)))
        self.add_functions(number, over("const", used + saves), over("", used + loads))

    def add_variant(self, number, variant):
        arms = [arm for arm in variant["arms"] if "payload" in arm]
        declared = []
        saves = []
        loads = []
        for arm in arms:
            tag, payload = arm["tag"], arm["payload"]
            name = f"a{tag}"
            if self.kind(payload) not in ("scalar", "message"):
                declared.append(f"M{self.message(payload)} {name} = {tag + 2};")
                save = f"save_{self.message(payload)}(s, *m.mutable_{name}(), p);"
                load = f"load_{self.message(payload)}(l, m.{name}(), p);"
            else:
                declared.append(self.declare(payload, name, tag + 2))
                save = self.save(payload, name, "p")
                load = self.load(payload, name, "p")
            saves.append(f"case {tag}: {{ auto const& p = payload<{tag}>(v); {save} break; }}")
            loads.append(f"case {tag}: {{ auto& p = payload<{tag}>(v); {load} break; }}")
        oneof = f"oneof arm {{ {' '.join(declared)} }}" if declared else ""
        self.messages.append(f"message M{number} {{ sint32 tag = 1; {oneof} }}")
        serving = "switch (std::remove_cvref_t<decltype(v)>::arms::serving(v.tag))"
        self.add_functions(number,
                           f"m.set_tag(v.tag); {serving} {{ {' '.join(saves)} default: break; }}",
                           f"v.choose_tag(m.tag()); "
                           f"{serving} {{ {' '.join(loads)} default: break; }}")

    def add_functions(self, number, save, load):
        self.functions.append(
            f"void save_{number}(Saver& s, form::M{number}& m, auto const& v) "
            f"{{ static_cast<void>(s); {save} }}\n"
            f"void load_{number}(Loader& l, form::M{number} const& m, auto& v) "
            f"{{ static_cast<void>(l); {load} }}")

    def write(self, directory):
        root = self.message(self.root)
        proto = ['syntax = "proto3";', "package peers.form;", "option cc_enable_arenas = true;",
                 "option optimize_for = SPEED;", *self.messages,
                 f"message Graph {{ repeated bytes strings = 1; M{root} root = 2; }}"]
        (directory / "graph.proto").write_text("\n".join(proto) + "\n")
        declared = [f"void save_{i}(Saver&, form::M{i}&, auto const&);\n"
                    f"void load_{i}(Loader&, form::M{i} const&, auto&);"
                    for i in range(len(self.messages))]
        last = [f"void save_root(Saver& s, form::M{root}& m, auto const& v) "
                f"{{ save_{root}(s, m, v); }}",
                f"void load_root(Loader& l, form::M{root} const& m, auto& v) "
                f"{{ load_{root}(l, m, v); }}"]
        (directory / "graph_messages.hpp").write_text(
            "\n".join(declared + self.functions + last) + "\n")


def main(schema, directory):
    generator = Generator(json.loads(pathlib.Path(schema).read_text()))
    generator.write(pathlib.Path(directory))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
