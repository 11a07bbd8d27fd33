// The findings as columns: everything that is counted, sorted and filtered.

export type Numbers = Uint8Array | Uint16Array | Uint32Array;

/** The chunk `index`. */
export interface Index {
    format: number;
    title: string;
    sets: ResultSet[];
    old_sets?: ResultSet[];
    findings: number;
    chunk_size: number;
    columns: { name: string; type: "u8" | "u16" | "u32" }[];
    dictionaries: Record<string, string[]>;
    source?: { files: Record<string, number>; skipped: Record<string, number> };
    history?: HistoryRun[];
}

export interface ResultSet {
    name: string;
    bytes: number;
}

/** A run of a series. */
export interface HistoryRun {
    run: number;
    name: string;
    findings: number;
    open: number;
    new: number;
    returned: number;
    fixed: number;
}

/** What findings can have in common: for each finding the number of one of `texts`. */
export interface Dimension {
    name: string;
    label: string;
    values: Numbers;
    texts: string[];
}

/** The columns of a report. */
export interface Table {
    count: number;
    columns: Map<string, Numbers>;
    dimensions: Map<string, Dimension>;
}

const ARRAYS = { u8: Uint8Array, u16: Uint16Array, u32: Uint32Array };

/** In the order in which the page shows them. */
const LABELS: [string, string][] = [
    ["level", "Level"],
    ["state", "State"],
    ["rule", "Rule"],
    ["category", "Category"],
    ["directory", "Directory"],
    ["file", "File"],
    ["function", "Function"],
    ["class", "Class"],
    ["kind", "Kind"],
    ["suppressed", "Suppressed"],
    ["tool", "Tool"],
    ["run", "Run"],
];

/** Cuts the content of the chunk `columns` into its columns. */
export function readColumns(index: Index, bytes: Uint8Array): Map<string, Numbers> {
    const columns = new Map<string, Numbers>();
    let begin = 0;
    for (const { name, type } of index.columns) {
        const end = begin + index.findings * ARRAYS[type].BYTES_PER_ELEMENT;
        if (end > bytes.length) throw new RangeError(`The column ${name} is too short.`);
        columns.set(name, new ARRAYS[type](bytes.slice(begin, end).buffer));
        begin = end;
    }
    return columns;
}

/** The directory of a URI, with the last slash; empty if it has none. */
export function directoryOf(uri: string): string {
    return uri.slice(0, uri.lastIndexOf("/") + 1);
}

/** Maps the texts of a dimension: findings whose texts become equal have one number. */
function derived(from: Dimension, name: string, map: (text: string) => string): Dimension {
    const texts: string[] = [""];
    const numbers = new Map<string, number>([["", 0]]);
    const mapped = Uint32Array.from(from.texts, (text) => {
        const key = map(text);
        const known = numbers.get(key) ?? texts.push(key) - 1;
        numbers.set(key, known);
        return known;
    });
    return { name, label: "", values: Uint32Array.from(from.values, (value) => mapped[value]), texts };
}

/** Makes the table of a report; `runs` are the names of the runs. */
export function makeTable(index: Index, bytes: Uint8Array, runs: string[]): Table {
    const columns = readColumns(index, bytes);
    const values = (name: string): Numbers => columns.get(name) ?? new Uint8Array(index.findings);
    const dimension = (name: string, column = name): Dimension => ({
        name,
        label: "",
        values: values(column),
        texts: index.dictionaries[column] ?? [""],
    });
    const file = dimension("file", "uri");
    const all: Dimension[] = ["level", "state", "rule", "category", "function", "class", "kind", "tool"].map((name) =>
        dimension(name),
    );
    all.push(file, derived(file, "directory", directoryOf));
    all.push({ ...dimension("suppressed"), texts: ["no", "yes"] }, { ...dimension("run"), texts: runs });
    const dimensions = new Map<string, Dimension>();
    for (const [name, label] of LABELS) dimensions.set(name, { ...all.find((one) => one.name === name)!, label });
    return { count: index.findings, columns, dimensions };
}

/** The text of one finding in a dimension. */
export function textOf(table: Table, dimension: string, finding: number): string {
    const { values, texts } = table.dimensions.get(dimension)!;
    return texts[values[finding]] ?? "";
}

/** The longest directory that all URIs of a list are in; empty URIs do not count. */
export function commonDirectory(uris: Iterable<string>): string {
    let common: string | undefined;
    for (const uri of uris) {
        if (uri === "") continue;
        common ??= directoryOf(uri);
        while (!uri.startsWith(common)) common = directoryOf(common.slice(0, -1));
    }
    return common ?? "";
}
