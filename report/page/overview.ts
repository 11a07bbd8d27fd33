// The overview: how many findings there are, by all that they have in common.

import { type Child, h, own } from "./dom";
import { counts, exactly, facetCounts, isTermFor, toggled } from "./filter";
import { renderHistory } from "./history";
import { icon } from "./icons";
import { messageText } from "./message";
import { nameOf, type Page } from "./page";
import { type Dimension, textOf } from "./table";
import { count, counted, cut } from "./text";
import { type Cell, directoryTree, renderTreemap } from "./treemap";

const FIRST_BARS = 8;
const MORE_BARS = 100;
const opened = new Set<string>();

type Lists = Map<Dimension, Bar[]>;

interface Bar {
    text: string;
    findings: number;
    pressed: boolean;
}

function bars(page: Page, dimension: Dimension): Bar[] {
    const found = facetCounts(dimension, page.model.outcome);
    const ranks = page.model.sorter.rank(dimension.name);
    const own = page.state.terms.filter((term) => term.field === dimension.name);
    const list: (Bar & { rank: number })[] = [];
    dimension.texts.forEach((text, number) => {
        const pressed = own.some((term) => isTermFor(term, dimension.name, text));
        if (found[number] > 0 || pressed) list.push({ text, findings: found[number], pressed, rank: ranks[number] });
    });
    const fixed = ["level", "state", "suppressed"].includes(dimension.name);
    return list.sort((a, b) => (fixed ? 0 : b.findings - a.findings) || a.rank - b.rank);
}

function barButton(page: Page, dimension: Dimension, bar: Bar, most: number): HTMLElement {
    const { terms } = page.state;
    const shown = dimension.name === "file" || dimension.name === "directory" ? page.model.shortened(bar.text) : bar.text;
    const fillPart = h("span", { class: "bar-fill", "aria-hidden": "true" });
    fillPart.style.inlineSize = `${((100 * bar.findings) / Math.max(1, most)).toFixed(2)}%`;
    const label = bar.text !== "" && shown === "" ? "./" : nameOf(shown);
    return h("li", {},
        h("button", {
            type: "button",
            class: "bar",
            "aria-pressed": String(bar.pressed),
            "data-focus": `${dimension.name}:${bar.text}`,
            title: bar.text,
            onclick: () => page.go({ terms: toggled(terms, dimension.name, bar.text) }),
        }, icon(bar.text), own(label, { class: "bar-text" }), h("span", { class: "bar-count" }, count(bar.findings)), fillPart));
}

function moreButton(page: Page, dimension: Dimension, many: number): Child {
    if (many <= FIRST_BARS) return null;
    const open = opened.has(dimension.name);
    const attributes = {
        type: "button",
        class: "link",
        "aria-expanded": String(open),
        "data-focus": `more ${dimension.name}`,
        onclick: () => {
            if (open) opened.delete(dimension.name);
            else opened.add(dimension.name);
            page.go({}, true);
        },
    };
    const all = many > MORE_BARS ? `first ${MORE_BARS} of ${count(many)}` : `all ${count(many)}`;
    return h("button", attributes, open ? "Show fewer" : `Show ${all}`);
}

function facet(page: Page, dimension: Dimension, list: Bar[]): Child {
    if (list.length < 2 && !list.some((bar) => bar.pressed)) return null;
    const most = Math.max(...list.map((bar) => bar.findings));
    const shown = list.slice(0, opened.has(dimension.name) ? MORE_BARS : FIRST_BARS);
    const pressed = list.filter((bar) => bar.pressed && !shown.includes(bar));
    const id = `facet-${dimension.name}`;
    return h("section", { class: "card", "aria-labelledby": id },
        h("h2", { id }, dimension.label, " ", h("span", { class: "hint" }, list.length > FIRST_BARS ? count(list.length) : "")),
        h("ul", { class: "bars" }, [...shown, ...pressed].map((bar) => barButton(page, dimension, bar, most))),
        moreButton(page, dimension, list.length));
}

/** False for a dimension that says what another one says, too, or only counts: runs without names. */
function isTelling(page: Page, { name }: Dimension, lists: Lists): boolean {
    if (name === "run") return page.model.runs.some((run) => run.automationDetails?.id);
    if (name !== "category") return true;
    const { dimensions } = page.model.table;
    const said = (of: string): string => JSON.stringify(lists.get(dimensions.get(of)!)!.map((bar) => [bar.text, bar.findings]));
    return lists.get(dimensions.get("category")!)!.some((bar) => bar.pressed) || said("category") !== said("rule");
}

/** What all findings have in common: dimensions with one text. */
function inCommon(lists: Lists): Child {
    const parts: Child[] = [];
    for (const [dimension, list] of lists) {
        const simple = list.length === 1 && !list[0].pressed && list[0].text !== "" && dimension.name !== "suppressed";
        if (simple && dimension.name !== "run") {
            parts.push(h("div", {}, h("dt", {}, dimension.label), h("dd", {}, own(list[0].text))));
        }
    }
    if (parts.length === 0) return null;
    return h("section", { class: "card wide common" }, h("h2", {}, "All have in common"), h("dl", {}, parts));
}

function tile(page: Page, field: string, text: string, findings: number): HTMLElement {
    const pressed = page.state.terms.some((term) => isTermFor(term, field, text));
    return h("li", {}, h("button", {
        type: "button",
        class: `tile tile-${text}`,
        "aria-pressed": String(pressed),
        "data-focus": `tile ${field}:${text}`,
        onclick: () => page.go({ terms: toggled(page.state.terms, field, text) }),
    }, h("span", { class: "tile-count" }, count(findings)), h("span", { class: "tile-name" }, icon(text), text)));
}

function tiles(page: Page, lists: Lists): HTMLElement {
    const { model } = page;
    const items: HTMLElement[] = [];
    for (const name of ["level", "state"]) {
        const dimension = model.table.dimensions.get(name)!;
        const used = lists.get(dimension)!.filter((bar) => bar.text !== "");
        if (name === "state" && used.length === 0) continue;
        for (const bar of used) items.push(tile(page, name, bar.text, bar.findings));
    }
    const files = counts(model.table.dimensions.get("file")!, model.outcome).filter((many) => many > 0).length;
    const total = h("a", { class: "tile total", href: page.link({ view: "findings" }) },
        h("span", { class: "tile-count" }, count(model.outcome.count)),
        h("span", { class: "tile-name" }, model.outcome.count === 1 ? "finding" : "findings", ` in ${counted(files, "file")} →`));
    return h("ul", { class: "tiles" }, h("li", {}, total), items);
}

const FIRST_FINDINGS = 5;

/** The first open finding of each of the first rules, in the order of the list. */
function firstOfRules({ model, state }: Page): number[] {
    const found: number[] = [];
    const seen = new Set<string>();
    for (const finding of model.sorter.all(state.sort, state.descending)) {
        if (model.outcome.failing[finding] !== 0) continue;
        const text = (name: string): string => textOf(model.table, name, finding);
        if (seen.has(text("rule")) || text("suppressed") === "yes" || text("state") === "absent") continue;
        seen.add(text("rule"));
        if (found.push(finding) === FIRST_FINDINGS) break;
    }
    return found;
}

/** Findings of several rules, so that a reader can start with them. */
function first(page: Page): Child {
    const { model } = page;
    const order = firstOfRules(page);
    if (order.length === 0) return null;
    const items = order.map((finding) => {
        const level = textOf(model.table, "level", finding);
        const uri = model.shortened(textOf(model.table, "file", finding));
        const line = model.table.columns.get("line")?.[finding];
        const text = messageText(model.message(finding)) || textOf(model.table, "rule", finding);
        return h("li", {}, h("a", { href: page.link({ view: "findings", finding }) },
            icon(level), h("span", { class: "visually-hidden" }, `${level}: `),
            own(cut(text, 200), { class: "first-text" }), own(`${uri}${line ? `:${line}` : ""}`, { class: "first-place" })));
    });
    const all = h("a", { class: "button", href: page.link({ view: "findings" }) }, `All ${counted(model.outcome.count, "finding")}`);
    return h("section", { class: "card wide" }, h("h2", {}, "Start here"), h("ol", { class: "first" }, items), all);
}

function where(page: Page): Child {
    const file = page.model.table.dimensions.get("file")!;
    const tree = directoryTree(file.texts, counts(file, page.model.outcome));
    return renderTreemap(tree, (cell: Cell) => {
        const term = cell.direct
            ? { field: "directory", value: exactly(cell.path), negated: false }
            : { field: "file", value: `${exactly(cell.path)}*`, negated: false };
        const rest = page.state.terms.filter(({ field }) => field !== "file" && field !== "directory");
        page.go({ terms: [...rest, term] });
    });
}

/** The page's main part when no finding is looked for. */
export function renderOverview(page: Page): HTMLElement {
    const { model } = page;
    if (model.outcome.count === 0 && page.state.terms.length === 0) {
        return h("div", { class: "overview" }, h("p", { class: "empty" }, "There are no findings."), renderHistory(model.index.history));
    }
    const lists: Lists = new Map();
    for (const dimension of model.table.dimensions.values()) lists.set(dimension, bars(page, dimension));
    const facets = [...lists].filter(([dimension]) => isTelling(page, dimension, lists)).map(([dimension, list]) => facet(page, dimension, list));
    return h("div", { class: "overview" }, tiles(page, lists), first(page), where(page), renderHistory(model.index.history),
        facets, inCommon(lists));
}
