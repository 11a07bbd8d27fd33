"""Writes the results as a table, and into docs/mutants.md."""

import sys
from pathlib import Path

from mutation.mutant_list import ROOT, Mutant, by_file, by_folder, read
from mutation.results import Results, shown

PAGE = ROOT / "docs/mutants.md"
MARKS = ("<!-- mutants: begin -->", "<!-- mutants: end -->")
STATES = ("killed", "survives", "does not compile", "not run")


def cell(text: str) -> str:
    return text.replace("|", r"\|")


def row(mutant: Mutant, results: Results) -> str:
    result = results.of(mutant)
    killer = shown(result)
    if result is not None and result["status"] == "killed":
        killer = f"`{killer}`"
    elif result is not None and mutant.survives:
        killer += f": {mutant.survives}"
    return f"| `{mutant.name}` | {cell(mutant.breaks)} | {cell(killer)} |"


def counts(mutants: list[Mutant], results: Results) -> list[int]:
    """For each of STATES."""
    known = [results.of(mutant) for mutant in mutants]
    states = ["not run" if one is None else one["status"] for one in known]
    return [states.count(state) for state in STATES]


def sums(mutants: list[Mutant], results: Results) -> list[str]:
    lines = ["| Folder | Mutants | Killed | Survive | Do not compile | Not run |",
             "|---|---|---|---|---|---|"]
    for folder, inside in [*by_folder(mutants).items(), ("in all", mutants)]:
        numbers = (len(inside), *counts(inside, results))
        lines.append(f"| {folder} | " + " | ".join(map(str, numbers)) + " |")
    return lines


def table(mutants: list[Mutant], results: Results) -> str:
    lines = sums(mutants, results)
    for file, group in by_file(mutants):
        lines += ["", f"`{file}`:", "", "| Mutant | What it breaks | Killed by |", "|---|---|---|"]
        lines += [row(mutant, results) for mutant in group]
    return "\n".join(lines) + "\n"


def write_between_marks(page: Path, text: str) -> None:
    before, begin, rest = read(page).partition(MARKS[0])
    _, end, behind = rest.partition(MARKS[1])
    if not begin or not end:
        sys.exit(f"{page} has no {' and '.join(MARKS)}")
    page.write_text(f"{before}{begin}\n\n{text}\n{end}{behind}", encoding="utf-8")
