#!/usr/bin/env python3
"""Compiles a file twice: without its mistake, which must succeed, and with it, which must fail.

    compile_fail.py SOURCE COMPILER --precompile
    compile_fail.py SOURCE COMPILER FILE

The file begins with requirements for the compiler's messages. All but the first are optional:

    // error: EXPRESSION   a regular expression that an error must match
    // errors: NUMBER      the required number of errors
    // lines: NUMBER       the most lines, without those that show chains of includes
    // says: EXPRESSION    an expression for the messages; names are "NAME", "NAME" in any spelling

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
    """Makes literals of names that are template arguments, which can also be single characters."""
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
    shown = [line for line in wrong.stderr.splitlines() if "In file included from" not in line
            and not line.lstrip().startswith("from ")]
    if lines and len(shown) > int(lines):
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
