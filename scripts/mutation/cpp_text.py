"""Where the parts of C++ source text stand: comments, literals, brackets, statements.

Positions are indices into the text. Masked text has blanks for all that is no code, and is as long
as the text itself, so that the positions are the same.
"""

import re
from collections.abc import Iterator
from dataclasses import dataclass

NO_CODE = re.compile(
    r"//(?:\\\n|[^\n])*"
    r"|/\*.*?\*/"
    r'|R"(?P<mark>[^\s()\\]{0,16})\(.*?\)(?P=mark)"'
    r'|"(?:\\.|[^"\\\n])*"'
    r"|(?<![0-9a-fA-F])'(?:\\.|[^'\\\n])+'"  # behind a digit it separates digits
    r"|(?<=\bu8)'(?:\\.|[^'\\\n])+'",
    re.DOTALL)
DIRECTIVE = re.compile(r"^[ \t]*#(?:\\\n|[^\n])*", re.MULTILINE)
COLON = re.compile(r"(?<!:):(?!:)")
CLOSING = {"(": ")", "[": "]", "{": "}"}


@dataclass(frozen=True)
class Span:
    start: int
    end: int

    def holds(self, other: "Span") -> bool:
        return self.start <= other.start and other.end <= self.end

    def of(self, text: str) -> str:
        return text[self.start:self.end]

    def stripped(self, text: str) -> "Span":
        inside = self.of(text)
        start = self.start + len(inside) - len(inside.lstrip())
        return Span(start, max(start, self.end - (len(inside) - len(inside.rstrip()))))


@dataclass(frozen=True)
class Statement:
    span: Span
    keyword: str = ""  # if, while, for, ...
    condition: Span | None = None  # what is between the parentheses
    inner: tuple["Statement", ...] = ()  # the statements that it governs


def blanks(text: str) -> str:
    return re.sub(r"[^\n]", " ", text)


def without_comments(text: str) -> str:
    def kept(found: re.Match) -> str:
        return blanks(found[0]) if found[0].startswith(("//", "/*")) else found[0]

    return NO_CODE.sub(kept, text)


def masked(text: str) -> str:
    """Literals keep their quotes: they are expressions."""
    def kept(found: re.Match) -> str:
        if found[0].startswith(("//", "/*")):
            return blanks(found[0])
        return found[0][0] + blanks(found[0][1:-1]) + found[0][-1]

    return NO_CODE.sub(kept, text)


def code_of(text: str) -> str:
    """Without comments, and without white space but that of literals."""
    pieces, last = [], 0
    for found in NO_CODE.finditer(text):
        pieces += text[last:found.start()].split()
        if not found[0].startswith(("//", "/*")):
            pieces.append(found[0])
        last = found.end()
    return "".join(pieces + text[last:].split())


def brackets(mask: str) -> dict[int, int]:
    """The closing bracket of each opening one; empty where they don't match."""
    pairs, open_ones = {}, []
    for found in re.finditer(r"[()\[\]{}]", mask):
        if found[0] in CLOSING:
            open_ones.append(found.start())
        elif not open_ones or CLOSING[mask[open_ones[-1]]] != found[0]:
            return {}
        else:
            pairs[open_ones.pop()] = found.start()
    return {} if open_ones else pairs


def is_balanced(text: str) -> bool:
    mask = masked(text)
    return bool(brackets(mask)) or not re.search(r"[()\[\]{}]", mask)


class Source:
    """A file's text, cut into statements where code is."""

    def __init__(self, text: str) -> None:
        self.text = text
        self.mask = masked(text)
        self.directives = [Span(*found.span()) for found in DIRECTIVE.finditer(self.mask)]
        for span in self.directives:
            self.mask = self.mask[:span.start] + blanks(span.of(self.mask)) + self.mask[span.end:]
        self.pairs = brackets(self.mask)

    def has_directive(self, span: Span) -> bool:
        return any(one.start < span.end and span.start < one.end for one in self.directives)

    def enclosing(self, span: Span) -> list[Span]:
        """What is between the brackets around a span, innermost first."""
        found = [Span(opening + 1, closing) for opening, closing in self.pairs.items()
                 if opening < span.start and span.end <= closing]
        return sorted(found, key=lambda one: one.end - one.start)

    def is_block(self, inside: Span) -> bool:
        """Statements, not members or initial values."""
        opening = inside.start - 1
        if self.mask[opening] != "{":
            return False
        before = self.mask[:opening].rstrip()
        return bool(re.search(
            r"(?:\)|\]|\b(?:else|do|try)|\[\[(?:un)?likely\]\])\s*"
            r"(?:\b(?:const|noexcept|override|final|mutable)\s*|->\s*[\w:<>&*\s]+)*$",
            before[-200:]))

    def skip_blanks(self, at: int) -> int:
        return at + len(self.mask[at:]) - len(self.mask[at:].lstrip())

    def word_at(self, at: int) -> str:
        found = re.compile(r"[A-Za-z_]\w*").match(self.mask, at)
        return found[0] if found else ""

    def statements(self, block: Span) -> Iterator[Statement]:
        at = self.skip_blanks(block.start)
        while at < block.end:
            statement = self.statement(at)
            yield statement
            at = self.skip_blanks(statement.span.end)

    def statement(self, at: int) -> Statement:
        word = self.word_at(at)
        if self.mask[at] == "{":
            return Statement(Span(at, self.pairs[at] + 1), "{")
        if word in ("if", "while", "for", "switch"):
            return self._governing(at, word)
        if word in ("case", "default"):
            return Statement(Span(at, COLON.search(self.mask, at).end()), word)
        if word in ("do", "try"):
            return self._do_or_try(at, word)
        return Statement(Span(at, self._semicolon(at) + 1), word)

    def _semicolon(self, at: int) -> int:
        while self.mask[at] != ";":
            at = self.pairs.get(at, at) + 1
        return at

    def _governing(self, start: int, word: str) -> Statement:
        opening = self.mask.index("(", start)
        condition = Span(opening + 1, self.pairs[opening])
        at = self.skip_blanks(condition.end + 1)
        while self.mask.startswith("[[", at):
            at = self.skip_blanks(self.pairs[at] + 1)
        inner = [self.statement(at)]
        at = self.skip_blanks(inner[0].span.end)
        if word == "if" and self.word_at(at) == "else":
            inner.append(self.statement(self.skip_blanks(at + len("else"))))
        keyword = "if constexpr" if "constexpr" in self.mask[start:opening] else word
        return Statement(Span(start, inner[-1].span.end), keyword, condition, tuple(inner))

    def _do_or_try(self, start: int, word: str) -> Statement:
        body = self.statement(self.skip_blanks(start + len(word)))
        if word == "do":
            return Statement(Span(start, self._semicolon(body.span.end) + 1), word, None, (body,))
        end = body.span.end
        while self.word_at(at := self.skip_blanks(end)) == "catch":
            end = self.pairs[self.mask.index("{", at)] + 1
        return Statement(Span(start, end), word, None, (body,))
