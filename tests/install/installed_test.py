#!/usr/bin/env python3
"""Installs a build to a place of its own and uses it as its users do.

    installed_test.py CMAKE BUILD SOURCE COMPILER

The README's program builds with its own command, a CMake project finds both libraries, and every
command of the installed tool runs.
"""

import filecmp
import os
import pathlib
import re
import subprocess
import sys
import tempfile

CONSUMER = pathlib.Path(__file__).parent / "consumer"
FINDING = "byte 8 at [#0].key: expected a length from 0 to 1, found 9\n"


def run(*command, code=0, **options):
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True,
                            **options)
    if result.returncode != code:
        sys.exit(f"{' '.join(map(str, command))}\nended with {result.returncode}, not {code}:\n"
                 f"{result.stdout}{result.stderr}")
    return result.stdout


def expect(what, is_so):
    if not is_so:
        sys.exit(f"not so: {what}")


def try_readme(source, prefix, folder, compiler):
    readme = (source / "README.md").read_text()
    program = re.search(r"^```cpp\n(.*?)^```", readme, re.MULTILINE | re.DOTALL).group(1)
    printed = re.search(r"^It prints `([^`]*)`", readme, re.MULTILINE).group(1)
    command = re.search(r"^    g\+\+ (.*)$", readme, re.MULTILINE).group(1)
    (folder / "example.cpp").write_text(program)
    search = {**os.environ, "PKG_CONFIG_PATH": str(next(prefix.glob("lib*/**/pkgconfig"))),
              "LD_LIBRARY_PATH": str(next(prefix.glob("lib*/**/pkgconfig")).parent)}
    run("sh", "-c", f"{compiler} {command}", cwd=folder, env=search)
    expect("the README's program prints what it says",
           run(folder / "a.out", env=search) == printed + "\n")

    run("sh", "-c", f"cc '{CONSUMER / 'checker.c'}' -o checker"
        " $(pkg-config --cflags --libs bradep_inspect)", cwd=folder, env=search)
    expect("a program in C finds what is wrong", run(folder / "checker", env=search) == FINDING)


def try_package(cmake, prefix, folder, compiler):
    build = folder / "consumer"
    run(cmake, "-G", "Ninja", "-S", CONSUMER, "-B", build, f"-DCMAKE_PREFIX_PATH={prefix}",
        f"-DCMAKE_CXX_COMPILER={compiler}")
    run(cmake, "--build", build)
    expect("a viewer dumps", run(build / "viewer") ==
           '{"root":"String_To_StringSet_T","value":[["a",["b"]]]}\n')
    expect("a checker finds", run(build / "checker") == FINDING)


def try_commands(source, prefix, folder):
    bradep = prefix / "bin" / "bradep"
    log = source / "tests" / "cli" / "fixtures" / "places.sarif"
    stem = "Base_Gui_Internal_Form_Datas_Aggregated_Results_T"
    result, again, canonical = folder / "result", folder / "again", folder / "canonical"
    run(bradep, "import", log, "-o", result)
    expect("show tells the checks", "checks" in run(bradep, "show", result))
    run(bradep, "verify", "--strict", result)
    expect("identify finds the root", run(bradep, "identify", result).splitlines()[0] == stem)
    json = folder / "json"
    json.write_text(run(bradep, "dump", result))
    run(bradep, "encode", json, "-o", again)
    expect("encode gives the same bytes", filecmp.cmp(result, again, shallow=False))
    run(bradep, "canon", result, "-o", canonical)
    expect("the digest is the canonical bytes'",
           run(bradep, "digest", result).split()[0] == run("sha256sum", canonical).split()[0])
    schema = folder / "schema"
    schema.write_text(run(bradep, "schema"))
    run(bradep, "schema", "--diff", schema)
    expect("there are 40 roots", len(run(bradep, "roots").splitlines()) == 40)
    result.write_bytes(result.read_bytes()[:-1])
    run(bradep, "verify", result, code=1)
    expect("an option is told of", "--version" in run(bradep, "--help"))


def main():
    cmake, build, source, compiler = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        prefix = folder / "prefix"
        run(cmake, "--install", build, "--prefix", prefix)
        try_readme(pathlib.Path(source), prefix, folder, compiler)
        try_package(cmake, prefix, folder, compiler)
        try_commands(pathlib.Path(source), prefix, folder)


if __name__ == "__main__":
    main()
