// Messages of SARIF: plain text with embedded links, as in "[opened](1) and never closed".

import { type Child, external, h, isLinkable, own } from "./dom";

/** A part of a message: plain text, or a link with its target. */
export interface Part {
    text: string;
    target?: string;
}

const LINK = /\[((?:[^\\\]]|\\.)+)\]\(([^()\s]+)\)/gs;

function unescape(text: string): string {
    return text.replace(/\\([[\]\\])/g, "$1");
}

/** The parts of a message. A target is the id of a related location or an address. */
export function messageParts(text: string): Part[] {
    const parts: Part[] = [];
    let end = 0;
    for (const match of text.matchAll(LINK)) {
        if (isEscaped(text, match.index!)) continue;
        if (match.index! > end) parts.push({ text: unescape(text.slice(end, match.index)) });
        parts.push({ text: unescape(match[1]), target: match[2] });
        end = match.index! + match[0].length;
    }
    if (end < text.length) parts.push({ text: unescape(text.slice(end)) });
    return parts;
}

function isEscaped(text: string, at: number): boolean {
    let backslashes = 0;
    while (text[at - 1 - backslashes] === "\\") ++backslashes;
    return backslashes % 2 === 1;
}

/** The text of a message without its links. */
export function messageText(text: string): string {
    return text.includes("[") || text.includes("\\") ? messageParts(text).map((part) => part.text).join("") : text;
}

function linked({ text, target }: Part, follow: (id: number) => (() => void) | undefined): Child[] {
    const action = /^\d+$/.test(target!) ? follow(Number(target)) : undefined;
    if (action) return [h("button", { type: "button", class: "link", onclick: action }, own(text))];
    if (!isLinkable(target!) || target!.startsWith("#")) return [own(`${text} (${target})`)];
    const address = text === target ? null : h("span", { class: "address" }, " ⟨", own(target!), "⟩");
    return [external(target!, own(text)), address];
}

/** Elements for a message; `follow` gives what a link to a location does, if there is that location. */
export function renderMessage(text: string, follow: (id: number) => (() => void) | undefined): HTMLElement {
    const parts = messageParts(text).flatMap((part) => (part.target === undefined ? [part.text] : linked(part, follow)));
    return h("bdi", { class: "message" }, parts);
}
