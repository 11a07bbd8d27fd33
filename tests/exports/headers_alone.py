#!/usr/bin/env python3
"""Compiles every public header alone, with nothing but the source tree to include from.

    headers_alone.py SOURCE COMPILER HEADER...

Most headers include the same one first. It is precompiled once for all of them.
"""

import concurrent.futures
import os
import pathlib
import re
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).parent.parent / "compile_fail"))

from compiler import Compiler  # noqa: E402

BASE = "sml/core/declare.hpp"


def starts_with_base(header):
    includes = re.findall(r"^#include (.*)$", header.read_text(), re.MULTILINE)
    return includes[:1] == [f"<{BASE}>"]


def main():
    source, command = pathlib.Path(sys.argv[1]), sys.argv[2]

    def complaint(header):
        from_base = starts_with_base(source / header)
        result = compiler.check_text(f"#include <{header}>\n", from_base)
        return result.stderr if result.returncode != 0 or result.stderr else ""

    headers = sorted({str(pathlib.Path(header).relative_to(source)) for header in sys.argv[3:]
                      if not header.endswith(".def")})
    with tempfile.TemporaryDirectory() as folder:
        compiler = Compiler(source, command, BASE, folder, ["-Wpedantic", "-Werror"])
        base = compiler.precompile()
        if base.returncode != 0:
            sys.exit(base.stderr)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            complaints = list(pool.map(complaint, headers))
    for header, text in zip(headers, complaints):
        if text:
            print(f"{header} does not compile alone:\n{text}")
    print(f"{command}: {len(headers)} headers")
    return 1 if any(complaints) else 0


if __name__ == "__main__":
    sys.exit(main())
