// The list of findings: a table of which only what is seen is in the page.

import { type Child, fill, h, own } from "./dom";
import { icon } from "./icons";
import { messageText } from "./message";
import type { Model } from "./model";
import { filtered, type Group, grouped, type Row, Rows } from "./order";
import { nameOf, type Page } from "./page";
import { textOf } from "./table";
import { count, counted, cut } from "./text";

/** What the list can be sorted by, with labels. */
export const SORTS: [string, string][] = [
    ["level", "Level"],
    ["rule", "Rule"],
    ["message", "Message"],
    ["file", "Place"],
    ["state", "State"],
    ["function", "Function"],
    ["category", "Category"],
    ["class", "Class"],
];

/** What it can be grouped by. */
export const GROUPS: [string, string][] = [
    ["", "nothing"],
    ["file", "file"],
    ["rule", "rule"],
    ["state", "state"],
    ["directory", "directory"],
    ["function", "function"],
    ["level", "level"],
];

/** Browsers show nothing beyond some height; longer lists scroll in proportion. */
const MOST_PIXELS = 8_000_000;
const BEYOND = 6;
const LONGEST_TEXT = 300;
const MOST_PRINTED = 2000;

export class FindingList {
    readonly element: HTMLElement;
    private readonly grid: HTMLElement;
    private readonly head: HTMLElement;
    private readonly spacer: HTMLElement;
    private readonly window: HTMLElement;
    private readonly toolbar: HTMLElement;
    private readonly closed = new Set<string>();
    private rows = new Rows(new Uint32Array(0), null, () => false);
    private rowHeight = 40;
    private active = 0;
    private shown = "";
    private drawing = 0;
    private printed = false;

    constructor(private readonly page: Page) {
        this.toolbar = h("div", { class: "toolbar" });
        this.head = h("div", { class: "list-head", role: "row", "aria-rowindex": 1 });
        this.window = h("div", { class: "window", role: "presentation" });
        this.spacer = h("div", { class: "spacer", role: "presentation" }, this.window);
        this.grid = h("div", {
            class: "list",
            id: "list",
            tabindex: 0,
            "aria-label": "Findings",
            onscroll: () => this.drawSoon(),
            onkeydown: (event: KeyboardEvent) => this.key(event),
        }, this.head, this.spacer);
        this.element = h("section", { class: "list-pane", "aria-label": "List" }, this.toolbar, this.grid);
        new ResizeObserver(() => this.measure()).observe(this.grid);
        window.addEventListener("beforeprint", () => this.print(true));
        window.addEventListener("afterprint", () => this.print(false));
    }

    private get model(): Model {
        return this.page.model;
    }

    private get hasStates(): boolean {
        return this.model.table.dimensions.get("state")!.texts.length > 1;
    }

    /** Shows what the filter leaves, sorted and grouped as the state says. */
    update(): void {
        const { sort, descending, group, terms } = this.page.state;
        const before = this.rows.length ? this.rows.at(Math.min(this.active, this.rows.length - 1)).finding : undefined;
        this.layOut();
        const what = JSON.stringify([sort, descending, group, terms]);
        if (what !== this.shown) {
            this.shown = what;
            this.grid.scrollTop = 0;
            this.active = 0;
            if (before !== undefined) this.active = Math.max(0, this.rows.rowOf(before));
        }
        const { finding } = this.page.state;
        if (finding !== null) this.active = Math.max(0, this.rows.rowOf(finding));
        this.drawToolbar();
        this.drawHead();
        this.measure();
        this.reveal(this.active);
    }

    private layOut(): void {
        const { sort, descending, group } = this.page.state;
        const order = filtered(this.model.sorter.all(sort, descending), this.model.outcome);
        const dimension = this.model.table.dimensions.get(group);
        const isClosed = ({ value }: Group): boolean => this.closed.has(`${group}:${value}`);
        if (!dimension) this.rows = new Rows(order, null, isClosed);
        else {
            const found = grouped(order, dimension.values, this.model.sorter.rank(group));
            this.rows = new Rows(found.order, found.groups, isClosed);
        }
        this.grid.setAttribute("role", dimension ? "treegrid" : "grid");
        this.grid.setAttribute("aria-rowcount", String(this.rows.length + 1));
        this.grid.setAttribute("aria-colcount", this.hasStates ? "5" : "4");
    }

    private select(label: string, value: string, options: [string, string][], change: (value: string) => void): HTMLElement {
        const items = options.map(([name, text]) => h("option", { value: name, selected: name === value }, text));
        const onchange = (event: Event): void => change((event.target as HTMLSelectElement).value);
        return h("label", {}, label, " ", h("select", { onchange, "data-focus": label }, items));
    }

    private drawToolbar(): void {
        const { sort, descending, group } = this.page.state;
        const usable = ([name]: [string, string]): boolean =>
            name === "" || name === "message" || this.model.table.dimensions.get(name)!.texts.length > 1;
        const direction = h("button", {
            type: "button",
            "aria-pressed": String(descending),
            "data-focus": "direction",
            title: "Reverse the order",
            onclick: () => this.page.go({ descending: !descending }),
        }, descending ? "↓ Descending" : "↑ Ascending");
        const key = document.activeElement instanceof HTMLElement ? document.activeElement.dataset.focus : undefined;
        const inside = this.toolbar.contains(document.activeElement);
        fill(this.toolbar,
            this.select("Sort by", sort, SORTS.filter(usable), (value) => this.page.go({ sort: value, descending: false })),
            direction,
            this.select("Group by", group, GROUPS.filter(usable), (value) => this.page.go({ group: value })),
            group ? h("button", { type: "button", "data-focus": "fold", onclick: () => this.foldAll() }, "Fold or unfold all") : null);
        if (inside) this.toolbar.querySelector<HTMLElement>(`[data-focus="${key}"]`)?.focus();
    }

    private columns(): [string, string][] {
        const columns: [string, string][] = [["level", "Level"], ["message", "Message"], ["rule", "Rule"], ["file", "Place"]];
        return this.hasStates ? [...columns, ["state", "State"]] : columns;
    }

    private drawHead(): void {
        const { sort, descending } = this.page.state;
        this.grid.classList.toggle("with-states", this.hasStates);
        fill(this.head, this.columns().map(([name, label], column) => {
            const sorted = name === sort ? (descending ? "descending" : "ascending") : "none";
            const mark = sorted === "none" ? "" : descending ? " ↓" : " ↑";
            const onclick = (): void => this.page.go({ sort: name, descending: name === sort && !descending });
            const attributes = { role: "columnheader", class: `cell-${name}`, "aria-sort": sorted, "aria-colindex": column + 1 };
            return h("div", attributes, h("button", { type: "button", tabindex: -1, onclick }, label, mark));
        }));
    }

    private measure(): void {
        const height = parseFloat(getComputedStyle(this.grid).getPropertyValue("--row-height"));
        const rem = parseFloat(getComputedStyle(document.documentElement).fontSize);
        this.rowHeight = Math.max(16, Math.round(height * rem)) || 40;
        this.draw();
    }

    private drawSoon(): void {
        if (this.drawing === 0) this.drawing = requestAnimationFrame(() => this.draw());
    }

    private get viewHeight(): number {
        return Math.max(this.rowHeight, this.grid.clientHeight - this.head.offsetHeight);
    }

    /** How far the list is scrolled, as if it had its whole height. */
    private offset(): number {
        const total = this.rows.length * this.rowHeight;
        if (total <= MOST_PIXELS) return this.grid.scrollTop;
        return (this.grid.scrollTop / (MOST_PIXELS - this.viewHeight)) * (total - this.viewHeight);
    }

    private scrollToOffset(offset: number): void {
        const total = this.rows.length * this.rowHeight;
        const scale = total <= MOST_PIXELS ? 1 : (MOST_PIXELS - this.viewHeight) / (total - this.viewHeight);
        this.grid.scrollTop = Math.max(0, offset * scale);
    }

    private draw(): void {
        cancelAnimationFrame(this.drawing);
        this.drawing = 0;
        const total = this.rows.length * this.rowHeight;
        this.spacer.style.blockSize = `${Math.min(total, MOST_PIXELS)}px`;
        const top = Math.min(this.offset(), Math.max(0, total - this.viewHeight));
        const first = this.printed ? 0 : Math.max(0, Math.floor(top / this.rowHeight) - BEYOND);
        const seen = Math.ceil((top + this.viewHeight) / this.rowHeight) + BEYOND;
        const end = Math.min(this.rows.length, this.printed ? MOST_PRINTED : seen);
        this.window.style.transform = this.printed ? "none" : `translateY(${first * this.rowHeight - top + this.grid.scrollTop}px)`;
        const rows: Child[] = [];
        for (let row = first; row < end; ++row) rows.push(this.rowElement(row, this.rows.at(row)));
        if (this.rows.length === 0) rows.push(this.emptyRow());
        fill(this.window, rows);
        if (this.rows.length > 0) this.grid.setAttribute("aria-activedescendant", `row-${this.active}`);
        else this.grid.removeAttribute("aria-activedescendant");
    }

    private emptyRow(): HTMLElement {
        const clear = h("button", { type: "button", onclick: () => this.page.go({ terms: [] }) }, "Remove the filter");
        const text = this.page.state.terms.length ? "Nothing fits the filter. " : "There are no findings.";
        const cell = h("div", { role: "gridcell" }, text, this.page.state.terms.length ? clear : null);
        return h("div", { role: "row", class: "empty", "aria-rowindex": 2 }, cell);
    }

    private rowElement(row: number, { group, finding }: Row): HTMLElement {
        const attributes = {
            role: "row",
            id: `row-${row}`,
            "aria-rowindex": row + 2,
            class: `list-row${row === this.active ? " active" : ""}`,
            onclick: () => this.activate(row),
        };
        const element = group ? this.groupRow(attributes, group) : this.findingRow(attributes, finding!);
        element.style.blockSize = `${this.rowHeight}px`;
        return element;
    }

    private groupRow(attributes: Record<string, any>, group: Group): HTMLElement {
        const { group: name } = this.page.state;
        const text = this.model.table.dimensions.get(name)!.texts[group.value];
        const shown = name === "file" || name === "directory" ? this.model.shortened(text) : text;
        const closed = this.closed.has(`${name}:${group.value}`);
        return h("div", { ...attributes, class: `${attributes.class} group`, "aria-level": 1, "aria-expanded": String(!closed) },
            h("div", { role: "gridcell", "aria-colspan": this.hasStates ? 5 : 4 },
                h("span", { class: "fold", "aria-hidden": "true" }, closed ? "▸" : "▾"), icon(text),
                own(nameOf(cut(shown, LONGEST_TEXT)), { title: text }), " ", h("span", { class: "hint" }, counted(group.count, "finding"))));
    }

    private findingRow(attributes: Record<string, any>, finding: number): HTMLElement {
        const { table } = this.model;
        const text = (name: string): string => textOf(table, name, finding);
        const line = table.columns.get("line")?.[finding];
        const directory = this.model.shortened(text("directory"));
        const place = `${text("file").slice(text("directory").length)}${line ? `:${line}` : ""}`;
        const message = cut(messageText(cut(this.model.message(finding), 2 * LONGEST_TEXT)), LONGEST_TEXT);
        const note = text("suppressed") === "yes" && h("span", { class: "badge" }, "suppressed");
        const open = finding === this.page.state.finding;
        const more = this.rows.groups ? { "aria-level": 2 } : {};
        const cell = (name: string, ...children: (Child | Child[])[]): HTMLElement =>
            h("div", { role: "gridcell", class: `cell-${name}` }, ...children);
        return h("div", { ...attributes, ...more, class: `${attributes.class}${open ? " open" : ""}`, "aria-selected": String(open) },
            cell("level", icon(text("level")), h("span", {}, text("level"))),
            cell("message", note, own(message || text("rule"), { class: "row-message" })),
            cell("rule", own(cut(text("rule"), LONGEST_TEXT), { title: text("rule") })),
            cell("file", own(cut(place, LONGEST_TEXT), { title: text("file"), class: "row-place" }),
                directory ? [" ", own(cut(directory, LONGEST_TEXT), { class: "row-directory" })] : null),
            this.hasStates && cell("state", icon(text("state")), h("span", {}, text("state"))));
    }

    private activate(row: number): void {
        this.active = row;
        const { group, finding } = this.rows.at(row);
        if (!group) this.page.go({ finding: finding!, flow: 0, step: null });
        else this.fold(group);
    }

    private fold(group: Group, close?: boolean): void {
        const key = `${this.page.state.group}:${group.value}`;
        if (close ?? !this.closed.has(key)) this.closed.add(key);
        else this.closed.delete(key);
        this.layOut();
        this.draw();
    }

    private foldAll(): void {
        const { groups } = this.rows;
        if (!groups) return;
        const keys = groups.map(({ value }) => `${this.page.state.group}:${value}`);
        const close = keys.some((key) => !this.closed.has(key));
        for (const key of keys) {
            if (close) this.closed.add(key);
            else this.closed.delete(key);
        }
        this.active = 0;
        this.layOut();
        this.draw();
    }

    private reveal(row: number): void {
        const begin = row * this.rowHeight;
        const top = this.offset();
        if (begin < top) this.scrollToOffset(begin);
        else if (begin + this.rowHeight > top + this.viewHeight) this.scrollToOffset(begin + this.rowHeight - this.viewHeight);
        this.draw();
    }

    private moveTo(row: number): void {
        if (this.rows.length === 0) return;
        this.active = Math.max(0, Math.min(this.rows.length - 1, row));
        this.reveal(this.active);
    }

    private key(event: KeyboardEvent): void {
        if (event.target !== this.grid || event.altKey || event.ctrlKey || event.metaKey) return;
        const page = Math.max(1, Math.floor(this.viewHeight / this.rowHeight) - 1);
        const moves: Record<string, number> = {
            ArrowDown: this.active + 1,
            ArrowUp: this.active - 1,
            PageDown: this.active + page,
            PageUp: this.active - page,
            Home: 0,
            End: this.rows.length - 1,
        };
        if (Object.hasOwn(moves, event.key)) this.moveTo(moves[event.key]);
        else if (event.key === "Enter" || event.key === " ") this.activateActive();
        else if (event.key === "ArrowLeft" || event.key === "ArrowRight") this.foldActive(event.key === "ArrowLeft");
        else return;
        event.preventDefault();
        event.stopPropagation();
    }

    private activateActive(): void {
        if (this.rows.length > 0) this.activate(this.active);
    }

    private foldActive(close: boolean): void {
        if (this.rows.length === 0) return;
        const { group } = this.rows.at(this.active);
        if (group) this.fold(group, close);
    }

    /** Opens the finding that is so many rows further; headings of groups are passed over. */
    openNext(distance: 1 | -1): void {
        const { finding } = this.page.state;
        let row = finding === null ? (distance > 0 ? this.active - 1 : this.active) : this.rows.rowOf(finding);
        for (row += distance; row >= 0 && row < this.rows.length; row += distance) {
            const next = this.rows.at(row).finding;
            if (next !== undefined) return this.page.go({ finding: next, flow: 0, step: null }, finding !== null);
        }
    }

    /** Where a finding stands, as in "3 of 120"; empty if the filter leaves it out. */
    placeOf(finding: number): string {
        const position = this.rows.order.indexOf(finding);
        return position < 0 ? "" : `${count(position + 1)} of ${count(this.rows.order.length)}`;
    }

    focus(): void {
        this.grid.focus({ preventScroll: true });
    }

    private print(printed: boolean): void {
        this.printed = printed;
        this.draw();
    }
}
