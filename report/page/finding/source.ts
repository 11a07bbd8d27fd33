// The source around a place, with marks: the flagged range, the steps of a flow, related locations.

import { type Child, fill, h, own } from "../dom";
import { messageText } from "../message";
import type { Model } from "../model";
import { type Location, position, type Region, regionOf, uriOf } from "../place";
import { count, cut } from "../text";
import { fileLines, type Lines, markedPart, segments, snippetLines, withLines } from "./lines";

/** A place that is marked. */
export interface Mark {
    kind: "finding" | "step" | "related";
    location: Location;
    /** The number of a step or the like, empty for the finding itself. */
    label: string;
    text: string;
    /** Called when the number is clicked. */
    pick?: () => void;
}

const AROUND = 120;
const LONGEST_LINE = 2000;

interface Shown {
    lines: Lines;
    marks: Mark[];
    regions: Region[];
    current: Mark;
    first: number;
    last: number;
}

export class SourcePane {
    readonly element: HTMLElement;
    private readonly title = h("div", { class: "source-title" });
    private readonly body = h("div", { class: "source-body", tabindex: 0, role: "region", "aria-label": "Source" });
    private marks: Mark[] = [];
    private turn = 0;

    constructor(
        private readonly model: Model,
        private readonly codePoints: boolean,
    ) {
        this.element = h("div", { class: "source" }, this.title, this.body);
    }

    setMarks(marks: Mark[]): void {
        this.marks = marks;
    }

    /** Shows the file of a mark, with the mark in the middle. */
    async show(current: Mark): Promise<void> {
        const turn = ++this.turn;
        const uri = uriOf(current.location);
        const source = await this.model.source(uri).catch((error: Error) => ({ uri, skipped: error.message, text: undefined }));
        if (turn !== this.turn) return;
        const region = regionOf(current.location);
        const context = current.location.physicalLocation?.contextRegion;
        const lines = source?.text !== undefined ? fileLines(source.text) : snippetLines(region, context);
        fill(this.title, own(this.model.shortened(uri), { title: uri }), position(region),
            source?.text === undefined && lines ? h("span", { class: "hint" }, " from the log") : null);
        if (lines) this.showLines(lines, current);
        else fill(this.body, this.missing(uri, source?.skipped, region, current));
    }

    private missing(uri: string, reason: string | undefined, region: Region, current: Mark): HTMLElement {
        const what = uri === "" ? "No place is known." : "The source of this file is not in the report";
        const why = uri === "" ? "" : reason ? `: ${reason}.` : ".";
        const where = region.startLine ? ` The place is line ${region.startLine}.` : "";
        return h("div", { class: "no-source" }, h("p", {}, what, own(why), where), this.note(current));
    }

    private showLines(lines: Lines, current: Mark): void {
        const uri = uriOf(current.location);
        const marks = this.marks.filter((mark) => uriOf(mark.location) === uri);
        if (!marks.includes(current)) marks.push(current);
        const regions = marks.map((mark) => withLines(regionOf(mark.location), lines));
        const focus = regions[marks.indexOf(current)].startLine ?? lines.first;
        const end = lines.first + lines.lines.length - 1;
        const first = Math.max(lines.first, Math.min(focus, end) - AROUND);
        this.draw({ lines, marks, regions, current, first, last: Math.min(end, first + 2 * AROUND) });
        this.centre();
    }

    private draw(shown: Shown): void {
        const { lines, first, last } = shown;
        const end = lines.first + lines.lines.length - 1;
        const rows: Child[] = [];
        if (first > lines.first) rows.push(this.more(shown, Math.max(lines.first, first - 4 * AROUND), first - 1));
        for (let number = first; number <= last; ++number) rows.push(this.line(shown, number));
        if (last < end) rows.push(this.more(shown, last + 1, Math.min(end, last + 4 * AROUND)));
        fill(this.body, rows);
    }

    private more(shown: Shown, from: number, to: number): HTMLElement {
        const onclick = (): void => {
            const height = this.body.scrollHeight;
            const top = this.body.scrollTop;
            this.draw({ ...shown, first: Math.min(shown.first, from), last: Math.max(shown.last, to) });
            this.body.scrollTop = from < shown.first ? top + this.body.scrollHeight - height : top;
            this.body.focus({ preventScroll: true });
        };
        return h("button", { type: "button", class: "link more-lines", onclick }, `Show lines ${from} to ${to}`);
    }

    private line(shown: Shown, number: number): HTMLElement {
        const { lines, marks, regions, current } = shown;
        const missing = number === lines.first ? lines.missing : 0;
        const text = lines.lines[number - lines.first];
        const parts = regions.map((region) => shifted(markedPart(" ".repeat(Math.min(missing, LONGEST_LINE)) + text, number, region, this.codePoints), missing));
        const starting = marks.filter((_mark, i) => regions[i].startLine === number);
        const notes = starting.filter((mark) => mark === current || mark.kind === "finding").map((mark) => this.note(mark, mark === current));
        const code = h("code", { class: "line-text", dir: "ltr" }, coloured(text, parts, marks, current));
        const row = h("div", { class: `line${starting.includes(current) ? " current" : ""}` },
            h("span", { class: "line-marks" }, starting.map((mark) => badge(mark, mark === current))),
            h("span", { class: "line-number" }, number), code);
        return h("div", {}, row, notes);
    }

    private note(mark: Mark, current = false): HTMLElement | null {
        if (mark.text === "") return null;
        return h("div", { class: `line-note note-${mark.kind}${current ? " current" : ""}` },
            mark.label ? h("span", { class: "badge-number" }, mark.label) : null, " ", own(cut(messageText(mark.text), 1000)));
    }

    /** Scrolls the current line to the middle; the page itself stays where it is. */
    private centre(): void {
        const line = this.body.querySelector<HTMLElement>(".line.current");
        if (!line) return;
        const top = line.getBoundingClientRect().top - this.body.getBoundingClientRect().top;
        this.body.scrollTop += top - this.body.clientHeight / 3;
    }
}

function shifted(part: [number, number] | null, missing: number): [number, number] | null {
    return part && [Math.max(0, part[0] - missing), Math.max(0, part[1] - missing)];
}

function badge(mark: Mark, current: boolean): HTMLElement | null {
    if (!mark.label) return h("span", { class: "flag", title: "The finding" }, "▶");
    const attributes = { class: `badge-number badge-${mark.kind}${current ? " current" : ""}`, title: mark.text };
    if (!mark.pick) return h("span", attributes, mark.label);
    return h("button", { ...attributes, type: "button", onclick: mark.pick, tabindex: -1 }, mark.label);
}

function coloured(text: string, parts: ([number, number] | null)[], marks: Mark[], current: Mark): Child[] {
    const from = text.length > LONGEST_LINE ? Math.max(0, (parts[marks.indexOf(current)]?.[0] ?? 0) - 200) : 0;
    const visible = text.slice(from, from + LONGEST_LINE);
    const moved = parts.map((part) => part && (part.map((cutAt) => Math.max(0, Math.min(visible.length, cutAt - from))) as [number, number]));
    const pieces: Child[] = segments(visible, moved).map((segment) => {
        if (segment.marks.length === 0) return segment.text;
        const kinds = new Set(segment.marks.map((mark) => `mark-${marks[mark].kind}`));
        if (segment.marks.some((mark) => marks[mark] === current)) kinds.add("current");
        return h("mark", { class: [...kinds].join(" ") }, segment.text);
    });
    const left = text.length - visible.length;
    return left > 0 ? [from > 0 ? "… " : null, ...pieces, h("span", { class: "hint" }, ` … ${count(left)} more characters`)] : pieces;
}
