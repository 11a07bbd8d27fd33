// What the page shows stands in the fragment of its address, so that a link can be sent.

import type { Term } from "./filter";
import { wellFormed } from "./text";

/** What the page shows. */
export interface State {
    view: "overview" | "findings";
    terms: Term[];
    sort: string;
    descending: boolean;
    group: string;
    /** The number of the open finding. */
    finding: number | null;
    /** The flow of it that is shown, from 0 over all threads of all code flows. */
    flow: number;
    /** The current step of that flow. */
    step: number | null;
}

export const DEFAULTS: State = {
    view: "overview",
    terms: [],
    sort: "level",
    descending: false,
    group: "",
    finding: null,
    flow: 0,
    step: null,
};

/** Only what would be misread is escaped, so that the address can be read. */
function escape(text: string): string {
    return encodeURIComponent(wellFormed(text)).replace(/%(?:2F|3A|2C|40|24|3B|3F)/g, decodeURIComponent);
}

function unescape(text: string): string {
    try {
        return decodeURIComponent(text);
    } catch {
        return text;
    }
}

/** The fragment for a state, with its "#". */
export function formatHash(state: State): string {
    const parts: [string, string][] = [];
    if (state.view !== DEFAULTS.view) parts.push(["view", state.view]);
    for (const { field, value, negated } of state.terms) parts.push([`${negated ? "-" : ""}${field || "q"}`, value]);
    if (state.sort !== DEFAULTS.sort || state.descending) {
        parts.push(["sort", `${state.descending ? "-" : ""}${state.sort}`]);
    }
    if (state.group) parts.push(["group", state.group]);
    if (state.finding !== null) parts.push(["finding", String(state.finding)]);
    if (state.finding !== null && state.flow > 0) parts.push(["flow", String(state.flow + 1)]);
    if (state.finding !== null && state.step !== null) parts.push(["step", String(state.step + 1)]);
    return `#${parts.map(([name, value]) => `${name}=${escape(value)}`).join("&")}`;
}

/** The names that the page knows beside those of fields. */
export interface Names {
    fields: Set<string>;
    sorts: Set<string>;
    groups: Set<string>;
    findings: number;
}

function numberBelow(text: string, end: number): number | null {
    return /^\d{1,10}$/.test(text) && Number(text) < end ? Number(text) : null;
}

function readTerm(state: State, name: string, value: string, names: Names): void {
    const negated = name.startsWith("-");
    const field = negated ? name.slice(1) : name;
    if (field === "q" && value !== "") state.terms.push({ field: "", value, negated });
    else if (names.fields.has(field)) state.terms.push({ field, value, negated });
}

function readSort(state: State, value: string, names: Names): void {
    const descending = value.startsWith("-");
    const sort = descending ? value.slice(1) : value;
    if (names.sorts.has(sort)) Object.assign(state, { sort, descending });
}

const READERS: Record<string, (state: State, value: string, names: Names) => void> = {
    view: (state, value) => (state.view = value === "findings" ? "findings" : "overview"),
    sort: readSort,
    group: (state, value, names) => (state.group = names.groups.has(value) ? value : ""),
    finding: (state, value, names) => (state.finding = numberBelow(value, names.findings)),
    flow: (state, value) => (state.flow = Math.max(0, (numberBelow(value, 1e9) ?? 1) - 1)),
    step: (state, value) => (state.step = Math.max(0, (numberBelow(value, 1e9) ?? 1) - 1)),
};

/** Reads a fragment; what it does not understand is left out. */
export function parseHash(hash: string, names: Names): State {
    const state: State = { ...DEFAULTS, terms: [] };
    for (const part of hash.replace(/^#/, "").split("&")) {
        const [, name, value] = /^([^=]*)=?([^]*)$/.exec(part)!;
        const text = unescape(value);
        if (Object.hasOwn(READERS, name)) READERS[name](state, text, names);
        else readTerm(state, name, text, names);
    }
    if (state.finding !== null) state.view = "findings";
    return state;
}
