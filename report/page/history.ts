// The plot of a series of runs: open, new and fixed findings in each.

import { scaleLinear } from "d3-scale";
import { line } from "d3-shape";
import { h, own, svg } from "./dom";
import type { HistoryRun } from "./table";
import { count, cut } from "./text";

const HEIGHT = 220;
const MARGIN = { top: 12, right: 16, bottom: 28, left: 56 };

type Series = "open" | "new" | "fixed";
const SERIES: { name: Series; label: string }[] = [
    { name: "open", label: "Open" },
    { name: "new", label: "New" },
    { name: "fixed", label: "Fixed" },
];

/** The plot is drawn as wide as the page is, so that its texts have the size of others. */
function pageWidth(): number {
    return Math.max(260, Math.min(1400, document.documentElement.clientWidth - 80));
}

interface Scales {
    width: number;
    x(run: number): number;
    y(value: number): number;
    ticks: number[];
}

function scales(runs: HistoryRun[]): Scales {
    const width = pageWidth();
    const most = Math.max(1, ...runs.map((run) => Math.max(run.open, run.new, run.fixed)));
    const y = scaleLinear().domain([0, most]).nice(4).range([HEIGHT - MARGIN.bottom, MARGIN.top]);
    const x = scaleLinear().domain([0, Math.max(1, runs.length - 1)]).range([MARGIN.left, width - MARGIN.right]);
    return { width, x, y, ticks: y.ticks(4).filter(Number.isInteger) };
}

function axes(runs: HistoryRun[], { width, x, y, ticks }: Scales): SVGElement[] {
    const parts = ticks.flatMap((tick) => [
        svg("line", { class: "grid-line", x1: MARGIN.left, x2: width - MARGIN.right, y1: y(tick), y2: y(tick) }),
        svg("text", { class: "tick", x: MARGIN.left - 8, y: y(tick) + 4, "text-anchor": "end" }, count(tick)),
    ]);
    const ends: [number, string][] = runs.length > 1 ? [[0, "start"], [runs.length - 1, "end"]] : [[0, "start"]];
    for (const [run, anchor] of ends) {
        const attributes = { class: "tick", x: x(run), y: HEIGHT - 6, "text-anchor": anchor };
        parts.push(svg("text", attributes, cut(runs[run].name, 40)));
    }
    return parts;
}

function curve(runs: HistoryRun[], name: Series, { x, y }: Scales): SVGElement[] {
    const path = line<HistoryRun>().x((_run, i) => x(i)).y((run) => y(run[name]));
    const parts = [svg("path", { class: `curve curve-${name}`, d: path(runs) })];
    if (runs.length > 60) return parts;
    return [...parts, ...runs.map((run, i) => svg("circle", { class: `dot dot-${name}`, cx: x(i), cy: y(run[name]), r: 3 }))];
}

function table(runs: HistoryRun[]): HTMLElement {
    const heads = ["Run", "Findings", "Open", "New", "Returned", "Fixed"].map((name) => h("th", { scope: "col" }, name));
    const rows = [...runs].reverse().map((run) =>
        h("tr", {}, h("th", { scope: "row" }, own(run.name)),
            [run.findings, run.open, run.new, run.returned, run.fixed].map((value) => h("td", {}, count(value)))));
    return h("details", {}, h("summary", {}, "As a table"),
        h("div", { class: "scroll", tabindex: 0, role: "region", "aria-label": "Runs of the series" },
            h("table", {}, h("thead", {}, h("tr", {}, heads)), h("tbody", {}, rows))));
}

/** The card with the plot, null without a series. */
export function renderHistory(runs: HistoryRun[] | undefined): HTMLElement | null {
    if (!runs || runs.length === 0) return null;
    const found = scales(runs);
    const last = runs[runs.length - 1];
    const label = `Open findings over ${runs.length} runs, now ${last.open}; new in the last run ${last.new}, fixed ${last.fixed}`;
    const plot = svg("svg", { class: "plot", viewBox: `0 0 ${found.width} ${HEIGHT}`, role: "img", "aria-label": label },
        axes(runs, found), SERIES.flatMap(({ name }) => curve(runs, name, found)));
    const key = SERIES.map(({ name, label: text }) => {
        const sample = svg("svg", { class: "sample", viewBox: "0 0 24 8", "aria-hidden": "true" },
            svg("path", { class: `curve curve-${name}`, d: "M0 4h24" }));
        return h("li", {}, sample, text, " ", h("strong", {}, count(last[name])));
    });
    return h("section", { class: "card wide" }, h("h2", {}, "Over time"), plot,
        h("div", { class: "legend" }, h("ul", {}, key)), table(runs));
}
