#!/usr/bin/env python3
"""Tests that the shared library exports exactly the names in exports.txt.

    exports_test.py NM LIBRARY            runs the tests
    exports_test.py NM LIBRARY --update   rewrites exports.txt from the library; read the difference

The complete and the base form of a constructor or destructor have one demangled name, so each name
is listed once.
"""

import pathlib
import re
import shlex
import subprocess
import sys
import unittest

HERE = pathlib.Path(__file__).parent
LIST = HERE / "exports.txt"

REQUIRED_HEADING = "# What the library must export."
FURTHER_HEADING = (
    "# What no caller can do without: special members and arm choice of the variants, and the\n"
    "# other special members of a record that has one of those above."
)

ARCHIVES = ["StreamIArchive", "StreamOArchive", "StringIArchive", "StringOArchive"]
FLOAT = "zelvanite::IEEE754Float"

# Special members that are required by name.
NAMED_MEMBERS = {
    "sml::Application_Results::T_Application_Results::~T_Application_Results()",
    "sml::Checks::T_A_Check::T_A_Check(sml::Checks::T_A_Check&&)",
    "sml::Checks::T_A_Check::~T_A_Check()",
    "sml::Events::T_An_Event::~T_An_Event()",
    "sml::Events::T_RaceConditionAccess::operator=(sml::Events::T_RaceConditionAccess const&)",
    "sml::Failure::T::~T()",
    "sml::IL_Attribute::T::~T()",
    "sml::Infos::T_An_Info::T_An_Info(sml::Infos::T_An_Info&&)",
    "sml::Infos::T_An_Info::~T_An_Info()",
    "sml::Infos::T_Information_Value::operator=(sml::Infos::T_Information_Value const&)",
    "sml::Infos::T_Information_Value::~T_Information_Value()",
}
RECORDS_WITH_NAMED_MEMBERS = {
    "sml::Application_Results::T_Application_Results",
    "sml::Checks::T_A_Check",
    "sml::Events::T_An_Event",
    "sml::Events::T_RaceConditionAccess",
    "sml::Failure::T",
    "sml::IL_Attribute::T",
    "sml::Infos::T_An_Info",
    "sml::Infos::T_Information_Value",
}
NOT_COMPARED = {
    "sml::IL::T_Annotation",
    "sml::IL::T_Info_Expr",
    "sml::IL_Extras::T_ZelvaniteResultData",
    "sml::IL_Extras::VVIRZelvanitePragmasTag::T_PragmaParameter",
}
HASHED = {
    "sml::AccessProtections::T_AccessProtections::CRITICAL_SECTION_args",
    "sml::Check_Classification::T_Check_Classification::INPUT_IMPACT_args",
    "sml::PackagedPrettySignature::T",
    "sml::QualifiedPrettyName::T",
    "sml::QualifiedPrettySignature::T",
}
REFERENCES = {
    f"sml::Interrogators::T_{name}Ref"
    for name in ["Answer", "Context", "Function", "Interrogator", "Question", "Repository"]
}

ENTRY_POINT = re.compile(r"(?:sml::)?(\w+)_(toCxx|fromCxx|toStream|fromStream)\b|"
                         r"sml::deserializeSmlData\(")


def exported_names(nm, library):
    command = [nm, "-DC", "--defined-only", library]
    output = subprocess.run(command, capture_output=True, text=True, check=True).stdout
    return {line.split(" ", 2)[2] for line in output.splitlines()}


def listed_types(header):
    """The types that a header lists as X(Type)."""
    text = (HERE.parent / header).read_text()
    return {"sml::" + name for name in re.findall(r"^\s+X\(([\w:]+)\)", text, re.MULTILINE)}


def stems():
    text = (HERE.parent.parent / "sml" / "bindings" / "roots.def").read_text()
    return re.findall(r"^SML_ROOT\((\w+),", text, re.MULTILINE)


def special_members(name):
    """All special members of a class."""
    simple = name.rsplit("::", 1)[1]
    return {f"{name}::{member}" for member in [
        f"{simple}()", f"{simple}({name} const&)", f"{simple}({name}&&)",
        f"operator=({name} const&)", f"operator=({name}&&)", f"~{simple}()"]}


def own_name(name):
    """The demangled name without the return type that those of templates have."""
    return name.removeprefix("void ")


def is_internal(name):
    name = own_name(name)
    archive_member = re.match(rf"sml::({'|'.join(ARCHIVES)})::", name)
    outside = not re.match(r"sml::|zelvanite::|\w+_(to|from)Cxx$", name)
    return outside or archive_member is not None or name.startswith("sml::core::")


def variants(names):
    """The classes with a toString, except references."""
    printed = {name.removesuffix("::toString() const") for name in names
               if name.endswith("::toString() const")}
    return printed - REFERENCES


def further_names(names):
    """The names that must be in the section of their own."""
    further = set()
    for variant in variants(names):
        further |= special_members(variant) | {f"{variant}::choose_tag(int)"}
    for record in RECORDS_WITH_NAMED_MEMBERS:
        further |= special_members(record)
    return further - NAMED_MEMBERS


def read_list():
    required, further = LIST.read_text().split(FURTHER_HEADING + "\n")
    lines = [[line for line in part.splitlines() if line and not line.startswith("#")]
             for part in (required, further)]
    return lines[0], lines[1]


def update(names):
    further = further_names(names)
    refused = sorted(name for name in names if is_internal(name))
    if refused:
        sys.exit("these must not be exported:\n" + "\n".join(refused))
    sections = [(REQUIRED_HEADING, names - further), (FURTHER_HEADING, names & further)]
    LIST.write_text("\n\n".join("\n".join([heading, *sorted(section)])
                                for heading, section in sections) + "\n")


class Exports(unittest.TestCase):
    maxDiff = None
    names = set()  # the exported names
    mend = ""  # the command that updates the list

    @classmethod
    def setUpClass(cls):
        cls.required, cls.further = read_list()

    def count(self, pattern):
        return sum(1 for name in self.names if re.search(pattern, name))

    def test_library_exports_what_is_listed(self):
        self.assertEqual(sorted(set(self.required + self.further) - self.names), [], self.mend)

    def test_library_exports_nothing_else(self):
        self.assertEqual(sorted(self.names - set(self.required + self.further)), [], self.mend)

    def test_sections_are_sorted_and_each_name_is_listed_once(self):
        self.assertEqual(self.required, sorted(self.required))
        self.assertEqual(self.further, sorted(self.further))
        everything = self.required + self.further
        self.assertEqual(len(everything), len(set(everything)))

    def test_section_of_its_own_holds_special_members_and_arm_choice_only(self):
        self.assertEqual(set(self.further), further_names(self.names))

    def test_nothing_internal_is_exported(self):
        self.assertEqual(sorted(name for name in self.names if is_internal(name)), [])

    def test_every_type_has_its_four_wire_forms(self):
        types = listed_types("all_types.hpp")
        wanted = {f"void {name}::serialize<sml::{archive}>(sml::{archive}&, unsigned int)"
                  for name in types for archive in ARCHIVES}
        self.assertEqual({name for name in self.names if "::serialize<" in name}, wanted)

    def test_every_type_but_four_is_compared(self):
        compared = listed_types("all_types.hpp") - NOT_COMPARED
        for operator, types in [("==", compared), ("<", compared | {FLOAT})]:
            wanted = {f"{name}::operator{operator}({name} const&) const" for name in types}
            found = {name for name in self.names if f"::operator{operator}(" in name}
            self.assertEqual(found, wanted)

    def test_variants_and_enumerations_give_their_names(self):
        enumerations = listed_types("generic/all_enumerations.hpp")
        wanted = {f"{name.rsplit('::', 1)[0]}::toString({name})" for name in enumerations}
        free = {name for name in self.names
                if "::toString(" in name and not name.endswith("() const")}
        self.assertEqual(free, wanted)
        self.assertLess(variants(self.names) | REFERENCES, listed_types("all_types.hpp"))

    def test_keys_are_hashed(self):
        self.assertEqual({name for name in self.names if "::hash(" in name},
                         {f"{name}::hash() const" for name in HASHED})

    def test_special_members_are_there_by_name(self):
        self.assertLessEqual(NAMED_MEMBERS, set(self.required))

    def test_strings_and_floats_are_there(self):
        strings = {name.replace("[abi:cxx11]", "") for name in self.names
                   if name.startswith("sml::Strings_T::")}
        self.assertEqual(len(strings), 2)
        self.assertIn("sml::Strings_T::fAllStrings", strings)
        self.assertEqual(self.count(r"^sml::Strings_T::setStr\("), 1)
        self.assertEqual({name for name in self.names if name.startswith(FLOAT)},
                         {f"{FLOAT}::IEEE754Float()",
                          f"{FLOAT}::IEEE754Float({FLOAT} const&)",
                          f"{FLOAT}::operator<({FLOAT} const&) const"})

    def test_every_root_has_its_seven_functions(self):
        for stem in stems():
            for flat in [f"{stem}_toCxx", f"{stem}_fromCxx"]:
                self.assertIn(flat, self.names)
            for function in ["toCxx", "fromCxx", "toStream", "fromStream"]:
                self.assertEqual(self.count(rf"^sml::{stem}_{function}[\[(]"), 1, stem)
        self.assertEqual(self.count(r"^sml::deserializeSmlData\("), len(stems()))
        entry_points = {name for name in self.names if ENTRY_POINT.match(name)}
        self.assertEqual(len(entry_points), 7 * len(stems()))

    def test_nothing_else_is_required(self):
        types = len(listed_types("all_types.hpp"))
        compared = types - len(NOT_COMPARED)
        printed = (len(variants(self.names)) + len(REFERENCES)
                   + len(listed_types("generic/all_enumerations.hpp")))
        of_strings, of_floats = 2, 3  # the operator< of floats is one
        self.assertEqual(len(self.required),
                         7 * len(stems()) + len(ARCHIVES) * types + 2 * compared + printed
                         + len(HASHED) + of_strings + of_floats + len(NAMED_MEMBERS))


if __name__ == "__main__":
    Exports.names = exported_names(sys.argv[1], sys.argv[2])
    command = shlex.join([sys.executable, *sys.argv[:3], "--update"])
    Exports.mend = f"to list what is exported now: {command}"
    if sys.argv[3:] == ["--update"]:
        update(Exports.names)
    else:
        unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
