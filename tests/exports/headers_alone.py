#!/usr/bin/env python3
"""Compiles every public header alone, with nothing but the source tree to include from.

    headers_alone.py SOURCE COMPILER HEADER...
    headers_alone.py --together SOURCE COMPILER HEADER...

Most headers include the same one first. It is precompiled once for all of them. With --together,
one source includes all headers.
"""

import argparse
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
    parser = argparse.ArgumentParser()
    parser.add_argument("--together", action="store_true")
    parser.add_argument("source", type=pathlib.Path)
    parser.add_argument("command")
    parser.add_argument("headers", nargs="+")
    arguments = parser.parse_args()
    source, command = arguments.source, arguments.command

    def complaint(headers):
        text = "".join(f"#include <{header}>\n" for header in headers)
        result = compiler.check_text(text, starts_with_base(source / headers[0]))
        return result.stderr if result.returncode != 0 or result.stderr else ""

    headers = sorted({str(pathlib.Path(header).relative_to(source))
                      for header in arguments.headers if not header.endswith(".def")})
    texts = [headers] if arguments.together else [[header] for header in headers]
    with tempfile.TemporaryDirectory() as folder:
        compiler = Compiler(source, command, BASE, folder, ["-Wpedantic", "-Werror"])
        base = compiler.precompile()
        if base.returncode != 0:
            sys.exit(base.stderr)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            complaints = list(pool.map(complaint, texts))
    for included, text in zip(texts, complaints):
        if text:
            print(f"this does not compile by itself: {', '.join(included)}\n{text}")
    print(f"{command}: {len(headers)} headers")
    return 1 if any(complaints) else 0


if __name__ == "__main__":
    sys.exit(main())
