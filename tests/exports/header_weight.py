#!/usr/bin/env python3
"""Tests that headers of types without numbers include no number library; measures the cost of headers.

    header_weight.py SOURCE COMPILER           checks every header of sml/schema
    header_weight.py SOURCE COMPILER --time    prints user times of the compiler, the shortest of 9

A type has numbers if its header, or one that it includes, includes the header of big integers or of
floats. A header of sml/schema must include one of these exactly if its own text uses the type.
"""

import os
import pathlib
import resource
import subprocess
import sys

LIBRARIES = ("boost/multiprecision", "gmp", "mpfr.h")
NUMBERS = {"BigInteger": "sml/core/big_integer.hpp", "IEEE754Float": "sml/core/ieee754_float.hpp"}
MPFR = "boost/multiprecision/mpfr.hpp"


def compiled(command, source, header, *flags):
    return subprocess.run([command, "-std=c++20", "-I", str(source), *flags, "-x", "c++", "-"],
                          input=f"#include <{header}>\n", text=True, capture_output=True, check=True)


def includes(command, source, header):
    return compiled(command, source, header, "-M").stdout.replace("\\\n", " ").split()


def user_seconds(command, source, header):
    before = resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime
    compiled(command, source, header, "-fsyntax-only")
    return resource.getrusage(resource.RUSAGE_CHILDREN).ru_utime - before


def schema_headers(source):
    return sorted(str(path.relative_to(source)) for path in (source / "sml/schema").glob("*.hpp"))


def needless(source, header):
    """The number headers that a header includes but does not need, or needs but does not include."""
    text = (source / header).read_text()
    return [f"{header} has {name} or includes {number}, not both" for name, number in NUMBERS.items()
            if (f"#include <{number}>" in text) != (name in text.replace(number, ""))]


def check(command, source):
    heavy, light = [], 0
    for header in schema_headers(source):
        heavy += needless(source, header)
        files = includes(command, source, header)
        if any(file.endswith(tuple(NUMBERS.values())) for file in files):
            continue
        light += 1
        heavy += [f"{header} includes {file}" for file in files
                  if any(library in file for library in LIBRARIES)]
    print(f"{light} headers without numbers")
    if heavy or light == 0:
        sys.exit("\n".join(heavy) or "there is none")


def time_headers(command, source):
    headers = [MPFR, "sml/bindings/bindings.hpp", "sml/schema/Localization.hpp",
               "sml/schema/Interrogators.hpp", "sml/schema/Checks.hpp"]
    times = {header: [] for header in headers}
    for _ in range(9):
        for header in headers:
            times[header].append(user_seconds(command, source, header))
    for header in headers:
        least = min(times[header])
        lines = len(compiled(command, source, header, "-E", "-P").stdout.splitlines())
        print(f"{header:32} {least:6.2f} s  {least / min(times[MPFR]):5.2f} of {MPFR}"
              f"  {lines:7} lines")


def main():
    source, command = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2]
    os.environ["LC_ALL"] = "C"
    if sys.argv[3:] == ["--time"]:
        time_headers(command, source)
    else:
        check(command, source)


if __name__ == "__main__":
    main()
