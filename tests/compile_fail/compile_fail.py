#!/usr/bin/env python3
"""Compiles a file twice: as it should be, and with the mistake that it shows.

    compile_fail.py SOURCE COMPILER --precompile
    compile_fail.py SOURCE COMPILER FILE

The file begins with what the compiler must say of the mistake, as a regular expression, and in how
many errors where that number is required:

    // error: EXPRESSION
    // errors: NUMBER

The headers of `sml/core/` are compiled once, into the working directory.
"""

import re
import sys

from compiler import Compiler


def precompile(compiler):
    result = compiler.precompile()
    if result.returncode != 0:
        sys.exit(result.stderr)


def check(compiler, file):
    with open(file) as text:
        head = text.read()
    expected = re.match(r"// error: (.*)", head).group(1)
    number = re.search(r"^// errors: (\d+)$", head, re.MULTILINE)

    right = compiler.check_file(file)
    if right.returncode != 0 or right.stderr:
        sys.exit(f"as it should be, it does not compile cleanly:\n{right.stderr}")
    wrong = compiler.check_file(file, ["-DMISTAKE"])
    if wrong.returncode == 0:
        sys.exit("the mistake compiles")
    errors = re.findall(r"error: (.*)", wrong.stderr)
    if not any(re.search(expected, error) for error in errors):
        sys.exit(f"the compiler does not say '{expected}':\n{wrong.stderr}")
    if number and len(errors) != int(number.group(1)):
        sys.exit(f"{len(errors)} errors:\n" + "\n".join(errors))


def main():
    source, command, task = sys.argv[1:]
    compiler = Compiler(source, command, "sml/core/define.hpp", ".")
    if task == "--precompile":
        precompile(compiler)
    else:
        check(compiler, task)


if __name__ == "__main__":
    main()
