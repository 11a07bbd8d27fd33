#!/usr/bin/env python3
"""Measures the tests by what they catch: changes the sources, one line at a time, and looks which
test fails.

scripts/mutants.toml lists the mutants by file. Each has a name, the old text, which stands once in
the file, the new one, what that breaks, and the tests that could catch it, the likeliest first:
test programs or names of ctest. One that no test is to catch has the reason under `survives`.

    scripts/mutants.py --list                check the list and count it by folder; runs nothing
    scripts/mutants.py                       run every mutant that has no result yet
    scripts/mutants.py NAME... --jobs 1      run these; the start of a path names all below it
    scripts/mutants.py --minutes 60          begin no other one after an hour
    scripts/mutants.py --again NAME...       run these once more, as when a test is new
    scripts/mutants.py --apart NAME...       build each of these by itself
    scripts/mutants.py --table [--write]     print the table, or put it into docs/mutants.md

Most mutants fit into one build ("mutant schemata"): each is a branch that an environment variable
chooses, in a copy of the sources, build/mutants/together. What can't be chosen at run time, such as
the order of a record's fields or a constant, is built apart, one mutant at a time, in
build/mutants/src; and so is a mutant that its tests never reach in the one build. Both have the
preset dev. Tests must pass without a mutant, which is tried first; a failure counts when it comes
twice.

The results stand in build/mutants/results.json, so that a run can be ended and taken up again at
any time. They hold for a mutant and the code of the file that it changes: either of them edited, it
runs anew; comments and white space are no code. Exit code 1: the list has mistakes, a mutant survives
that need not, or one is killed that is said to survive.
"""

import argparse
import signal
import sys

from mutation.mutant_list import Mutant, complaints, load_list, print_counts
from mutation.results import Results, shown
from mutation.runner import BuiltApart, BuiltTogether
from mutation.mutant_copy import WORK, MutantCopy
from mutation.table import PAGE, STATES, counts, table, write_between_marks
from mutation.tests import Tests
from source_copy import locked


def parsed() -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("names", nargs="*", metavar="NAME",
                        help="mutants, or starts of paths; all where none is named")
    parser.add_argument("--list", action="store_true", help="check and count them")
    parser.add_argument("--again", action="store_true", help="also those with a result")
    parser.add_argument("--apart", action="store_true", help="build each by itself")
    parser.add_argument("--table", action="store_true", help="print what is known")
    parser.add_argument("--write", action="store_true", help="with --table: into the page")
    parser.add_argument("--jobs", type=int, help="of ninja, and tests at once")
    parser.add_argument("--minutes", type=float, default=float("inf"), help="begin none after")
    parser.add_argument("--memory", type=int, default=16, metavar="GB",
                        help="address space of a test program (default: 16)")
    return parser.parse_args()


def chosen(mutants: list[Mutant], names: list[str]) -> list[Mutant]:
    def is_named(mutant: Mutant, name: str) -> bool:
        return name == mutant.name or ("/" in name and mutant.file.startswith(name))

    for name in names:
        if not any(is_named(mutant, name) for mutant in mutants):
            sys.exit(f"no such mutant: {name}")
    return [mutant for mutant in mutants
            if not names or any(is_named(mutant, name) for name in names)]


def is_as_listed(mutant: Mutant, results: Results) -> bool:
    result = results.of(mutant)
    wanted = "survives" if mutant.survives else "killed"
    return result is None or result["status"] == wanted


def run(mutants: list[Mutant], todo: list[Mutant], copy: MutantCopy, results: Results,
        options: argparse.Namespace) -> None:
    together = BuiltTogether(mutants, results, options)
    apart = [mutant for mutant in todo if options.apart or not together.has(mutant)]
    rest = [mutant for mutant in todo if mutant not in apart]
    if rest:
        apart += together.run(rest)
    if apart:
        BuiltApart(copy, results, options).run(apart)


def print_end(selected: list[Mutant], results: Results) -> None:
    killed, survive = counts(selected, results)[:2]
    if known := len(selected) - counts(selected, results)[STATES.index("not run")]:
        print(f"killed {killed} of {known} ({100 * killed / known:.1f} %), {survive} survive, "
              f"{len(selected) - known} not run")
    for mutant in selected:
        result = results.of(mutant)
        if result is not None and result["status"] != "killed":
            reason = f" ({mutant.survives})" if mutant.survives else ""
            print(f"{mutant.name}: {shown(result)}{reason}")


def check_and_run(mutants: list[Mutant], options: argparse.Namespace) -> int:
    selected = chosen(mutants, options.names)
    copy = MutantCopy(WORK / "src")
    copy.update()
    copy.configure()
    tests = Tests(copy)
    if mistakes := complaints(mutants, lambda name: tests.find(name) is not None):
        print(*mistakes, sep="\n", file=sys.stderr)
        return 1
    if options.list:
        print_counts(selected)
        return 0
    results = Results()
    todo = [mutant for mutant in selected if options.again or results.of(mutant) is None]
    run(mutants, todo, copy, results, options)
    print_end(selected, results)
    wrong = [mutant for mutant in selected if not is_as_listed(mutant, results)]
    for mutant in wrong:
        wanted = "survives" if mutant.survives else "killed"
        print(f"{mutant.name}: {shown(results.of(mutant))}, listed as {wanted}", file=sys.stderr)
    return 1 if wrong else 0


def main() -> int:
    options = parsed()
    mutants = load_list()
    if options.table:
        text = table(mutants, Results())
        write_between_marks(PAGE, text) if options.write else print(text, end="")
        return 0
    with locked(WORK):
        return check_and_run(mutants, options)


def interrupt(*_: object) -> None:
    raise KeyboardInterrupt


if __name__ == "__main__":
    signal.signal(signal.SIGTERM, interrupt)
    try:
        sys.exit(main())
    except KeyboardInterrupt:
        sys.exit(130)
