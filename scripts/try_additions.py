#!/usr/bin/env python3
"""Adds a record, an arm and a root as CONTRIBUTING.md says, and runs the suite with them.

    scripts/try_additions.py [--jobs N]

All happens in a copy of the sources, build/additions/src, with the preset dev:

- The types are declared, and nothing else. Each test that lists types must fail, and its output
  must say how to mend it.
- That is done: lines are changed where the output says, commands that it prints are run. What
  these commands write must be about the new types alone.
- All tests must pass, and the command must know the new types.

The copy and its build are kept, so that a second run builds little. Exit code 1: an addition takes
other steps than CONTRIBUTING.md says, or the place of an edit is not there any more.
"""

import argparse
import contextlib
import dataclasses
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import time
from collections.abc import Iterator
from pathlib import Path

from source_copy import ROOT, SourceCopy, locked

WORK = ROOT / "build/additions"
COPY = SourceCopy(WORK / "src")
EXPORTS = COPY.folder / "tests/exports/exports.txt"
GOLDENS = COPY.folder / "tests/golden/files"
DIGESTS = "digests.txt"


# The edits


@dataclasses.dataclass(frozen=True)
class Insertion:
    file: str
    behind: str  # whole lines
    text: str

    def applied(self, content: str) -> str:
        lines = f"\n{self.behind}\n"
        only_place(self.file, self.behind, content.count(lines))
        return content.replace(lines, f"{lines}{self.text}\n")


@dataclasses.dataclass(frozen=True)
class Replacement:
    file: str
    old: str
    new: str

    def applied(self, content: str) -> str:
        only_place(self.file, self.old, content.count(self.old))
        return content.replace(self.old, self.new)


@dataclasses.dataclass(frozen=True)
class Count:
    file: str
    place: str  # {} is the number
    more: int

    def applied(self, content: str) -> str:
        before, after = map(re.escape, self.place.split("{}"))
        pattern = re.compile(f"({before})([0-9]+)({after})")
        only_place(self.file, self.place, len(pattern.findall(content)))
        return pattern.sub(lambda found: f"{found[1]}{int(found[2]) + self.more}{found[3]}",
                           content)


Edit = Insertion | Replacement | Count


def only_place(file: str, place: str, times: int) -> None:
    if times != 1:
        sys.exit(f"{file}: this stands there {times} times, not once:\n{place}")


RECORD = [
    Insertion("sml/schema/Internal_Form_Datas.hpp",
              behind="         IC_VCS, IC_VOBJ, IC_VOBJFE, IC_VOFP, IC_VOL, IC_VOO, IC_VOP, IC_VOR);",
              text="""
/// A call as a viewer shows it.
struct T_Call {
    T_CallKind           kind{};
    Strings_T            callee;
    std::list<Strings_T> arguments;
    bool                 is_direct{};

    SML_RECORD(T_Call, kind, callee, arguments, is_direct);
};"""),
    Insertion("sml/schema/Internal_Form_Datas.cpp",
              behind="SML_DEFINE_ENUM(T_Info_Category);",
              text="SML_DEFINE_RECORD(T_Call);"),
    Insertion("tests/all_types.hpp",
              behind="#include <sml/schema/InfosTypes.hpp>",
              text="#include <sml/schema/Internal_Form_Datas.hpp>"),
    Insertion("tests/all_types.hpp",
              behind="    X(Base_Gui_Internal_Form_Datas::T_Aggregated_Results)            \\",
              text="    X(Internal_Form_Datas::T_Call)                                   \\"),
]

ARM = [
    Insertion("sml/schema/Mem_Alloc_BuiltIn_Operation.hpp",
              behind="struct T_Operation {",
              text="""\
    struct Pool_args {
        Strings_T name;
        int32     size{};

        SML_RECORD(Pool_args, name, size);
    };
"""),
    Insertion("sml/schema/Mem_Alloc_BuiltIn_Operation.hpp",
              behind='        core::Arm<"New_CPP">,',
              text='        core::Arm<"Pool", Pool_args>,'),
    Insertion("sml/schema/Mem_Alloc_BuiltIn_Operation.cpp",
              behind="SML_DEFINE_RECORD(T_stub_mem_alloc_builtin_param);",
              text="SML_DEFINE_RECORD(T_Operation::Pool_args);"),
    Insertion("tests/all_types.hpp",
              behind="    X(Mem_Alloc_BuiltIn_Operation::T_stub_mem_alloc_builtin_param)"
                     "                             \\",
              text="    X(Mem_Alloc_BuiltIn_Operation::T_Operation::Pool_args)"
                   "                                     \\"),
]

ROOT_TYPE = [
    Insertion("sml/bindings/roots.def",
              behind="SML_ROOT(Answers_ContextRegion, sml::Answers::T_ContextRegion)",
              text="SML_ROOT(Internal_Form_Datas_Call, sml::Internal_Form_Datas::T_Call)"),
    Insertion("sml/bindings/bindings.hpp",
              behind="#include <sml/schema/IL_Extras.hpp>",
              text="#include <sml/schema/Internal_Form_Datas.hpp>"),
]

DECLARATIONS = RECORD + ARM + ROOT_TYPE

# The record, and that of the arm.
NEW_RECORDS = 2
NEW_ROOTS = 1

IN_TESTS_AND_DOCUMENTS = [
    Count("tests/generic/counts_test.cpp", "Form::record; }), {})", NEW_RECORDS),
    Count("tests/generic/counts_test.cpp", "stems().size(), {}u)", NEW_ROOTS),
    Count("README.md", "for each of the {} record\nand variant types", NEW_RECORDS),
    Count("README.md", "for each of {} root types", NEW_ROOTS),
    Replacement("tests/generic/all_enumerations.hpp",
                old="    X(Internal_Form_Datas::T_CallKind)                    \\\n",
                new=""),
    Insertion("tests/generic/all_enumerations.hpp",
              behind="    X(InfosTypes::T_Stdlib_Param_Kind)"
                     "                                                   \\",
              text="    X(Internal_Form_Datas::T_CallKind)"
                   "                                                   \\"),
    Insertion("tests/schema/il/Mem_Alloc_BuiltIn_Operation_test.cpp",
              behind='                                      {"New_CPP"},',
              text='                                      {"Pool", "FFFFFFFF 00000000  00000000"},'),
    Replacement("tests/schema/il/Mem_Alloc_BuiltIn_Operation_test.cpp",
                old="wire::expect(stub, \"06000000 'T'\");",
                new="wire::expect(stub, \"07000000 'T'\");"),
    Insertion("tests/schema/il/Mem_Alloc_BuiltIn_Operation_test.cpp",
              behind="    wire::expect(stub, \"07000000 'T'\");\n}",
              text="""
TEST(MemAllocOperation, PoolIsItsNameAndItsSize) {
    wire::expect(T_Operation::Pool_args{{"p"}, 2}, "FFFFFFFF 01000000 'p'  02000000");
}"""),
    Insertion("tests/schema/results/Internal_Form_Datas_test.cpp",
              behind='#include "tests/schema/tables.hpp"',
              text='#include "tests/wire.hpp"'),
    Insertion("tests/schema/results/Internal_Form_Datas_test.cpp",
              behind="namespace {",
              text="""
TEST(Call, WritesFieldsInOrder) {
    using namespace sml::Internal_Form_Datas;
    wire::expect(T_Call{T_CallKind::REGULAR_CALL, {"f"}, {{"a"}, {"b"}}, true},
                 "03000000  FFFFFFFF 01000000 'f'"
                 "02000000  FEFFFFFF 01000000 'a'  FDFFFFFF 01000000 'b'  'T'");
}"""),
]


# What must come of them


@dataclasses.dataclass(frozen=True)
class Demand:
    """A test that fails when only the types are declared, and what its output says then."""

    test: str
    output: str  # a regular expression; its group is a command to run

    def command(self, output: str) -> list[str] | None:
        found = re.search(self.output, output)
        if found is None:
            sys.exit(f"{self.test} fails, but does not say how to mend it:\n{output}")
        return shlex.split(found[1]) if found.groups() else None


DEMANDS = [
    Demand("Counts.OfRecordsVariantsReferencesEnumerationsAndRoots",
           r"change the number in tests/generic/counts_test\.cpp"),
    Demand("Readme.GivesTheNumbersOfTypes", r"the top of README\.md must say: .*root types"),
    Demand("RoundTrip.RandomValuesReachEveryArmAndEveryEnumerator",
           r"moves to FIELD_ENUMERATIONS in tests/generic/all_enumerations\.hpp"),
    Demand("MemAllocOperation.EveryArmHasItsTagItsNameAndItsDefaultPayload",
           r"the table in this test must have a row for each arm"),
    Demand("Exports.AreTheListedNames", r"to list what is exported now: (.+ --update)"),
    Demand("Golden.TheFilesAreOfTheWireFormsThatRootsHave",
           r"make its files anew: (cmake .+ --target goldens)"),
]

NEW_ROOT = "Internal_Form_Datas_Call"
ROOTS_WITH_THE_VARIANT = {"IL_Extras_ZelvaniteResultData"}
NEW_NAMES = (NEW_ROOT, "Internal_Form_Datas::T_Call", "T_Operation::Pool_args")

VALUES = {
    NEW_ROOT: {"kind": "HIGH_ORDER_CALL", "callee": "f", "arguments": ["g", "f"],
               "is_direct": True},
    "IL_Extras_ZelvaniteResultData": {
        "arm": "MEM_ALLOC",
        "args": {"flag": False,
                 "operation": {"arm": "Pool", "args": {"name": "arena", "size": 64}},
                 "name": "p"}},
}


# The copy, its build and its tests


@contextlib.contextmanager
def stage(title: str) -> Iterator[None]:
    print(f"-- {title}", flush=True)
    start = time.monotonic()
    yield
    print(f"-- {title}: {time.monotonic() - start:.0f} s", flush=True)


def edited(edits: list[Edit]) -> dict[str, str]:
    """The new texts of the files."""
    texts: dict[str, str] = {}
    for edit in edits:
        text = texts.get(edit.file) or (ROOT / edit.file).read_text(encoding="utf-8")
        texts[edit.file] = edit.applied(text)
    return texts


def run(command: list[str], stdin: str | None = None) -> str:
    """What a command that must succeed prints."""
    done = subprocess.run(command, cwd=COPY.folder, input=stdin, capture_output=True, text=True,
                          errors="replace")
    if done.returncode != 0:
        sys.exit(f"{shlex.join(command)} ends with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def build(jobs: int) -> None:
    run(["cmake", "--build", "--preset", "dev", "--parallel", str(jobs)])


def output_of_failing(test: str) -> str:
    command = ["ctest", "--preset", "dev", "--no-tests=error", "--tests-regex",
               f"^{re.escape(test)}$"]
    done = subprocess.run(command, cwd=COPY.folder, capture_output=True, text=True,
                          errors="replace")
    if done.returncode == 0:
        sys.exit(f"{test} passes, though only the types are declared")
    return done.stdout + done.stderr


def golden_digests() -> dict[str, str]:
    return {path.name: hashlib.sha256(path.read_bytes()).hexdigest()
            for path in GOLDENS.iterdir()}


def digest_lines() -> set[str]:
    return set((GOLDENS / DIGESTS).read_text(encoding="utf-8").splitlines())


def root_of(golden: str) -> str:
    """Of the name of a file, or of a line of its digest."""
    return re.match(r"\w+", golden)[0]


def listed_exports() -> set[str]:
    return set(EXPORTS.read_text(encoding="utf-8").splitlines())


def check(holds: bool, text: str) -> None:
    if not holds:
        sys.exit(text)


def check_goldens(before: dict[str, str], lines_before: set[str]) -> None:
    after = golden_digests()
    changed = {root_of(name) for name, digest in before.items()
               if name != DIGESTS and after.get(name) != digest}
    check(changed == ROOTS_WITH_THE_VARIANT,
          f"golden files were made anew of {changed}, not of {ROOTS_WITH_THE_VARIANT}")
    lines = {root_of(line) for line in lines_before ^ digest_lines()}
    expected = ROOTS_WITH_THE_VARIANT | {NEW_ROOT}
    check(lines == expected, f"{DIGESTS} changed for {lines}, not for {expected}")
    for name in (f"{NEW_ROOT}.1.bin", f"{NEW_ROOT}.1.json"):
        check(name in after, f"there is no golden file {name}")


def check_exports(before: set[str]) -> None:
    after = listed_exports()
    check(before <= after, f"no longer listed as exported: {before - after}")
    others = {line for line in after - before if not any(name in line for name in NEW_NAMES)}
    check(not others, f"now listed as exported: {others}")
    unlisted = {name for name in NEW_NAMES if not any(name in line for line in after)}
    check(not unlisted, f"nothing is listed as exported of {unlisted}")


# The stages


def declare(jobs: int) -> None:
    COPY.update(edited(DECLARATIONS))
    COPY.configure()
    build(jobs)


def mend() -> None:
    """Does what failing tests ask for, and reads the difference."""
    commands = [demand.command(output_of_failing(demand.test)) for demand in DEMANDS]
    COPY.update(edited(DECLARATIONS + IN_TESTS_AND_DOCUMENTS))
    exports, goldens, lines = listed_exports(), golden_digests(), digest_lines()
    for command in filter(None, commands):
        print(shlex.join(command), flush=True)
        run(command)
    check_exports(exports)
    check_goldens(goldens, lines)


def run_suite(jobs: int) -> None:
    build(jobs)
    command = ["ctest", "--preset", "dev", "--parallel", str(jobs)]
    done = subprocess.run(command, cwd=COPY.folder)
    check(done.returncode == 0, "the suite does not pass with the additions")


def try_command() -> None:
    bradep = str(COPY.build_folder / "tools/bradep")
    bytes_file = str(WORK / "value.bin")
    roots = {root["stem"] for root in json.loads(run([bradep, "schema"]))["roots"]}
    check(NEW_ROOT in roots, f"bradep schema does not list {NEW_ROOT}")
    for stem, value in VALUES.items():
        form = {"root": stem, "value": value}
        run([bradep, "encode", "-", "-o", bytes_file], stdin=json.dumps(form))
        run([bradep, "verify", "--strict", "--root", stem, bytes_file])
        dumped = json.loads(run([bradep, "dump", "--root", stem, bytes_file]))
        check(dumped == form, f"{form} comes back as {dumped}")


def main() -> None:
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="at once")
    jobs = parser.parse_args().jobs
    with locked(WORK):
        with stage("declare a record, an arm and a root, and build"):
            declare(jobs)
        with stage("do what the failing tests say"):
            mend()
        with stage("run the suite"):
            run_suite(jobs)
        with stage("try the command"):
            try_command()


if __name__ == "__main__":
    main()
