// The filter: what the list and the overview show. It is typed, clicked together, or comes with the address.
//
//   word  "two words"        in the message, the rule, the file or the function; capitals do not count
//   rule:V  file:"V"         the rule or file is V; where V has * or ?, the whole text matches that pattern; if no
//                            text is V, those that contain it
//   -rule:V  -word           not so
//
// Terms of one field hold if one of them does, those of different fields all; negated terms and words hold each.

import type { Dimension, Table } from "./table";

/** One condition. `field` is the name of a dimension, or empty for words. */
export interface Term {
    field: string;
    value: string;
    negated: boolean;
}

const TERM = /(-?)(?:([a-z]+):)?(?:"((?:[^"\\]|\\.)*)"?|(\S*))/sy;

/** Reads the text of the filter box; `isField` says which names stand before a colon. */
export function parseFilter(text: string, isField: (name: string) => boolean): Term[] {
    const terms: Term[] = [];
    for (let at = skipSpace(text, 0); at < text.length; at = skipSpace(text, at)) {
        TERM.lastIndex = at;
        const [whole, minus, name, quoted, bare] = TERM.exec(text)!;
        at += whole.length;
        const field = name !== undefined && isField(name) ? name : "";
        const raw = quoted?.replace(/\\(.)/gs, "$1") ?? bare;
        const value = field || name === undefined ? raw : `${name}:${raw}`;
        if (value !== "" || (field && quoted !== undefined)) terms.push({ field, value, negated: minus === "-" });
    }
    return terms;
}

function skipSpace(text: string, at: number): number {
    while (at < text.length && /\s/.test(text[at])) ++at;
    return at;
}

function formatTerm({ field, value, negated }: Term): string {
    const simple = value !== "" && !/[\s"]/.test(value) && (field !== "" || !/^-|:/.test(value));
    const text = simple ? value : `"${value.replace(/["\\]/g, "\\$&")}"`;
    return `${negated ? "-" : ""}${field ? `${field}:` : ""}${text}`;
}

/** The text that `parseFilter` reads as these terms. */
export function formatFilter(terms: Term[]): string {
    return terms.map(formatTerm).join(" ");
}

/** A value that stands for a text and nothing else. */
export function exactly(text: string): string {
    return text.replace(/\\(?=[*?\\])|[*?]/g, "\\$&");
}

const ESCAPED = /\\([*?\\])|([*?])|([^*?\\]+|\\)/g;

function escapeRegex(text: string): string {
    return text.replace(/[.*+?^${}()|[\]\\/]/g, "\\$&");
}

/** A value is a pattern or, if it has no wildcards, a literal text. */
function readValue(value: string): { literal: string; pattern: RegExp | null } {
    let literal = "";
    let source = "";
    let wild = false;
    for (const [, escaped, wildcard, plain] of value.matchAll(ESCAPED)) {
        wild ||= wildcard !== undefined;
        literal += escaped ?? wildcard ?? plain;
        source += wildcard === "*" ? "[^]*" : wildcard === "?" ? "[^]" : escapeRegex(escaped ?? plain);
    }
    return { literal, pattern: wild ? new RegExp(`^${source}$`, "iu") : null };
}

/** Which texts of a dictionary a value selects, as a predicate. */
export function matcher(value: string, texts: string[]): (text: string) => boolean {
    const { literal, pattern } = readValue(value);
    if (pattern) return (text) => pattern.test(text);
    if (literal === "" || texts.includes(literal)) return (text) => text === literal;
    const within = new RegExp(escapeRegex(literal), "iu");
    return (text) => within.test(text);
}

/** For each text of a dimension 1 if terms allow it. */
export function allowedTexts(dimension: Dimension, terms: Term[]): Uint8Array {
    const wanted = terms.filter((term) => !term.negated).map((term) => matcher(term.value, dimension.texts));
    const unwanted = terms.filter((term) => term.negated).map((term) => matcher(term.value, dimension.texts));
    return Uint8Array.from(dimension.texts, (text) =>
        Number((wanted.length === 0 || wanted.some((test) => test(text))) && !unwanted.some((test) => test(text))),
    );
}

/** What a filter leaves. */
export interface Outcome {
    /** For each finding 0 if the filter holds, the position of a dimension plus 1 if only that fails, or `SEVERAL`. */
    failing: Uint8Array;
    /** How many findings the filter leaves. */
    count: number;
    /** The position that words have beside the dimensions. */
    order: string[];
}

export const SEVERAL = 255;

function markFailing(failing: Uint8Array, fails: (finding: number) => boolean, position: number): void {
    for (let i = 0; i < failing.length; ++i) {
        if (fails(i)) failing[i] = failing[i] === 0 ? position + 1 : SEVERAL;
    }
}

/** The texts in which words are looked for. */
export interface SearchedTexts {
    values: ArrayLike<number>;
    texts: string[];
}

const wordCache = new Map<string, Uint8Array[]>();

/** For each of the dictionaries, which texts have the word. Kept, since words are typed letter by letter. */
function textsWithWord(word: string, searched: SearchedTexts[]): Uint8Array[] {
    const keyOf = (text: string): string => `${searched.map((one) => one.texts.length).join()} ${text}`;
    const key = keyOf(word);
    const known = wordCache.get(key);
    if (known) return known;
    const shorter = wordCache.get(keyOf(word.slice(0, -1)));
    const pattern = new RegExp(escapeRegex(word), "iu");
    const found = searched.map(({ texts }, i) =>
        Uint8Array.from(texts, (text, number) => (shorter && shorter[i][number] === 0 ? 0 : Number(pattern.test(text)))));
    if (wordCache.size >= 16) wordCache.delete(wordCache.keys().next().value!);
    wordCache.set(key, found);
    return found;
}

function lacksWords(words: Term[], searched: SearchedTexts[]): (finding: number) => boolean {
    const tests = words.map(({ value, negated }) => ({ found: textsWithWord(value, searched), wanted: negated ? 0 : 1 }));
    const columns = searched.map((one) => one.values);
    return (finding) =>
        tests.some(({ found, wanted }) => {
            for (let i = 0; i < columns.length; ++i) if (found[i][columns[i][finding]]) return wanted === 0;
            return wanted === 1;
        });
}

/** Finds out for which findings the terms hold. */
export function evaluate(table: Table, terms: Term[], searched: SearchedTexts[]): Outcome {
    const failing = new Uint8Array(table.count);
    const order = [...table.dimensions.keys()];
    order.forEach((name, position) => {
        const own = terms.filter((term) => term.field === name);
        if (own.length === 0) return;
        const dimension = table.dimensions.get(name)!;
        const allowed = allowedTexts(dimension, own);
        markFailing(failing, (finding) => allowed[dimension.values[finding]] === 0, position);
    });
    const words = terms.filter((term) => term.field === "");
    if (words.length > 0) markFailing(failing, lacksWords(words, searched), order.length);
    let count = 0;
    for (const fails of failing) count += Number(fails === 0);
    return { failing, count, order };
}

/** How many findings have each text of a dimension, under all of the filter but that dimension's own terms. */
export function facetCounts(dimension: Dimension, outcome: Outcome): Uint32Array {
    const counts = new Uint32Array(dimension.texts.length);
    const own = outcome.order.indexOf(dimension.name) + 1;
    const { failing } = outcome;
    for (let i = 0; i < failing.length; ++i) {
        if (failing[i] === 0 || failing[i] === own) ++counts[dimension.values[i]];
    }
    return counts;
}

/** How many findings have each text of a dimension, under all of the filter. */
export function counts(dimension: Dimension, outcome: Outcome): Uint32Array {
    const found = new Uint32Array(dimension.texts.length);
    outcome.failing.forEach((fails, i) => {
        if (fails === 0) ++found[dimension.values[i]];
    });
    return found;
}

/** The terms that say exactly that a dimension has a text. */
export function isTermFor(term: Term, field: string, text: string): boolean {
    return term.field === field && !term.negated && term.value === exactly(text);
}

/** Adds a term, or takes it away where it is. */
export function toggled(terms: Term[], field: string, text: string): Term[] {
    const rest = terms.filter((term) => !isTermFor(term, field, text));
    return rest.length < terms.length ? rest : [...terms, { field, value: exactly(text), negated: false }];
}
