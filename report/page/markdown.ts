// Markdown of help texts and messages, made safe: HTML in it is text, images are not loaded, links lead to the web.

import purify from "dompurify";
import MarkdownIt from "markdown-it";
import { h, isLinkable, own } from "./dom";

/** Longer texts, and those with more brackets, are shown as they are: links take time that grows with the square. */
const LONGEST = 100_000;
const MOST_BRACKETS = 1000;

const TAGS = ["a", "b", "blockquote", "br", "code", "del", "em", "h1", "h2", "h3", "h4", "h5", "h6", "hr", "i", "li",
    "ol", "p", "pre", "s", "strong", "table", "tbody", "td", "th", "thead", "tr", "ul"];

const markdown = new MarkdownIt({ html: false, linkify: false, typographer: false, maxNesting: 20 });
markdown.renderer.rules.image = (tokens, index) =>
    `<em>[image: ${markdown.utils.escapeHtml(tokens[index].content)}]</em>`;

function replaceTexts(parent: Node): void {
    for (const child of [...parent.childNodes]) {
        if (child instanceof Text) child.replaceWith(...h("span", {}, child.data).childNodes);
        else replaceTexts(child);
    }
}

function mendLinks(fragment: DocumentFragment): void {
    for (const link of fragment.querySelectorAll("a")) {
        const href = link.getAttribute("href") ?? "";
        for (const { name } of [...link.attributes]) link.removeAttribute(name);
        if (!isLinkable(href) || !href.includes(":")) continue;
        link.href = href;
        link.target = "_blank";
        link.rel = "noopener noreferrer";
        link.title = href;
    }
}

/** Headings of a text stand below those of the page. */
function lowerHeadings(fragment: DocumentFragment): void {
    for (const heading of fragment.querySelectorAll("h1, h2, h3, h4, h5, h6")) {
        const lower = h("h5", {});
        lower.append(...heading.childNodes);
        heading.replaceWith(lower);
    }
}

/** Elements for a markdown text. */
export function renderMarkdown(text: string): HTMLElement {
    if (text.length > LONGEST || text.split("[").length > MOST_BRACKETS) return h("pre", { class: "prose" }, own(text));
    const fragment = purify.sanitize(markdown.render(text), {
        ALLOWED_TAGS: TAGS,
        ALLOWED_ATTR: ["href"],
        ALLOW_DATA_ATTR: false,
        ALLOW_ARIA_ATTR: false,
        RETURN_DOM_FRAGMENT: true,
    });
    mendLinks(fragment);
    lowerHeadings(fragment);
    for (const pre of fragment.querySelectorAll("pre")) pre.tabIndex = 0;
    replaceTexts(fragment);
    const element = h("div", { class: "prose", dir: "auto" });
    element.append(fragment);
    return element;
}
