// Shapes that stand beside texts, so that colour is never all that tells things apart.

import { svg } from "./dom";

const SHAPES: Record<string, string> = {
    error: "M5 1h6l4 4v6l-4 4H5l-4-4V5zM5 5l6 6M11 5l-6 6",
    warning: "M8 1.5 15 14.5H1zM8 6v4.5M8 12v1",
    note: "M8 1a7 7 0 1 0 0 14A7 7 0 1 0 8 1M8 7v5M8 4v1",
    none: "M2 8h12",
    new: "M8 2v12M2 8h12",
    updated: "M2 5.5q3-3 6 0t6 0M2 10.5q3-3 6 0t6 0",
    unchanged: "M2 5.5h12M2 10.5h12",
    absent: "M3 3l10 10M13 3L3 13",
};

/** The shape of a level or a state; hidden from screen readers, since the word stands beside it. */
export function icon(name: string): SVGElement | null {
    if (!Object.hasOwn(SHAPES, name)) return null;
    const attributes = { class: `icon icon-${name}`, viewBox: "0 0 16 16", "aria-hidden": "true" };
    return svg("svg", attributes, svg("path", { d: SHAPES[name] }));
}
