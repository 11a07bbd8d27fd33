// Texts of a result set are hostile: characters that a reader can't see are replaced by marks that he can.

/** Characters that show nothing, or change what stands around them; unpaired surrogates are among them. */
const HIDDEN = /[\p{Cc}\p{Cs}\p{Zl}\p{Zp}\p{DI}\p{Bidi_C}\ufff9-\ufffb]/u;
const HIDDEN_PARTS = /([\p{Cc}\p{Cs}\p{Zl}\p{Zp}\p{DI}\p{Bidi_C}\ufff9-\ufffb])/u;
const VISIBLE_ANYHOW = new Set(["\t", "\n", "\ufe0e", "\ufe0f"]);

/** A run of text, or the marks of a run of hidden characters. */
export interface Piece {
    text: string;
    mark: boolean;
}

function markOf(character: string): string {
    const hex = character.codePointAt(0)!.toString(16).toUpperCase();
    return `⟨U+${hex.padStart(4, "0")}⟩`;
}

/** The pieces of a text, hidden characters apart. */
export function pieces(text: string): Piece[] {
    if (!HIDDEN.test(text)) return text === "" ? [] : [{ text, mark: false }];
    const found: Piece[] = [];
    for (const part of text.replaceAll("\r\n", "\n").split(HIDDEN_PARTS)) {
        if (part === "") continue;
        const mark = HIDDEN.test(part) && !VISIBLE_ANYHOW.has(part);
        const last = found[found.length - 1];
        const shown = mark ? markOf(part) : part;
        if (last?.mark === mark) last.text += shown;
        else found.push({ text: shown, mark });
    }
    return found;
}

/** A text for attributes and titles, with marks in place of hidden characters. */
export function plain(text: string): string {
    if (!HIDDEN.test(text)) return text;
    return pieces(text).map((piece) => piece.text).join("");
}

/** The first characters of a text, and "…" if there are more. Surrogate pairs stay whole. */
export function cut(text: string, length: number): string {
    if (text.length <= length) return text;
    const pair = text.codePointAt(length - 1)! > 0xffff;
    return `${text.slice(0, pair ? length - 1 : length)}…`;
}

/** A text without unpaired surrogates, as addresses need it. */
export function wellFormed(text: string): string {
    return text.replace(/\p{Cs}/gu, "\ufffd");
}

const NUMBERS = new Intl.NumberFormat("en");

/** A count with separators, as in 1,234. */
export function count(number: number): string {
    return NUMBERS.format(number);
}

/** A count with its noun, as in "1 finding" and "2 findings". */
export function counted(number: number, one: string, several = `${one}s`): string {
    return `${count(number)} ${number === 1 ? one : several}`;
}
