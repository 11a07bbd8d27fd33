// JSON whose numbers stay as they are written, also those that no double holds.

type Reviver = (key: string, value: unknown, context?: { source?: string }) => unknown;
interface ExactJson {
    rawJSON?(source: string): object;
    isRawJSON?(value: unknown): boolean;
}

const exact = JSON as unknown as ExactJson;

/** A number that a double would change. */
const LONG_NUMBER = /\d{16}|\d[.eE][\d+-]/;

const keepSource: Reviver = (_key, value, context) => {
    if (typeof value !== "number" || !context?.source || String(value) === context.source) return value;
    return exact.rawJSON!(context.source);
};

/** Parses JSON. A number that a double would change becomes an object that `stringify` writes as it was. */
export function parseExact(text: string): any {
    if (!exact.rawJSON || !LONG_NUMBER.test(text)) return JSON.parse(text);
    return JSON.parse(text, keepSource as (key: string, value: unknown) => unknown);
}

/** The text of a number that `parseExact` kept, else undefined. */
export function exactNumber(value: unknown): string | undefined {
    return exact.isRawJSON?.(value) ? (value as { rawJSON: string }).rawJSON : undefined;
}

/** JSON with line breaks. */
export function stringify(value: unknown): string {
    return JSON.stringify(value, null, 2);
}
