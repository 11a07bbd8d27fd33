// The order of the list: sorted, in groups, and what stands in each of its rows.

import type { Outcome } from "./filter";
import type { Numbers, Table } from "./table";

/** Sorts findings by a key of each, those with equal keys as they were. Keys are whole numbers below 2^32. */
export function stableSort(order: Uint32Array, keyOf: (finding: number) => number): Uint32Array {
    const many = order.length;
    const keys = Float64Array.from(order, (finding, position) => keyOf(finding) * many + position);
    keys.sort();
    return Uint32Array.from(keys, (key) => order[key % many]);
}

const FIXED_ORDERS: Record<string, string[]> = {
    level: ["error", "warning", "note", "none"],
    state: ["new", "updated", "unchanged", "absent"],
    suppressed: ["no", "yes"],
};

const collator = new Intl.Collator("en", { numeric: true });

/** For each text its place in the order of texts; levels and states have an order of their own. */
export function textRanks(name: string, texts: string[]): Uint32Array {
    const fixed = FIXED_ORDERS[name];
    const placeOf = (text: string): number => (fixed.indexOf(text) + fixed.length + 1) % (fixed.length + 1);
    const compare = fixed
        ? (a: number, b: number) => placeOf(texts[a]) - placeOf(texts[b])
        : (a: number, b: number) => collator.compare(texts[a], texts[b]);
    const ranks = new Uint32Array(texts.length);
    texts
        .map((_text, number) => number)
        .sort(compare)
        .forEach((number, rank) => (ranks[number] = rank));
    return ranks;
}

/** Findings with a value in common, one behind the other. */
export interface Group {
    value: number;
    begin: number;
    count: number;
}

/** A row of the list: a finding, or the heading of a group. */
export type Row = { finding: number; group?: undefined } | { group: Group; finding?: undefined };

/** Sorts the findings of a table, and keeps what it has sorted. */
export class Sorter {
    private readonly ranks = new Map<string, Uint32Array>();
    private readonly sorted = new Map<string, Uint32Array>();

    constructor(
        private readonly table: Table,
        private readonly messages: () => { values: Numbers; texts: string[] },
    ) {}

    /** Forgets orders by a text that has come since. */
    forget(name: string): void {
        this.ranks.delete(name);
        this.sorted.clear();
    }

    private source(name: string): { values: Numbers; texts: string[] } {
        return name === "message" ? this.messages() : this.table.dimensions.get(name)!;
    }

    rank(name: string): Uint32Array {
        let ranks = this.ranks.get(name);
        if (!ranks) this.ranks.set(name, (ranks = textRanks(name, this.source(name).texts)));
        return ranks;
    }

    private by(order: Uint32Array, name: string, descending: boolean): Uint32Array {
        const ranks = this.rank(name);
        const { values } = this.source(name);
        const last = ranks.length;
        return stableSort(order, descending ? (i) => last - ranks[values[i]] : (i) => ranks[values[i]]);
    }

    private places(): Uint32Array {
        let order = Uint32Array.from({ length: this.table.count }, (_none, i) => i);
        for (const name of ["column", "line"]) {
            const values = this.table.columns.get(name);
            if (values) order = stableSort(order, (i) => values[i]);
        }
        return this.by(order, "file", false);
    }

    /** All findings by a dimension or "message", then by their places. */
    all(name: string, descending: boolean): Uint32Array {
        const key = `${name} ${descending}`;
        let order = this.sorted.get(key);
        if (order) return order;
        order = name === "file" && !descending ? this.places() : this.by(this.all("file", false), name, descending);
        this.sorted.set(key, order);
        return order;
    }
}

/** The findings that a filter leaves, in their order. */
export function filtered(all: Uint32Array, outcome: Outcome): Uint32Array {
    const order = new Uint32Array(outcome.count);
    let end = 0;
    for (const finding of all) {
        if (outcome.failing[finding] === 0) order[end++] = finding;
    }
    return order;
}

/** Puts findings of one value together, the largest group first. */
export function grouped(order: Uint32Array, values: Numbers, ranks: Uint32Array): { order: Uint32Array; groups: Group[] } {
    const counts = new Uint32Array(ranks.length);
    for (const finding of order) ++counts[values[finding]];
    const present = [...counts.keys()].filter((value) => counts[value] > 0);
    present.sort((a, b) => counts[b] - counts[a] || ranks[a] - ranks[b]);
    const places = new Uint32Array(ranks.length);
    const groups: Group[] = [];
    let begin = 0;
    present.forEach((value, place) => {
        places[value] = place;
        groups.push({ value, begin, count: counts[value] });
        begin += counts[value];
    });
    return { order: stableSort(order, (finding) => places[values[finding]]), groups };
}

/** The rows of the list. */
export class Rows {
    private readonly starts: number[] = [];
    readonly length: number;

    constructor(
        readonly order: Uint32Array,
        readonly groups: Group[] | null,
        private readonly isClosed: (group: Group) => boolean,
    ) {
        let rows = 0;
        for (const group of groups ?? []) {
            this.starts.push(rows);
            rows += 1 + (isClosed(group) ? 0 : group.count);
        }
        this.length = groups ? rows : order.length;
    }

    at(row: number): Row {
        if (!this.groups) return { finding: this.order[row] };
        const at = this.groupAt(row);
        const group = this.groups[at];
        const offset = row - this.starts[at];
        return offset === 0 ? { group } : { finding: this.order[group.begin + offset - 1] };
    }

    private groupAt(row: number): number {
        let low = 0;
        let high = this.starts.length - 1;
        while (low < high) {
            const middle = (low + high + 1) >> 1;
            if (this.starts[middle] <= row) low = middle;
            else high = middle - 1;
        }
        return low;
    }

    /** The row of a finding, or that of its group if this is closed; -1 if the filter leaves it out. */
    rowOf(finding: number): number {
        const position = this.order.indexOf(finding);
        if (position < 0 || !this.groups) return position;
        const at = this.groups.findIndex((group) => position < group.begin + group.count);
        const group = this.groups[at];
        return this.starts[at] + (this.isClosed(group) ? 0 : 1 + position - group.begin);
    }
}
