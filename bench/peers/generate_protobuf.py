#!/usr/bin/env python3
"""Generates Protocol Buffers messages from a printed schema, and functions that save and load a graph.

  generate_protobuf.py SCHEMA.json DIRECTORY

SCHEMA.json is the output of `bradep schema --root STEM`. Writes graph.proto and graph_messages.hpp.
Strings become indices into a table in the message of the root. A big integer is a sint64 or, if it
does not fit, bytes. The tag of a variant is stored only if the arm does not imply it.
"""

from schema_uses import Generator, element, entry, held, main, whole

WORDS = {"int32": "sint32", "uint32": "uint32", "int64": "sint64", "uint64": "fixed64",
         "bool": "bool", "double": "double", "string": "uint32"}

# The formats of floats have at most 113 bits.
FLOAT = ("message Float { fixed64 high = 1; fixed64 low = 2; sint32 exponent = 3; "
         "uint32 width = 4; uint32 kind = 5; }")


class ProtobufGenerator(Generator):
    def __init__(self, schema):
        super().__init__(schema, WORDS)

    def message(self, use):
        """The use itself if it becomes a message; else a use whose only part it is."""
        return use if self.kind(use) in ("float", "parts", "variant") else whole(use)

    def message_name(self, use):
        return "Float" if use == "float" else f"M{self.number(use)}"

    def fields(self, use, name):
        """The types and names of the message fields that a use becomes."""
        kind = self.kind(use)
        if kind == "word":
            return [(self.word(use), name)]
        if kind == "integer":
            return [("sint64", name), ("bytes", f"{name}_large")]
        if kind == "optional":
            inner = use["optional"]
            if self.kind(inner) in ("word", "integer"):
                (first, _), *rest = self.fields(inner, name)
                return [(f"optional {first}", name), *rest]
            return [(self.message_name(self.message(inner)), name)]
        if kind == "map":
            return [(f"repeated {self.message_name(entry(use))}", name)]
        if kind == "repeated":
            inner = element(use)
            one = self.word(inner) if self.kind(inner) == "word" else self.message_name(
                self.message(inner))
            return [(f"repeated {one}", name)]
        return [(self.message_name(use), name)]

    def save_message(self, use, message, value):
        if use == "float":
            return f"save_float({message}, {value});"
        return f"save_{self.number(use)}(s, {message}, {held(use, value)});"

    def load_message(self, use, message, target):
        if use == "float":
            return f"load_float({message}, {target});"
        return f"load_{self.number(use)}(l, {message}, {held(use, target)});"

    def save(self, use, name, value):
        kind = self.kind(use)
        if kind == "word":
            return f"m.set_{name}({self.word_out(use, value)});"
        if kind == "integer":
            return (f"if (is_small({value})) m.set_{name}(small({value})); "
                    f"else append_large(*m.mutable_{name}_large(), {value});")
        if kind == "optional":
            inner = use["optional"]
            if self.kind(inner) not in ("word", "integer"):
                inner = self.message(inner)
            return f"if ({value}) {{ {self.save(inner, name, f'(*{value})')} }}"
        if kind in ("map", "repeated"):
            inner = entry(use) if kind == "map" else element(use)
            one = (f"to.Add({self.word_out(inner, 'e')});" if self.kind(inner) == "word" else
                   self.save_message(self.message(inner), "*to.Add()", "e"))
            return (f"save_each({value}, *m.mutable_{name}(), "
                    f"[&](auto& to, auto const& e) {{ {one} }});")
        return self.save_message(use, f"*m.mutable_{name}()", value)

    def load(self, use, name, target):
        kind = self.kind(use)
        if kind == "word":
            return self.word_in(use, f"m.{name}()", target)
        if kind == "integer":
            return f"load_integer(m.{name}(), m.{name}_large(), {target});"
        if kind == "optional":
            inner = use["optional"]
            there = f"m.has_{name}()"
            if self.kind(inner) == "integer":
                there += f" || !m.{name}_large().empty()"
            if self.kind(inner) not in ("word", "integer"):
                inner = self.message(inner)
            return f"if ({there}) {{ auto& v = {target}.emplace(); {self.load(inner, name, 'v')} }}"
        if kind == "map":
            key, value = use["map"]
            return (f"reserve({target}, m.{name}_size()); for (auto const& m : m.{name}()) "
                    f"load_entry({target}, [&](auto& k) {{ {self.load(key, 'f0', 'k')} }}, "
                    f"[&](auto& v) {{ {self.load(value, 'f1', 'v')} }});")
        if kind == "repeated":
            inner = element(use)
            one = (self.word_in(inner, "e", "v") if self.kind(inner) == "word" else
                   self.load_message(self.message(inner), "e", "v"))
            return (f"reserve({target}, m.{name}_size()); for (auto const& e : m.{name}()) "
                    f"load_element({target}, [&](auto& v) {{ {one} }});")
        return self.load_message(use, f"m.{name}()", target)

    def make(self, number, use):
        if self.kind(use) == "variant":
            self.make_variant(number, use)
        else:
            self.make_record(number, use)

    def declare(self, fields, first):
        return " ".join(f"{kind} {name} = {i};" for i, (kind, name) in enumerate(fields, first))

    def add_functions(self, number, save, load):
        self.add_function(f"void save_{number}([[maybe_unused]] Saver& s, "
                          f"[[maybe_unused]] form::M{number}& m, auto const& v)", save)
        self.add_function(f"void load_{number}([[maybe_unused]] Loader& l, "
                          f"[[maybe_unused]] form::M{number} const& m, auto& v)", load)

    def make_record(self, number, use):
        parts = [(part, f"f{i}", f"v{i}") for i, part in enumerate(self.parts(use))]
        fields = [field for part, name, _ in parts for field in self.fields(part, name)]
        self.declarations.append(f"message M{number} {{ {self.declare(fields, 1)} }}")
        saves = " ".join(self.save(*part) for part in parts)
        loads = " ".join(self.load(*part) for part in parts)
        self.add_functions(number, self.over_parts(use, "const", saves),
                           self.over_parts(use, "", loads))

    def make_variant(self, number, use):
        fields, saves, loads = [], [], []
        for tag, arm, payload, is_catch_all in self.arms(use):
            if payload is None:
                continue
            if self.kind(payload) not in ("word", "integer"):
                payload = self.message(payload)
            name = f"a{tag}"
            own = self.fields(payload, name)
            fields += own
            save = self.with_payload(tag, arm, is_catch_all, self.save(payload, name, "p"))
            # Tag 0 is never an unknown tag, whose payload is the catch-all arm's.
            other = f"if (v.tag != {tag}) m.set_tag(v.tag); " if is_catch_all else ""
            saves.append(f"case {tag}: {{ {other}{save} break; }}")
            chosen = f"m.tag() != 0 ? m.tag() : {tag}" if is_catch_all else f"{tag}"
            cases = " ".join(f"case form::M{number}::k{case.title().replace('_', '')}:"
                             for _, case in own)
            loads.append(f"{cases} {{ v.choose_tag({chosen}); "
                         f'auto& p = v.template arm<"{arm}">(); {self.load(payload, name, "p")} '
                         f"break; }}")
        self.declarations.append(f"message M{number} {{ sint32 tag = 1; "
                                 f"oneof arm {{ {self.declare(fields, 2)} }} }}")
        self.add_functions(
            number,
            f"switch (arm_of(v)) {{ {' '.join(saves)} default: m.set_tag(v.tag); }}",
            f"switch (m.arm_case()) {{ {' '.join(loads)} default: v.choose_tag(m.tag()); }}")

    def write(self, directory):
        root = self.number(self.root)
        self.add_function(f"void save_root(Saver& s, form::M{root}& m, auto const& v)",
                          f"save_{root}(s, m, v);")
        self.add_function(f"void load_root(Loader& l, form::M{root} const& m, auto& v)",
                          f"load_{root}(l, m, v);")
        proto = ['syntax = "proto3";', "package peers.form;", "option cc_enable_arenas = true;",
                 "option optimize_for = SPEED;", FLOAT, *self.declarations,
                 f"message Graph {{ repeated bytes strings = 1; M{root} root = 2; }}"]
        (directory / "graph.proto").write_text("\n".join(proto) + "\n")
        self.write_functions(directory / "graph_messages.hpp")


if __name__ == "__main__":
    main(ProtobufGenerator, __doc__)
