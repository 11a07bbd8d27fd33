// The box in which the filter is typed, and the filter's terms as buttons that remove them.

import { fill, h, own } from "./dom";
import { formatFilter, parseFilter, type Term } from "./filter";
import { nameOf, type Page } from "./page";
import { cut } from "./text";

const HELP: [string, string][] = [
    ["word", "in message, rule, file or function"],
    ["\"two words\"", "these words, one behind the other"],
    ["rule:leak/memory", "this rule; if there is none of this name, rules that contain it"],
    ["file:*/net/*", "a pattern of the whole path; * is any text, also slashes, ? a character"],
    ["level:error level:warning", "one of the two"],
    ["state:new suppressed:no", "both"],
    ["-file:*_test.c -word", "not so"],
];

export class FilterBox {
    readonly element: HTMLElement;
    private readonly input: HTMLInputElement;
    private readonly chips = h("ul", { class: "chips", "aria-label": "Filter" });
    private typed = "";
    private later = 0;

    constructor(private readonly page: Page, private readonly preview: (terms: Term[]) => void) {
        this.input = h("input", {
            id: "filter",
            type: "search",
            placeholder: "Filter: words, rule:… file:*/net/* level:error",
            "aria-label": "Filter",
            autocomplete: "off",
            spellcheck: "false",
            dir: "auto",
            oninput: () => this.type(),
            onchange: () => this.commit(),
        });
        const fields = [...page.model.table.dimensions.keys()].join(", ");
        const help = h("details", { class: "filter-help" }, h("summary", { title: "How to write a filter" }, "Syntax"),
            h("div", { class: "popover" }, h("dl", {}, HELP.map(([code, text]) => h("div", {}, h("dt", {}, h("code", {}, code)), h("dd", {}, text)))),
                h("p", {}, `Fields: ${fields}.`)));
        const form = h("form", { role: "search", onsubmit: (event: Event) => this.submit(event) }, this.input, help);
        this.element = h("div", { class: "filter" }, form, this.chips);
    }

    private submit(event: Event): void {
        event.preventDefault();
        this.commit();
    }

    private terms(): Term[] {
        return parseFilter(this.input.value, (name) => this.page.model.table.dimensions.has(name));
    }

    /** What is typed is shown at once; the address follows when typing pauses, as browsers allow it only so often. */
    private type(): void {
        const terms = this.terms();
        this.typed = formatFilter(terms);
        this.preview(terms);
        clearTimeout(this.later);
        this.later = window.setTimeout(() => this.commit(), 400);
    }

    private commit(): void {
        clearTimeout(this.later);
        const terms = this.terms();
        this.typed = formatFilter(terms);
        if (this.typed !== formatFilter(this.page.state.terms) || location.hash !== this.page.link({})) this.page.go({ terms }, true);
    }

    /** Shows the filter of the state; what is being typed stays as it is. */
    update(): void {
        const text = formatFilter(this.page.state.terms);
        if (text !== this.typed) {
            this.input.value = text;
            this.typed = text;
        }
        fill(this.chips, this.page.state.terms.map((term) => this.chip(term)), this.page.state.terms.length > 1 ? this.clear() : null);
    }

    private chip(term: Term): HTMLElement {
        const rest = (): Term[] => this.page.state.terms.filter((one) => one !== term);
        const name = `${term.negated ? "not " : ""}${term.field || "word"}`;
        const label = `Remove ${name} ${term.value}`;
        return h("li", {}, h("button", { type: "button", class: "chip", title: label, "aria-label": label, onclick: () => this.remove(rest()) },
            h("span", { class: "chip-name" }, name), " ", own(nameOf(cut(term.value, 80))), h("span", { class: "cross", "aria-hidden": "true" }, " ✕")));
    }

    private clear(): HTMLElement {
        return h("li", {}, h("button", { type: "button", class: "link", onclick: () => this.remove([]) }, "Clear all"));
    }

    private remove(terms: Term[]): void {
        this.page.go({ terms });
        this.input.focus();
    }

    focus(): void {
        this.input.focus();
        this.input.select();
    }

    has(element: Element | null): boolean {
        return element === this.input;
    }
}
