// A value of JSON as a tree that can be folded, with the exact names of its members.

import { type Child, h, own } from "../dom";
import { exactNumber } from "../json";
import { counted } from "../text";

const FIRST_MEMBERS = 100;
const LONGEST = 5000;

function leaf(value: unknown): HTMLElement {
    const number = exactNumber(value);
    if (number !== undefined) return h("span", { class: "json-number" }, number);
    if (typeof value !== "string") return h("span", { class: `json-${value === null ? "null" : typeof value}` }, String(value));
    const text = value.slice(0, LONGEST);
    const rest = value.length - text.length;
    return h("span", { class: "json-string" }, own(text), rest ? h("span", { class: "hint" }, ` … ${counted(rest, "more character")}`) : null);
}

function isBranch(value: unknown): value is object {
    return typeof value === "object" && value !== null && exactNumber(value) === undefined;
}

function members(entries: [string, unknown][], from: number): Child[] {
    const shown: Child[] = entries.slice(from, from + FIRST_MEMBERS).map(([name, value]) => member(name, value, false));
    const next = from + FIRST_MEMBERS;
    if (next >= entries.length) return shown;
    const item = h("li", {});
    const onclick = (): void => item.replaceWith(...(members(entries, next) as Node[]));
    item.append(h("button", { type: "button", class: "link", onclick }, `Show more of ${counted(entries.length, "member")}`));
    return [...shown, item];
}

function branch(name: string, value: object, open: boolean): HTMLElement {
    const entries = Object.entries(value);
    const size = Array.isArray(value) ? `[${entries.length}]` : `{${entries.length}}`;
    const list = h("ul", {});
    const details = h("details", { open }, h("summary", {}, own(name, { class: "json-name" }), " ", h("span", { class: "hint" }, size)), list);
    const build = (): void => {
        if (details.open && list.childElementCount === 0) list.append(...(members(entries, 0) as Node[]));
    };
    details.addEventListener("toggle", build);
    build();
    return details;
}

function member(name: string, value: unknown, open: boolean): HTMLElement {
    if (isBranch(value) && Object.keys(value).length > 0) return h("li", {}, branch(name, value, open));
    const empty = Array.isArray(value) ? "[]" : "{}";
    return h("li", {}, own(name, { class: "json-name" }), ": ", isBranch(value) ? h("span", { class: "json-null" }, empty) : leaf(value));
}

/** The tree of a value; its own members are seen at once. */
export function tree(name: string, value: unknown): HTMLElement {
    return h("ul", { class: "tree" }, member(name, value, true));
}
