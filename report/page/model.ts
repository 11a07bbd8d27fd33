// The report that is open: what has been loaded of it, and what the filter leaves.

import { loadBytes, loadText } from "./chunks";
import { evaluate, type Outcome, type SearchedTexts, type Term } from "./filter";
import { parseExact } from "./json";
import { Sorter } from "./order";
import { commonDirectory, type Index, makeTable, type Numbers, type Table } from "./table";

/** A run as a SARIF log has it, without results. */
export type Run = Record<string, any>;

/** What is shown of one finding. */
export interface Detail {
    result: Record<string, any>;
    record?: [unknown, Record<string, unknown>];
    key?: string;
    set?: number;
    old?: boolean;
    changes?: { path: string; old: unknown; new: unknown }[];
    first_seen?: string;
    last_seen?: string;
}

/** A file of source, or why there is none. */
export interface Source {
    uri?: string;
    text?: string;
    skipped?: string;
}

function runName(run: Run, number: number): string {
    const id = run.automationDetails?.id;
    return typeof id === "string" && id !== "" ? id : `${number + 1}`;
}

/** Keeps the newest few of what is loaded by name. */
class Kept<Value> {
    private readonly values = new Map<string, Promise<Value>>();

    constructor(
        private readonly most: number,
        private readonly load: (name: string) => Promise<Value>,
    ) {}

    get(name: string): Promise<Value> {
        const value = this.values.get(name) ?? this.load(name);
        this.values.delete(name);
        this.values.set(name, value);
        value.catch(() => this.values.delete(name));
        if (this.values.size > this.most) this.values.delete(this.values.keys().next().value!);
        return value;
    }
}

export class Model {
    /** Message texts; empty until they are loaded. */
    messages: string[] = [];
    readonly sorter: Sorter;
    readonly commonDirectory: string;
    outcome: Outcome;
    private readonly messageNumbers: Numbers;
    private readonly sources: Map<string, number>;
    private readonly details = new Kept<Detail[]>(8, async (name) => parseExact(await loadText(name)));
    private readonly texts = new Kept<Source>(32, async (name) => JSON.parse(await loadText(name)));

    constructor(
        readonly index: Index,
        readonly table: Table,
        readonly runs: Run[],
    ) {
        this.messageNumbers = table.columns.get("message") ?? new Uint8Array(table.count);
        this.commonDirectory = commonDirectory(table.dimensions.get("file")!.texts);
        this.sources = new Map(Object.entries(index.source?.files ?? {}));
        this.sorter = new Sorter(table, () => ({ values: this.messageNumbers, texts: this.messages }));
        this.outcome = evaluate(table, [], []);
    }

    /** Loads what all of the page needs, but for the messages. */
    static async load(index: Index): Promise<Model> {
        const [bytes, runs] = await Promise.all([loadBytes("columns"), loadText("runs")]);
        const parsed: Run[] = parseExact(runs);
        return new Model(index, makeTable(index, bytes, parsed.map(runName)), parsed);
    }

    async loadMessages(): Promise<void> {
        this.messages = JSON.parse(await loadText("messages"));
        this.sorter.forget("message");
    }

    message(finding: number): string {
        return this.messages[this.messageNumbers[finding]] ?? "";
    }

    /** The texts in which the words of a filter are looked for. */
    private searched(): SearchedTexts[] {
        const dimensions = ["rule", "file", "function"].map((name) => this.table.dimensions.get(name)!);
        return this.messages.length ? [{ values: this.messageNumbers, texts: this.messages }, ...dimensions] : dimensions;
    }

    filter(terms: Term[]): void {
        this.outcome = evaluate(this.table, terms, this.searched());
    }

    async detail(finding: number): Promise<Detail> {
        const size = this.index.chunk_size;
        const details = await this.details.get(`details-${Math.floor(finding / size)}`);
        return details[finding % size];
    }

    /** The source of a file, null if the report has none. */
    async source(uri: string): Promise<Source | null> {
        const chunk = this.sources.get(uri);
        return chunk === undefined ? null : this.texts.get(`source-${chunk}`);
    }

    /** A URI without the directory that all files of the report are in. */
    shortened(uri: string): string {
        return uri.startsWith(this.commonDirectory) ? uri.slice(this.commonDirectory.length) : uri;
    }
}
