#!/usr/bin/env python3
"""Installs a build to an empty place and uses it as its users do.

    installed_test.py CMAKE BUILD SOURCE COMPILER

The README's program must build with the command given there. Projects in C++ and in C must build with
CMake and with pkg-config, and run without a library path being set. Every command of the tool must run.
"""

import filecmp
import os
import pathlib
import re
import subprocess
import sys
import tempfile

USERS = pathlib.Path(__file__).parent
FINDING = "byte 8 at [#0].key: expected a length from 0 to 1, found 9\n"


def run(*command, code=0, errors=False, **options):
    result = subprocess.run([str(word) for word in command], capture_output=True, text=True,
                            **options)
    if result.returncode != code:
        sys.exit(f"{' '.join(map(str, command))}\nended with {result.returncode}, not {code}:\n"
                 f"{result.stdout}{result.stderr}")
    return result.stderr if errors else result.stdout


def expect(what, is_so):
    if not is_so:
        sys.exit(f"not so: {what}")


def pkg_config(prefix):
    return {**os.environ, "PKG_CONFIG_PATH": str(next(prefix.glob("lib*/**/pkgconfig")))}


def readme_command(source):
    """The README's command to build its program, with its addition for non-standard prefixes."""
    readme = (source / "README.md").read_text()
    command = re.search(r"^    (g\+\+ (?:.*\\\n)*.*)$", readme, re.MULTILINE).group(1)
    elsewhere = re.search(r"`(-Wl,-rpath,[^`]*)`", readme).group(1)
    return f"{command} {elsewhere}"


def try_readme(source, prefix, folder, compiler):
    readme = (source / "README.md").read_text()
    program = re.search(r"^```cpp\n(.*?)^```", readme, re.MULTILINE | re.DOTALL).group(1)
    printed = re.search(r"^It prints `([^`]*)`", readme, re.MULTILINE).group(1)
    command = readme_command(source).replace("g++", compiler, 1)
    (folder / "example.cpp").write_text(program)
    run("sh", "-c", command, cwd=folder, env=pkg_config(prefix))
    expect("the README's program prints what it says", run(folder / "a.out") == printed + "\n")


def try_pkg_config(source, prefix, folder, compiler):
    user = USERS / "pkg_config"
    command = readme_command(source).replace("g++", f"{compiler} -I '{user}'", 1)
    command = command.replace("example.cpp", f"'{user / 'kernel.cpp'}' -o kernel")
    run("sh", "-c", command, cwd=folder, env=pkg_config(prefix))
    expect("a user's core/export.hpp is the user's own", run(folder / "kernel").startswith(
        "from the user's own core/export.hpp: "))

    run("sh", "-c", f"cc '{USERS / 'c' / 'checker.c'}' -o checker"
        " $(pkg-config --cflags --libs bradep_inspect)"
        " -Wl,-rpath,$(pkg-config --variable=libdir bradep_inspect)",
        cwd=folder, env=pkg_config(prefix))
    expect("a program in C finds what is wrong", run(folder / "checker") == FINDING)


def try_cmake(cmake, prefix, folder, compiler):
    def build(user):
        place = folder / f"{user}-build"
        run(cmake, "-G", "Ninja", "-S", USERS / user, "-B", place,
            f"-DCMAKE_PREFIX_PATH={prefix}", f"-DCMAKE_CXX_COMPILER={compiler}",
            "--no-warn-unused-cli")
        run(cmake, "--build", place)
        return place

    expect("a viewer dumps", run(build("cmake") / "viewer") ==
           '{"root":"String_To_StringSet_T","value":[["a",["b"]]]}\n')
    checker = build("c")
    expect("a checker finds", run(checker / "checker") == FINDING)
    cache = (checker / "CMakeCache.txt").read_text()
    expect("nobody looks for Boost, GMP or MPFR for a project in C",
           not re.search("boost|gmp|mpfr", cache, re.IGNORECASE))
    unknown = run(cmake, "-S", USERS / "c", "-B", folder / "unknown", "-G", "Ninja",
                  f"-DCMAKE_PREFIX_PATH={prefix}", "-DCOMPONENT=inspekt", code=1, errors=True)
    expect("a component that is not there is named", "inspekt" in unknown)


def try_commands(source, prefix, folder):
    bradep = prefix / "bin" / "bradep"
    log = source / "tests" / "cli" / "fixtures" / "places.sarif"
    stem = "Base_Gui_Internal_Form_Datas_Aggregated_Results_T"
    result, again, canonical = folder / "result", folder / "again", folder / "canonical"
    run(bradep, "import", log, "-o", result)
    expect("show lists the checks", "checks" in run(bradep, "show", result))
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
    expect("every root is there", [line.split()[0] for line in run(bradep, "roots").splitlines()]
           == re.findall(r"^SML_ROOT\((\w+),", (source / "sml/bindings/roots.def").read_text(), re.M))
    result.write_bytes(result.read_bytes()[:-1])
    run(bradep, "verify", result, code=1)
    expect("an option is listed", "--version" in run(bradep, "--help"))


def main():
    cmake, build, source, compiler = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        prefix = folder / "prefix"
        run(cmake, "--install", build, "--prefix", prefix)
        try_readme(pathlib.Path(source), prefix, folder, compiler)
        try_pkg_config(pathlib.Path(source), prefix, folder, compiler)
        try_cmake(cmake, prefix, folder, compiler)
        try_commands(pathlib.Path(source), prefix, folder)


if __name__ == "__main__":
    main()
