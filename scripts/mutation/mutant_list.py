"""The list of mutants, scripts/mutants.toml, and what is wrong with it."""

import hashlib
import itertools
import tomllib
import zlib
from collections.abc import Callable
from dataclasses import dataclass
from pathlib import Path

from mutation.cpp_text import code_of
from source_copy import ROOT

LIST = ROOT / "scripts/mutants.toml"


@dataclass(frozen=True)
class Mutant:
    file: str
    name: str
    old: str
    new: str
    breaks: str
    tests: tuple[str, ...]
    survives: str | None = None

    @property
    def number(self) -> int:
        """The same whatever others are listed, so that their files needn't be compiled again."""
        return zlib.crc32(self.name.encode()) & 0x7FFF_FFFF

    def changed(self, source: str) -> str:
        return source.replace(self.old, self.new, 1)

    def key(self, source: str) -> str:
        """Another one when the mutant or the file's code changes; comments are no code."""
        parts = (self.file, code_of(source), code_of(self.changed(source)), " ".join(self.tests))
        return hashlib.sha256("\0".join(parts).encode()).hexdigest()


def read(path: Path) -> str:
    return path.read_text(encoding="utf-8")


def load_list() -> list[Mutant]:
    files = tomllib.loads(read(LIST))
    return [Mutant(file=file, **{**entry, "tests": tuple(entry["tests"])})
            for file, entries in files.items() for entry in entries]


def line_changes(mutant: Mutant) -> int:
    old, new = mutant.old.split("\n"), mutant.new.split("\n")
    if len(old) != len(new):
        return max(len(old), len(new))
    return sum(a != b for a, b in zip(old, new))


def complaint(mutant: Mutant, is_test: Callable[[str], bool]) -> str | None:
    path = ROOT / mutant.file
    if not path.is_file():
        return f"there is no {mutant.file}"
    found = read(path).count(mutant.old)
    if found != 1:
        return f"the old text stands {found} times in {mutant.file}"
    if line_changes(mutant) != 1:
        return f"{line_changes(mutant)} lines change"
    if not mutant.tests:
        return "no tests are named"
    missing = [name for name in mutant.tests if not is_test(name)]
    return f"there is no test {', '.join(missing)}" if missing else None


def complaints(mutants: list[Mutant], is_test: Callable[[str], bool]) -> list[str]:
    all_of_them = [f"{mutant.name}: {text}" for mutant in mutants
                   if (text := complaint(mutant, is_test))]
    numbers = [mutant.number for mutant in mutants]
    all_of_them += [f"{mutant.name}: another mutant has this name, or its number"
                    for mutant in mutants if numbers.count(mutant.number) > 1]
    return all_of_them


def by_file(mutants: list[Mutant]) -> list[tuple[str, list[Mutant]]]:
    return [(file, list(group))
            for file, group in itertools.groupby(mutants, lambda mutant: mutant.file)]


def folder_of(mutant: Mutant) -> str:
    folder = mutant.file.rpartition("/")[0]
    return folder if folder.startswith("tools") else "/".join(folder.split("/")[:3])


def by_folder(mutants: list[Mutant]) -> dict[str, list[Mutant]]:
    folders: dict[str, list[Mutant]] = {}
    for mutant in mutants:
        folders.setdefault(folder_of(mutant), []).append(mutant)
    return folders


def print_counts(mutants: list[Mutant]) -> None:
    for folder, inside in by_folder(mutants).items():
        print(f"{len(inside):5}  {folder}")
    print(f"{len(mutants):5}  in all")
