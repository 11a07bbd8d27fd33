// Messages of SARIF: plain text with embedded links, as in "[opened](1) and never closed".

import { type Child, external, h, isLinkable, own } from "./dom";

/** A part of a message: plain text, or a link with its target. */
export interface Part {
    text: string;
    target?: string;
}

/** What matters for links: escaped characters, brackets, and the target behind a bracket. */
const TOKEN = /\\[^]|\[|\](?:\(([^()\s]+)\))?/g;

/** The parts of a message. A target is the id of a related location or an address. */
export function messageParts(text: string): Part[] {
    const parts: Part[] = [];
    let end = 0;
    let open = -1;
    for (const { 0: token, 1: target, index } of text.matchAll(TOKEN)) {
        if (token === "[") open = index!;
        if (!token.startsWith("]")) continue;
        if (target !== undefined && open >= 0 && index! > open + 1) {
            if (open > end) parts.push({ text: unescape(text.slice(end, open)) });
            parts.push({ text: text.slice(open + 1, index).replace(/\\([[\]\\])/g, "$1"), target });
            end = index! + token.length;
        }
        open = -1;
    }
    if (end < text.length) parts.push({ text: unescape(text.slice(end)) });
    return parts;
}

function unescape(text: string): string {
    return text.replace(/\\([[\]])/g, "$1");
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
