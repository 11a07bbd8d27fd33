// What is known of values: the ranges of information records, drawn on an axis and written exactly.

import { scaleLinear } from "d3-scale";
import { type Child, h, own, svg } from "../dom";
import { counted } from "../text";

/** The end of an interval: its exact text and, for the picture, its place on a symmetric logarithmic axis. */
export interface End {
    text: string;
    at: number;
}

/** An interval; an end that is null is unbounded. */
export interface Interval {
    lower: End | null;
    upper: End | null;
}

/** What a value can be. */
export interface Ranges {
    /** Where in the payload it stands, as in `first_value`. */
    path: string;
    /** The name that the record has for the value. */
    name: string;
    type: string;
    intervals: Interval[];
    /** What holds beside the intervals, as in "multiple of 4". */
    also: string;
    full: boolean;
}

type Arm = { arm: string; args?: any };

/** The place of a decimal integer of any length. */
function placeOfInteger(text: string): number {
    const digits = text.replace(/^-/, "").replace(/^0+/, "");
    if (digits === "") return 0;
    const size = Math.log10(Number(digits.slice(0, 15))) + Math.max(0, digits.length - 15);
    const place = digits.length < 15 ? Math.log10(1 + Number(digits)) : size;
    return text.startsWith("-") ? -place : place;
}

const FLOAT = /^(-?)0X([0-9A-F]*)\.?([0-9A-F]*)P([+-]?\d+)$/i;

/** A number in hexadecimal as a double; NaN if the text is none, and rounded if a double can't hold it. */
export function hexFloat(text: string): number {
    const match = FLOAT.exec(text);
    if (!match) return /^-?inf/i.test(text) ? (text.startsWith("-") ? -Infinity : Infinity) : Number.NaN;
    const [, sign, whole, fraction, exponent] = match;
    const mantissa = parseInt((whole + fraction).slice(0, 20) || "0", 16);
    const scale = Number(exponent) + 4 * (Math.max(0, whole.length + fraction.length - 20) - fraction.length);
    const value = mantissa * 2 ** Math.max(-1000, Math.min(1000, scale)) * 2 ** (scale - Math.max(-1000, Math.min(1000, scale)));
    return sign ? -value : value;
}

function placeOfDouble(value: number): number {
    if (!Number.isFinite(value)) return value;
    return Math.sign(value) * Math.log10(1 + Math.abs(value));
}

/** An end of a range as `dump` prints it: an integer in quotes, or a float with its width and digits. */
function end(value: any): End | null {
    if (typeof value === "string" && /^-?\d+$/.test(value)) return { text: value, at: placeOfInteger(value) };
    const hex = value?.hex;
    if (typeof hex !== "string") return null;
    const double = hexFloat(hex);
    return { text: Number.isNaN(double) ? hex : `${double} (${hex})`, at: placeOfDouble(double) };
}

function interval(lower: unknown, upper: unknown): Interval {
    return { lower: end(lower), upper: end(upper) };
}

function multiplicity(value: Arm | undefined): string {
    if (value?.arm === "Multiple") return `multiple of ${value.args}`;
    if (value?.arm === "Odd") return "odd";
    if (value?.arm === "Bottom") return "no value";
    if (value?.arm === "FloatMultipleOfTwoPow" && value.args !== null) return `multiple of 2^${value.args}`;
    return "";
}

function intervalsOf(range: Arm): Pick<Ranges, "intervals" | "also" | "full"> {
    const args = range.args ?? {};
    if (range.arm === "Int_Full_Range") return { intervals: [interval(args.lower, args.upper)], also: "", full: true };
    if (range.arm === "Real_Full_Range") {
        const bounds = args.bounds ?? [null, null];
        return { intervals: [interval(bounds[0], bounds[1])], also: args.flag ? "or NaN" : "", full: true };
    }
    const list: Arm[] = Array.isArray(args.intervals) ? args.intervals : [];
    const also = [multiplicity(args.multiplicity), list.some((one) => one.arm === "Nan") ? "or NaN" : ""];
    const bounded = list.filter((one) => one.arm !== "Nan").map((one) => interval(one.args?.lower, one.args?.upper));
    return { intervals: bounded, also: also.filter((text) => text).join(", "), full: false };
}

function isValue(value: any): boolean {
    return typeof value?.range?.arm === "string" && typeof value?.type?.arm === "string";
}

/** Finds all values with ranges in a payload. */
export function rangesIn(payload: unknown, path = ""): Ranges[] {
    if (typeof payload !== "object" || payload === null) return [];
    if (isValue(payload)) {
        const { first_string: name, type, range } = payload as any;
        return [{ path, name: String(name ?? ""), type: type.arm.replace(/^Inf_Type_/, ""), ...intervalsOf(range) }];
    }
    const hidden = new Set(["args", "value"]);
    return Object.entries(payload).flatMap(([key, value]) => {
        const step = Array.isArray(payload) ? (typeof payload[0] === "string" && key !== "0" ? String(payload[0]) : "") : key;
        const shown = step === "" || (hidden.has(step) && path !== "") ? path : path === "" ? step : `${path} ${step}`;
        return rangesIn(value, shown);
    });
}

function intervalText({ lower, upper }: Interval): Child[] {
    if (lower && upper && lower.text === upper.text) return [own(lower.text)];
    return ["from ", lower ? own(lower.text) : "−∞", " to ", upper ? own(upper.text) : "∞"];
}

const WIDTH = 400;
const EDGE = 14;

/** The places that all bars of one picture share. */
function axisOf(all: Ranges[]): { from: number; to: number } {
    const places = all.flatMap(({ intervals }) => intervals.flatMap(({ lower, upper }) => [lower?.at, upper?.at]));
    const finite = places.filter((at): at is number => at !== undefined && Number.isFinite(at));
    const [from, to] = [Math.min(0, ...finite), Math.max(0, ...finite)];
    return from < to ? { from, to } : { from: from - 1, to: to + 1 };
}

function picture({ intervals }: Ranges, { from, to }: { from: number; to: number }): SVGElement {
    const scale = scaleLinear().domain([from, to]).range([EDGE, WIDTH - EDGE]);
    const place = (at: End | null, open: number): number =>
        !at || !Number.isFinite(at.at) ? (at ? (at.at > 0 ? WIDTH : 0) : open) : scale(at.at);
    const bars = intervals.map(({ lower, upper }) => {
        const [x, right] = [place(lower, 0), place(upper, WIDTH)];
        return svg("rect", { class: "range-bar", x, y: 5, width: Math.max(2, right - x), height: 8, rx: 1 });
    });
    return svg("svg", { class: "range", viewBox: `0 0 ${WIDTH} 18`, "aria-hidden": "true", preserveAspectRatio: "none" },
        svg("line", { class: "range-axis", x1: 0, x2: WIDTH, y1: 9, y2: 9 }),
        svg("line", { class: "range-zero", x1: scale(0), x2: scale(0), y1: 2, y2: 16 }), bars);
}

const FIRST_INTERVALS = 6;

function valueRow(value: Ranges, axis: { from: number; to: number }): HTMLElement {
    const texts = value.intervals.slice(0, FIRST_INTERVALS).flatMap((one, i) => [i ? ", or " : null, ...intervalText(one)]);
    const more = value.intervals.length - FIRST_INTERVALS;
    const known = value.intervals.length > 0;
    const note = value.full ? "the full range of its type" : "";
    return h("div", { class: "value" },
        h("dt", {}, own(value.path || "value"), " ", own(value.name, { class: "hint" }), " ", own(value.type, { class: "badge" })),
        h("dd", {}, known ? picture(value, axis) : null,
            h("span", { class: "value-text" }, texts, more > 0 ? ` and ${counted(more, "more interval")}` : null,
                known && (value.also || note) ? "; " : null, own([value.also, note].filter((text) => text).join("; ")),
                !known && !value.also ? "no range is given" : null)));
}

/** The values of a payload, null if it has none. */
export function renderRanges(payload: unknown): HTMLElement | null {
    const all = rangesIn(payload);
    if (all.length === 0) return null;
    const axis = axisOf(all);
    return h("dl", { class: "values" }, all.map((value) => valueRow(value, axis)));
}
