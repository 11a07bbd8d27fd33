#!/usr/bin/env python3
"""Generates, from a printed schema, a FlatBuffers schema and functions that save and load a graph.

  generate_flatbuffers.py SCHEMA.json DIRECTORY

SCHEMA.json is the output of `bradep schema --root STEM`. Writes graph_tables.fbs and
graph_tables.hpp. A type that consists only of words becomes a struct, a variant becomes a union,
and everything else becomes a table. Strings become indices into a table in the root. A big integer
is a long or, if it does not fit, bytes.
"""

from schema_uses import Generator, element, entry, held, main, whole

WORDS = {"int32": "int", "uint32": "uint", "int64": "long", "uint64": "ulong",
         "bool": "bool", "double": "double", "string": "uint"}
SIZES = {"long": 8, "ulong": 8, "double": 8, "bool": 1}  # the others: 4

# The formats of floats have at most 113 bits.
FLOAT = "struct Float { high:ulong; low:ulong; exponent:int; width:ushort; kind:ubyte; }"


class Part:
    """A part of a table: its declarations, the code before the table, and the code that adds it."""

    def __init__(self):
        self.declared = []
        self.before = ""
        self.added = []  # pairs of size and statement

    def add(self, declared, size, statement):
        if declared:
            self.declared.append(declared)
        self.added.append((size, statement))


class FlatbuffersGenerator(Generator):
    def __init__(self, schema):
        super().__init__(schema, WORDS)

    def is_flat(self, use):
        """Whether the use becomes a struct."""
        kind = self.kind(use)
        return kind == "float" or kind == "parts" and len(self.parts(use)) > 0 and all(
            self.kind(part) == "word" or self.is_flat(part) for part in self.parts(use))

    def is_table(self, use):
        return self.kind(use) == "parts" and not self.is_flat(use)

    def object(self, use):
        """The use itself if it becomes a struct or table; else a use whose only part it is."""
        return use if self.is_flat(use) or self.is_table(use) else whole(use)

    def object_name(self, use):
        if use == "float":
            return "Float"
        return f"{'S' if self.is_flat(use) else 'T'}{self.number(use)}"

    def save_object(self, use, value):
        if use == "float":
            return f"save_float({value})"
        return f"save_{self.number(use)}(s, {held(use, value)})"

    def load_object(self, use, source, target):
        if use == "float":
            return f"load_float({source}, {target});"
        return f"load_{self.number(use)}(l, {source}, {held(use, target)});"

    def part(self, use, name, value):
        kind = self.kind(use)
        part = Part()
        if kind == "word":
            word = self.word(use)
            part.add(f"{name}:{word};", SIZES.get(word, 4),
                     f"b.add_{name}({self.word_out(use, value)});")
        elif kind == "integer":
            part.before = f"auto const {name} = save_large(s, {value});"
            part.add(f"{name}:long;", 8, f"if ({name}.IsNull()) b.add_{name}(small({value}));")
            part.add(f"{name}_large:[ubyte];", 4, f"b.add_{name}_large({name});")
        elif kind == "optional":
            self.optional(part, use["optional"], name, value)
        elif kind in ("map", "repeated"):
            part.before = f"auto const {name} = {self.save_vector(use, value)};"
            part.add(f"{name}:[{self.element_name(use)}];", 4, f"b.add_{name}({name});")
        elif kind == "variant":
            part.before = f"auto const {name} = {self.save_object(use, value)};"
            self.union(part, use, name)
        elif self.is_flat(use):
            part.add(f"{name}:{self.object_name(use)} (required);", 4,
                     f"auto const {name} = {self.save_object(use, value)}; b.add_{name}(&{name});")
        else:
            part.before = f"auto const {name} = {self.save_object(use, value)};"
            part.add(f"{name}:{self.object_name(use)} (required);", 4, f"b.add_{name}({name});")
        return part

    def optional(self, part, inner, name, value):
        kind = self.kind(inner)
        content = f"(*{value})"
        if kind == "word":
            part.add(f"{name}:{self.word(inner)} = null;", SIZES.get(self.word(inner), 4),
                     f"if ({value}) b.add_{name}({self.word_out(inner, content)});")
            return
        if kind == "variant":
            part.before = f"Arm {name}; if ({value}) {name} = {self.save_object(inner, content)};"
            self.union(part, inner, name)
            return
        inner = self.object(inner)
        declared = f"{name}:{self.object_name(inner)};"
        if self.is_flat(inner):
            part.add(declared, 4, f"if ({value}) {{ auto const {name} = "
                                  f"{self.save_object(inner, content)}; b.add_{name}(&{name}); }}")
        else:
            part.before = (f"flatbuffers::Offset<tables::{self.object_name(inner)}> {name}; "
                           f"if ({value}) {name} = {self.save_object(inner, content)};")
            part.add(declared, 4, f"b.add_{name}({name});")

    def union(self, part, use, name):
        union = f"U{self.number(use)}"
        part.add(f"{name}:{union};", 4, f"b.add_{name}({name}.payload);")
        part.add("", 1, f"b.add_{name}_type(static_cast<tables::{union}>({name}.type));")

    def element_name(self, use):
        inner = entry(use) if "map" in use else element(use)
        return self.word(inner) if self.kind(inner) == "word" else self.object_name(
            self.object(inner))

    def save_vector(self, use, value):
        inner = entry(use) if "map" in use else element(use)
        if self.kind(inner) == "word":
            return (f"save_words(s, {value}, [&](auto const& e) "
                    f"{{ return {self.word_out(inner, 'e')}; }})")
        inner = self.object(inner)
        manner = "structs" if self.is_flat(inner) else "tables"
        return (f"save_{manner}<tables::{self.object_name(inner)}>(s, {value}, "
                f"[&](auto const& e) {{ return {self.save_object(inner, 'e')}; }})")

    def load(self, use, name, target, in_struct):
        kind = self.kind(use)
        field = f"m.{name}()"
        if kind == "word":
            return self.word_in(use, field, target)
        if kind == "integer":
            return f"load_integer({field}, m.{name}_large(), {target});"
        if kind == "optional":
            inner = use["optional"]
            if self.kind(inner) == "word":
                return (f"if (auto const w = {field}; w.has_value()) {{ "
                        f"auto& v = {target}.emplace(); {self.word_in(inner, '*w', 'v')} }}")
            if self.kind(inner) == "variant":
                return (f"if (m.{name}_type() != 0) {{ auto& v = {target}.emplace(); "
                        f"{self.load(inner, name, 'v', in_struct)} }}")
            inner = self.object(inner)
            return (f"if (auto const* w = {field}) {{ auto& v = {target}.emplace(); "
                    f"{self.load_object(inner, '*w', 'v')} }}")
        if kind == "map":
            key, value = use["map"]
            flat = self.is_flat(entry(use))
            return (f"load_each({field}, {target}, [&](auto const* w) {{ auto const& m = *w; "
                    f"load_entry({target}, [&](auto& k) {{ {self.load(key, 'f0', 'k', flat)} }}, "
                    f"[&](auto& v) {{ {self.load(value, 'f1', 'v', flat)} }}); }});")
        if kind == "repeated":
            inner = element(use)
            one = (self.word_in(inner, "w", "v") if self.kind(inner) == "word" else
                   self.load_object(self.object(inner), "*w", "v"))
            return (f"load_each({field}, {target}, [&](auto const w) {{ "
                    f"load_element({target}, [&](auto& v) {{ {one} }}); }});")
        if kind == "variant":
            return (f"load_{self.number(use)}(l, m.{name}_type(), {field}, "
                    f"{held(use, target)});")
        return self.load_object(use, field if in_struct else f"*{field}", target)

    def make(self, number, use):
        if self.kind(use) == "variant":
            self.make_union(number, use)
        elif self.is_flat(use):
            self.make_struct(number, use)
        else:
            self.make_table(number, use)

    def add_loading(self, number, name, body):
        self.add_function(f"void load_{number}([[maybe_unused]] Loader& l, "
                          f"[[maybe_unused]] tables::{name} const& m, auto& v)", body)

    def make_struct(self, number, use):
        parts = self.parts(use)
        names = [self.object_name(part) if self.is_flat(part) else self.word(part)
                 for part in parts]
        declared = " ".join(f"f{i}:{name};" for i, name in enumerate(names))
        saves = ", ".join(self.save_object(part, f"v{i}") if self.is_flat(part) else
                          self.word_out(part, f"v{i}") for i, part in enumerate(parts))
        loads = " ".join(self.load(part, f"f{i}", f"v{i}", True) for i, part in enumerate(parts))
        self.declarations.append(f"struct S{number} {{ {declared} }}")
        self.add_function(f"tables::S{number} save_{number}([[maybe_unused]] Saver& s, "
                          f"auto const& v)",
                          self.over_parts(use, "const", f"return tables::S{number}({saves});"))
        self.add_loading(number, f"S{number}", self.over_parts(use, "", loads))

    def make_table(self, number, use):
        parts = self.parts(use)
        saved = [self.part(part, f"f{i}", f"v{i}") for i, part in enumerate(parts)]
        loads = " ".join(self.load(part, f"f{i}", f"v{i}", False) for i, part in enumerate(parts))
        self.add_table(number, f"T{number}", saved)
        self.add_function(self.save_head(number, f"T{number}"),
                          self.over_parts(use, "const", self.build(f"T{number}", saved)))
        self.add_loading(number, f"T{number}", self.over_parts(use, "", loads))

    @staticmethod
    def save_head(number, name):
        return (f"flatbuffers::Offset<tables::{name}> save_{number}([[maybe_unused]] Saver& s, "
                f"auto const& v)")

    def add_table(self, number, name, parts):
        declared = " ".join(field for part in parts for field in part.declared)
        self.declarations.append(f"table {name} {{ {declared} }}")

    @staticmethod
    def build(name, parts):
        """Code that builds the table, with the widest parts first so that there is no padding."""
        before = " ".join(part.before for part in parts)
        added = sorted((added for part in parts for added in part.added), key=lambda one: -one[0])
        statements = " ".join(statement for _, statement in added)
        return f"{before} tables::{name}Builder b(s.builder); {statements} return b.Finish();"

    def make_union(self, number, use):
        """Makes the union of a variant: NONE, `other` for unknown tags, a type for each arm.

        An arm without a payload has no value in the union. `other` holds the tag and, if there is a
        catch-all arm, its payload.
        """
        members, saves, loads = [f"other:O{number}"], [], []
        rest = Part()
        rest.add("tag:int;", 4, "b.add_tag(v.tag);")
        rest_save, rest_load = "", ""
        for tag, arm, payload, is_catch_all in self.arms(use):
            chosen = f"case tables::U{number}_a{tag}: {{ v.choose_tag({tag});"
            if payload is None:
                members.append(f"a{tag}:Nothing")
                saves.append(f"case {tag}: return {{tables::U{number}_a{tag}, 0}};")
                loads.append(f"{chosen} break; }}")
                continue
            whole_payload = self.object(payload)
            name = self.object_name(whole_payload)
            members.append(f"a{tag}:{name}")
            save = self.save_object(whole_payload, "p")
            if self.is_flat(whole_payload):
                save = f"s.builder.CreateStruct({save})"
            load = self.load_object(whole_payload, f"*static_cast<tables::{name} const*>(payload)",
                                    f'v.template arm<"{arm}">()')
            loads.append(f"{chosen} {load} break; }}")
            if not is_catch_all:
                saves.append(f'case {tag}: {{ auto const& p = v.template arm<"{arm}">(); '
                             f"return {{tables::U{number}_a{tag}, {save}.Union()}}; }}")
                continue
            saves.append(f"case {tag}: {{ Arm saved{{tables::U{number}_a{tag}, 0}}; "
                         + self.with_payload(tag, arm, True, f"saved.payload = {save}.Union();")
                         + " return saved; }")
            inner = self.part(payload, "rest", "p")
            rest.declared += inner.declared
            body = self.build(f"O{number}", [rest, inner])
            rest_save = (f"flatbuffers::Offset<tables::O{number}> saved; "
                         + self.with_payload(tag, arm, True,
                                             f"saved = [&] {{ {body} }}();")
                         + f" return {{tables::U{number}_other, saved.Union()}};")
            rest_load = (f'auto& p = v.template arm<"{arm}">(); '
                         f"{self.load(payload, 'rest', 'p', False)}")
        if not rest_save:
            rest_save = (f"auto const saved = tables::CreateO{number}(s.builder, v.tag); "
                         f"return {{tables::U{number}_other, saved.Union()}};")
        self.add_table(number, f"O{number}", [rest])
        self.declarations.append(f"union U{number} {{ {', '.join(members)} }}")
        self.add_function(f"Arm save_{number}([[maybe_unused]] Saver& s, auto const& v)",
                          f"switch (v.tag) {{ {' '.join(saves)} default: break; }} {rest_save}")
        self.add_function(
            f"void load_{number}([[maybe_unused]] Loader& l, tables::U{number} type, "
            f"void const* payload, auto& v)",
            f"switch (type) {{ {' '.join(loads)} case tables::U{number}_other: {{ "
            f"auto const& m = *static_cast<tables::O{number} const*>(payload); "
            f"v.choose_tag(m.tag()); {rest_load} break; }} case tables::U{number}_NONE: break; }}")

    def write(self, directory):
        root = self.object_name(self.root)
        number = self.number(self.root)
        self.add_function(f"flatbuffers::Offset<tables::{root}> save_root(Saver& s, auto const& v)",
                          f"return save_{number}(s, v);")
        self.add_function(f"void load_root(Loader& l, tables::{root} const& m, auto& v)",
                          f"load_{number}(l, m, v);")
        # Structs and unions must be declared before they are used.
        order = ["struct", "union", "table"]
        declarations = sorted(self.declarations, key=lambda text: order.index(text.split()[0]))
        schema = ["namespace peers.tables;", FLOAT, "table Nothing {}", *declarations,
                  f"table Graph {{ strings:[string] (required); root:{root} (required); }}",
                  "root_type Graph;"]
        (directory / "graph_tables.fbs").write_text("\n".join(schema) + "\n")
        self.write_functions(directory / "graph_tables.hpp")


if __name__ == "__main__":
    main(FlatbuffersGenerator, __doc__)
