"""Checks C++ sources with a compiler, with a header that is precompiled once."""

import pathlib
import subprocess


class Compiler:
    """A compiler whose only include directory is the source tree."""

    def __init__(self, source, command, header, folder, flags=()):
        self.command = [command, "-std=c++20", "-Wall", "-Wextra", *flags, "-I", str(source)]
        self.header = header
        self.base = pathlib.Path(folder) / pathlib.Path(header).name
        version = subprocess.run([command, "--version"], capture_output=True, text=True)
        self.is_clang = "clang" in version.stdout
        self.precompiled = self.base.with_suffix(".hpp.pch" if self.is_clang else ".hpp.gch")

    def run(self, arguments, text=None):
        return subprocess.run([*self.command, *arguments], capture_output=True, text=True,
                              input=text)

    def precompile(self):
        """Precompiles the header that all sources start with; returns the compiler's messages."""
        self.base.write_text(f'#include "{self.header}"\n')
        return self.run(["-x", "c++-header", str(self.base), "-o", str(self.precompiled)])

    def start_from_header(self):
        if self.is_clang:
            return ["-include-pch", str(self.precompiled)]
        return ["-include", str(self.base)]

    def check_file(self, file, defines=()):
        return self.run([*self.start_from_header(), "-fsyntax-only", *defines, str(file)])

    def check_text(self, text, from_header):
        start = self.start_from_header() if from_header else []
        return self.run([*start, "-fsyntax-only", "-x", "c++", "-"], text)
