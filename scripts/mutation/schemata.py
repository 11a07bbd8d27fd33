"""Puts many mutants into one text of a source file, each in a branch that is chosen at run time.

A mutant goes around the smallest construct that holds what it changes; constructs() gives those it
can go around, the smallest first. Where one does not compile, the next is tried. The construct as
it was stays on its lines, so that lines are the same in both texts but for HEADER_LINE.
"""

import re
from dataclasses import dataclass

from mutation.cpp_text import Source, Span, Statement, is_balanced, without_comments

HEADER = "sml/mutant_is.hpp"
HEADER_LINE = f"#include <{HEADER}>\n"

# A mutant notes that it was reached by making a file: one that never was is compiled into nothing
# that the tests run, or is evaluated while compiling alone.
HEADER_TEXT = """\
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <type_traits>

namespace mutants {

inline int number_from_environment() noexcept {
    char const* const text = std::getenv("BRADEP_MUTANT");
    return text == nullptr ? -1 : std::atoi(text);
}

inline int selected() noexcept {
    static int const number = number_from_environment();
    return number;
}

inline bool make_file_of_reached() noexcept {
    int const error = errno;
    if (char const* const path = std::getenv("BRADEP_MUTANT_REACHED"))
        ::close(::open(path, O_WRONLY | O_CREAT | O_CLOEXEC, 0666));
    errno = error;
    return true;
}

inline bool reached() noexcept {
    static bool const is_noted = make_file_of_reached();
    return is_noted;
}

}  // namespace mutants

constexpr bool mutant_is(int number) noexcept {
    return !std::is_constant_evaluated() && mutants::selected() == number && mutants::reached();
}
"""

NO_DECLARATION = ("return", "throw", "delete", "new", "goto", "co_return", "co_yield", "co_await",
                  "else", "using", "break", "continue", "case", "default", "if", "for", "while",
                  "switch", "do", "try")
DECLARATION = re.compile(
    r"(?:[\w:]+(?:<.*>)?(?:::\w+)*[\s&*]+)+"  # the type
    r"(?:\w+|\[[\w\s,]*\])\s*(?:\[.*?\]\s*)*(?:=(?!=)|;|\{|\(|:(?!:)|$)",
    re.DOTALL)
NO_INITIALIZER = re.compile(
    r"\b(?:class|struct|union|enum|namespace|extern|template|concept|using)\b")
FIXED = re.compile(r"\b(?:constexpr|constinit|consteval|static_assert)\b")


@dataclass(frozen=True)
class Construct:
    span: Span
    kind: str  # condition, statement, block, value

    def before(self, news: dict[int, str]) -> list["Piece"]:
        """All that comes before the construct as it was, each mutant's own text apart."""
        pieces: list[Piece] = []
        for number, new in news.items():
            if self.kind in ("statement", "block"):
                pieces += [Piece(f"if (::mutant_is({number})) {{ {new} }}", (number,)),
                           Piece(" else ", tuple(news))]
            else:
                pieces += [Piece(f"::mutant_is({number}) ? {self._cast()}({new})", (number,)),
                           Piece(" : ", tuple(news))]
        opening = "{ " if self.kind in ("statement", "block") else "("
        last = "{ " if self.kind in ("statement", "block") else f"{self._cast()}("
        return [Piece(opening, tuple(news)), *pieces, Piece(last, tuple(news))]

    def behind(self, news: dict[int, str]) -> "Piece":
        return Piece(" } }" if self.kind in ("statement", "block") else "))", tuple(news))

    def _cast(self) -> str:
        return "bool" if self.kind == "condition" else ""


@dataclass(frozen=True)
class Piece:
    text: str
    owners: tuple[int, ...] = ()  # the mutants that an error in it is due to


@dataclass(frozen=True)
class Change:
    """A mutant's: the text of a span becomes another one."""
    number: int
    span: Span
    new: str

    @staticmethod
    def of(number: int, text: str, old: str, new: str) -> "Change":
        start = text.index(old)
        same = common_start(old, new)
        behind = common_start(old[same:][::-1], new[same:][::-1])
        whole = Span(start + same, start + len(old) - behind)
        # White space and comments at its ends are no part of what it changes.
        span = whole.stripped(without_comments(text))
        return Change(number, span if span.end > span.start else whole, new[same:len(new) - behind])

    def inside(self, text: str, span: Span) -> str:
        return text[span.start:self.span.start] + self.new + text[self.span.end:span.end]


def common_start(a: str, b: str) -> int:
    same = 0
    while same < min(len(a), len(b)) and a[same] == b[same]:
        same += 1
    return same


def is_declaration(code: str) -> bool:
    word = re.match(r"\w*", code)[0]
    return word not in NO_DECLARATION and DECLARATION.match(code) is not None


def top_level(source: Source, span: Span, separator: str) -> list[Span]:
    """A span cut at the separators that stand in no brackets."""
    cuts, at = [span.start], span.start
    while at < span.end:
        if source.mask[at] == separator:
            cuts.append(at + 1)
        at = source.pairs.get(at, at) + 1
    return [Span(a, b - 1).stripped(source.mask) for a, b in zip(cuts, [*cuts[1:], span.end + 1])]


def value_of(source: Source, declaration: Span) -> Construct | None:
    """What stands behind the = of a declaration of one thing."""
    equals = top_level(source, Span(declaration.start, declaration.end), "=")
    if len(equals) < 2 or FIXED.search(equals[0].of(source.mask)):
        return None
    value = Span(equals[1].start, declaration.end)
    return None if len(top_level(source, value, ",")) > 1 else Construct(value, "value")


def in_condition(source: Source, statement: Statement, change: Span) -> Construct | None:
    parts = top_level(source, statement.condition, ";")
    test = len(parts) - 1
    if statement.keyword == "for":
        test = 1 if len(parts) == 3 else -1
    for number, part in enumerate(parts):
        if not part.holds(change):
            continue
        if is_declaration(part.of(source.mask)):
            return value_of(source, part)
        return Construct(part, "condition") if number == test else None
    return None


def in_statement(source: Source, statement: Statement, change: Span) -> list[Construct]:
    """From the smallest to the statement itself."""
    found = [one for inner in statement.inner if inner.span.holds(change)
             for one in in_statement(source, inner, change)]
    if statement.keyword in ("if", "while", "for") and statement.condition.holds(change):
        found += [one] if (one := in_condition(source, statement, change)) else []
    if statement.keyword in ("{", "case", "default"):
        return found
    if is_declaration(statement.span.of(source.mask)):
        value = value_of(source, Span(statement.span.start, statement.span.end - 1))
        return found + ([value] if value else [])
    return [*found, Construct(statement.span, "statement")]


def in_blocks(source: Source, change: Span) -> list[Construct]:
    found: list[Construct] = []
    for block in filter(source.is_block, source.enclosing(change)):
        for statement in source.statements(block):
            if statement.span.holds(change):
                found += in_statement(source, statement, change)
        found.append(Construct(block, "block"))
    return found


def outside_blocks(source: Source, change: Span) -> list[Construct]:
    """The argument of an initializer."""
    found: list[Construct] = []
    for inside in source.enclosing(change):
        head = re.split(r"[;{}]", source.mask[:inside.start - 1])[-1]
        if source.mask[inside.start - 1] == "[" or FIXED.search(head):
            return []
        if NO_INITIALIZER.search(head):
            break
        parts = [part for part in top_level(source, inside, ",") if part.holds(change)]
        found = found or [Construct(part, "value") for part in parts]
    return found


def constructs(source: Source, change: Change) -> list[Construct]:
    """What a mutant can go around, the smallest first; none where it must be built apart."""
    found = in_blocks(source, change.span) or outside_blocks(source, change.span)
    return [one for one in found if not source.has_directive(one.span)
            and is_balanced(change.inside(source.text, one.span))]


def on_one_line(text: str) -> str:
    return " ".join(without_comments(text).split("\n"))


@dataclass
class Placed:
    change: Change
    choices: list[Construct]
    choice: int = 0

    @property
    def construct(self) -> Construct | None:
        return self.choices[self.choice] if self.choice < len(self.choices) else None


class Schema:
    """A source file with all its mutants that can be chosen at run time."""

    def __init__(self, text: str, changes: list[Change]) -> None:
        self.source = Source(text)
        self.placed = {one.number: Placed(one, constructs(self.source, one)) for one in changes}

    def numbers(self) -> list[int]:
        return [number for number, one in self.placed.items() if one.construct]

    def pieces(self) -> list[Piece]:
        inside = [one for one in self.placed.values() if one.construct]
        if not inside:
            return [Piece(self.source.text)]
        return [Piece(HEADER_LINE), *self._pieces(Span(0, len(self.source.text)), inside, ())]

    def text(self) -> str:
        return "".join(piece.text for piece in self.pieces())

    def _pieces(self, span: Span, inside: list[Placed], owners: tuple[int, ...]) -> list[Piece]:
        pieces, at = [], span.start
        inside = sorted(inside, key=lambda one: (one.construct.span.start, -one.construct.span.end))
        while inside:
            outer = inside[0].construct
            same = [one for one in inside if one.construct == outer]
            nested = [one for one in inside if one.construct != outer
                      and outer.span.holds(one.construct.span)]
            inside = [one for one in inside if one not in same and one not in nested]
            news = {one.change.number: on_one_line(one.change.inside(self.source.text, outer.span))
                    for one in same}
            pieces += [Piece(self.source.text[at:outer.span.start], owners), *outer.before(news),
                       *self._pieces(outer.span, nested, tuple(news)), outer.behind(news)]
            at = outer.span.end
        return [*pieces, Piece(self.source.text[at:span.end], owners)]

    def owners(self, line: int, column: int) -> tuple[int, ...]:
        """The mutants that a place of the text is due to; both count from 1."""
        lines = self.text().split("\n")
        offset = sum(len(one) + 1 for one in lines[:line - 1]) + column - 1
        for piece in self.pieces():
            if offset < len(piece.text):
                return piece.owners
            offset -= len(piece.text)
        return ()

    def choose_larger(self, number: int, steps: int = 1) -> None:
        self.placed[number].choice += steps
