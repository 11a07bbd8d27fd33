#!/usr/bin/env python3
"""Compiles a file twice: as it should be, and with the mistake that it shows.

    compile_fail.py SOURCE COMPILER --precompile
    compile_fail.py SOURCE COMPILER FILE

The file begins with what is required of the compiler's messages; all but the first may be left out:

    // error: EXPRESSION   a regular expression that an error must match
    // errors: NUMBER      how many errors there must be
    // lines: NUMBER       how many lines at most, without those that say what includes what
    // says: EXPRESSION    what must stand in them, names as "NAME", "NAME", however they are shown

The headers of `sml/core/` are compiled once, into the working directory.
"""

import re
import sys

from compiler import Compiler


def precompile(compiler):
    result = compiler.precompile()
    if result.returncode != 0:
        sys.exit(result.stderr)


def with_plain_names(text):
    """Names among template arguments are literals inside others, or single characters."""
    def joined(match):
        return '"' + "".join(re.findall(r"'(.)'", match.group(1))) + '"'
    text = re.sub(r"[\w:]*Spelled<((?:'.'(?:, )?)*)>", joined, text)
    return re.sub(r'[\w:]*Shown<[\w:]*Name<\d+>\{("\w*")\}>', r"\1", text)


def required(head, what):
    found = re.search(rf"^// {what}: (.*)$", head, re.MULTILINE)
    return found and found.group(1)


def check(compiler, file):
    with open(file) as text:
        head = text.read()
    expected = required(head, "error")
    number = required(head, "errors")
    lines = required(head, "lines")
    names = required(head, "says")

    right = compiler.check_file(file)
    if right.returncode != 0 or right.stderr:
        sys.exit(f"as it should be, it does not compile cleanly:\n{right.stderr}")
    wrong = compiler.check_file(file, ["-DMISTAKE"])
    if wrong.returncode == 0:
        sys.exit("the mistake compiles")
    errors = re.findall(r"error: (.*)", wrong.stderr)
    if not any(re.search(expected, error) for error in errors):
        sys.exit(f"the compiler does not say '{expected}':\n{wrong.stderr}")
    if number and len(errors) != int(number):
        sys.exit(f"{len(errors)} errors:\n" + "\n".join(errors))
    told = [line for line in wrong.stderr.splitlines() if "In file included from" not in line
            and not line.lstrip().startswith("from ")]
    if lines and len(told) > int(lines):
        sys.exit(f"more than {lines} lines:\n{wrong.stderr}")
    if names and not re.search(names, with_plain_names(wrong.stderr)):
        sys.exit(f"the compiler does not show '{names}':\n{with_plain_names(wrong.stderr)}")


def main():
    source, command, task = sys.argv[1:]
    compiler = Compiler(source, command, "sml/core/define.hpp", ".")
    if task == "--precompile":
        precompile(compiler)
    else:
        check(compiler, task)


if __name__ == "__main__":
    main()
