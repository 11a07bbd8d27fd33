// Lines of source, and which parts of them regions mark.

import type { Region } from "../place";

/** Consecutive lines of a file; the first one has the number `first`. */
export interface Lines {
    first: number;
    lines: string[];
    /** How many characters of the first line are missing before its text. */
    missing: number;
}

/** Splits a file into lines. */
export function fileLines(text: string): Lines {
    return cutLast({ first: 1, lines: text.split(/\r\n|\n/), missing: 0 });
}

function snippetOf(region: Region | undefined): string {
    const text = region?.snippet?.text;
    return typeof text === "string" ? text : "";
}

/** The lines that a log itself has around a region, null if it has none. */
export function snippetLines(region: Region, context: Region | undefined): Lines | null {
    const around = snippetOf(context);
    if (around !== "") return cutLast({ first: context!.startLine ?? region.startLine ?? 1, lines: around.split(/\r\n|\n/), missing: 0 });
    const text = snippetOf(region);
    if (text === "") return null;
    return cutLast({ first: region.startLine ?? 1, lines: text.split(/\r\n|\n/), missing: (region.startColumn ?? 1) - 1 });
}

/** A text that ends with a line break has no further line. */
function cutLast(lines: Lines): Lines {
    if (lines.lines.length > 1 && lines.lines[lines.lines.length - 1] === "") lines.lines.pop();
    return lines;
}

/** A region by the lines and columns of a file, where a log gives offsets in characters only. */
export function withLines(region: Region, { lines }: Lines): Region {
    if (region.startLine !== undefined || region.charOffset === undefined || region.charOffset < 0) return region;
    const placeAt = (offset: number): [number, number] => {
        let line = 0;
        while (line < lines.length - 1 && offset > lines[line].length) offset -= lines[line++].length + 1;
        return [line + 1, offset + 1];
    };
    const [startLine, startColumn] = placeAt(region.charOffset);
    const [endLine, endColumn] = placeAt(region.charOffset + (region.charLength ?? 0));
    return { ...region, startLine, startColumn, endLine, endColumn };
}

/** A part of a line, with the numbers of the regions that mark it. */
export interface Segment {
    text: string;
    marks: number[];
}

/** The index in UTF-16 units of a column that counts code points. */
function unitsOf(line: string, column: number): number {
    let index = 0;
    for (let points = 1; points < column && index < line.length; ++points) {
        index += line.codePointAt(index)! > 0xffff ? 2 : 1;
    }
    return index;
}

/** From where to where a region marks a line, null if it does not. An empty region marks one character. */
export function markedPart(line: string, number: number, region: Region, codePoints: boolean): [number, number] | null {
    const begin = region.startLine ?? 0;
    const end = Math.max(begin, region.endLine ?? begin);
    if (begin === 0 || number < begin || number > end) return null;
    const index = (column: number): number =>
        Math.max(0, Math.min(line.length, codePoints ? unitsOf(line, column) : column - 1));
    const indent = line.length - line.trimStart().length;
    const from = number === begin && region.startColumn ? index(region.startColumn) : indent;
    const to = number === end && region.endColumn ? index(region.endColumn) : line.length;
    if (number === begin && region.startColumn && !region.endColumn && end === begin) return [from, wordEnd(line, from)];
    return [from, Math.max(to, Math.min(from + 1, line.length))];
}

/** A region that only says where it begins marks the word there. */
function wordEnd(line: string, from: number): number {
    const word = /^[\p{L}\p{N}_]+|^[^]/u.exec(line.slice(from));
    return word ? from + word[0].length : line.length;
}

/** Cuts a line where marks begin and end. */
export function segments(line: string, parts: ([number, number] | null)[]): Segment[] {
    const cuts = new Set([0, line.length]);
    for (const part of parts) if (part) part.forEach((cut) => cuts.add(cut));
    const sorted = [...cuts].sort((a, b) => a - b);
    const found: Segment[] = [];
    for (let i = 0; i + 1 < sorted.length; ++i) {
        const [from, to] = [sorted[i], sorted[i + 1]];
        const marks = parts.flatMap((part, mark) => (part && part[0] <= from && part[1] >= to ? [mark] : []));
        found.push({ text: line.slice(from, to), marks });
    }
    return found;
}
