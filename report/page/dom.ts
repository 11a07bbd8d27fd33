// Elements are made here and nowhere else, from names in the code and text nodes: no markup is ever parsed.

import { cut, pieces, plain } from "./text";

export type Child = Node | string | number | null | undefined | false;
type Value = string | number | boolean | null | undefined | ((event: any) => void);
export type Attributes = Record<string, Value>;

const LONGEST_ATTRIBUTE = 4000;
const SVG = "http://www.w3.org/2000/svg";

/** True for an address that may be linked: on the web, a mail address, or within the page. */
export function isLinkable(url: string): boolean {
    return url.startsWith("#") || /^(https?:\/\/|mailto:)[^\s\\]+$/i.test(url) || url === "licences.txt";
}

function setAttribute(element: Element, name: string, value: Value): void {
    if (value === null || value === undefined || value === false) return;
    if (typeof value === "function") {
        element.addEventListener(name.slice(2), value);
        return;
    }
    if (name === "href" && !isLinkable(String(value))) return;
    element.setAttribute(name, value === true ? "" : plain(cut(String(value), LONGEST_ATTRIBUTE)));
}

function textNodes(text: string): Node[] {
    return pieces(text).map((piece) => {
        if (!piece.mark) return document.createTextNode(piece.text);
        const mark = document.createElement("span");
        mark.className = "hidden-character";
        mark.textContent = piece.text;
        return mark;
    });
}

/** Appends children; texts become text nodes, with marks for characters that can't be seen. */
export function append(parent: Node, ...children: (Child | Child[])[]): void {
    for (const child of children.flat()) {
        if (child === null || child === undefined || child === false) continue;
        if (child instanceof Node) parent.appendChild(child);
        else for (const node of textNodes(String(child))) parent.appendChild(node);
    }
}

/** Makes an element. Attributes that are functions are listeners, named `onclick` and so on. */
export function h<Name extends keyof HTMLElementTagNameMap>(
    name: Name,
    attributes: Attributes = {},
    ...children: (Child | Child[])[]
): HTMLElementTagNameMap[Name] {
    const element = document.createElement(name);
    for (const [key, value] of Object.entries(attributes)) setAttribute(element, key, value);
    append(element, ...children);
    return element;
}

/** Makes an element of SVG. */
export function svg(name: string, attributes: Attributes = {}, ...children: (Child | Child[])[]): SVGElement {
    const element = document.createElementNS(SVG, name) as SVGElement;
    for (const [key, value] of Object.entries(attributes)) setAttribute(element, key, value);
    append(element, ...children);
    return element;
}

/** A text of the result set, whose direction of writing does not reach what stands beside it. */
export function own(text: string, attributes: Attributes = {}): HTMLElement {
    return h("bdi", attributes, text);
}

/** Replaces the children of an element. */
export function fill(element: Element, ...children: (Child | Child[])[]): void {
    element.replaceChildren();
    append(element, ...children);
}

/** A link out of the report, or only its text if its address is not one that may be followed. */
export function external(url: string, ...children: (Child | Child[])[]): HTMLElement {
    if (!isLinkable(url) || url.startsWith("#")) return h("span", {}, ...children);
    return h("a", { href: url, target: "_blank", rel: "noopener noreferrer" }, ...children);
}

const LIVE = "live";

/** Has a screen reader say something. */
export function announce(text: string): void {
    let live = document.getElementById(LIVE);
    if (!live) {
        live = h("div", { id: LIVE, role: "status", class: "visually-hidden" });
        document.body.append(live);
    }
    if (live.textContent !== plain(text)) fill(live, text);
}
