// The treemap of directories: the area is the number of findings, the colour how many there are in a file.

import { hierarchy, type Rectangle, treemap } from "d3-hierarchy";
import { h, own } from "./dom";
import { count, counted, plain } from "./text";

/** Findings below a path. */
export interface Directory {
    path: string;
    findings: number;
    files: number;
    children: Directory[];
}

const MOST_LEVELS = 50;
const TOP = new RegExp(`^(?:[^/]*/){0,${MOST_LEVELS}}`);

/** The directory of a URI, or the one that is so many levels deep. */
function topOf(uri: string): string {
    return TOP.exec(uri)![0];
}

/** Makes the tree of directories of files with these counts; directories with one directory in them are joined. */
export function directoryTree(uris: string[], counts: Uint32Array): Directory {
    const root: Directory = { path: "", findings: 0, files: 0, children: [] };
    const known = new Map<string, Directory>([["", root]]);
    const find = (path: string): Directory => {
        let directory = known.get(path);
        if (directory) return directory;
        directory = { path, findings: 0, files: 0, children: [] };
        known.set(path, directory);
        find(path.slice(0, path.lastIndexOf("/", path.length - 2) + 1)).children.push(directory);
        return directory;
    };
    counts.forEach((findings, number) => {
        if (findings === 0) return;
        const directory = find(topOf(uris[number]));
        directory.findings += findings;
        directory.files += 1;
    });
    return joined(root);
}

function joined(directory: Directory): Directory {
    if (directory.findings === 0 && directory.children.length === 1) return joined(directory.children[0]);
    return { ...directory, children: directory.children.map(joined) };
}

/** What is in a directory and in those below it. */
export function total(directory: Directory): { findings: number; files: number } {
    let { findings, files } = directory;
    for (const child of directory.children.map(total)) {
        findings += child.findings;
        files += child.files;
    }
    return { findings, files };
}

/** A cell: all of a directory, or only the files that are in it directly. */
export interface Cell {
    path: string;
    direct: boolean;
    findings: number;
    files: number;
}

const MOST_CELLS = 80;

function cellOf(directory: Directory): Cell {
    return { path: directory.path, direct: false, ...total(directory) };
}

function split(directory: Directory): Cell[] {
    const cells = directory.children.map(cellOf);
    if (directory.findings === 0) return cells;
    return [...cells, { path: directory.path, direct: true, findings: directory.findings, files: directory.files }];
}

/** The cells of a tree: the largest directories are split while there is room for what is in them. */
export function cells(root: Directory): Cell[] {
    const known = new Map<string, Directory>();
    const note = (directory: Directory): void => {
        known.set(directory.path, directory);
        directory.children.forEach(note);
    };
    note(root);
    let found = split(root);
    for (let most = 0; most < MOST_CELLS; ++most) {
        const splittable = found.filter((cell) => !cell.direct && known.get(cell.path)!.children.length > 0);
        if (splittable.length === 0) break;
        const largest = splittable.reduce((a, b) => (b.findings > a.findings ? b : a));
        const parts = split(known.get(largest.path)!);
        if (found.length + parts.length > MOST_CELLS) break;
        found = found.filter((cell) => cell !== largest).concat(parts);
    }
    return found;
}

const STEPS = 5;

/** For densities the steps of the colours: the upper limits of all but the last. */
export function densitySteps(densities: number[]): number[] {
    const least = Math.min(...densities);
    const most = Math.max(...densities);
    if (!(most > least)) return [];
    const ratio = (most / least) ** (1 / STEPS);
    return Array.from({ length: STEPS - 1 }, (_none, step) => least * ratio ** (step + 1));
}

const density = (cell: Cell): number => cell.findings / cell.files;
const stepOf = (limits: number[], value: number): number => limits.filter((limit) => value > limit).length;
const rounded = (value: number): string => (value < 10 ? value.toFixed(1) : count(Math.round(value)));

function percent(value: number): string {
    return `${(value * 100).toFixed(3)}%`;
}

function cellButton({ data, x0, x1, y0, y1 }: Rectangle<Cell>, limits: number[], pick: (cell: Cell) => void): HTMLElement {
    const name = data.direct ? `${data.path}*` : data.path;
    const text = `${counted(data.findings, "finding")} in ${counted(data.files, "file")}, ${rounded(density(data))} in a file`;
    const button = h("button", {
        type: "button",
        class: `cell density-${stepOf(limits, density(data))}`,
        title: `${name}\n${text}`,
        "aria-label": `${plain(name) || "no directory"}: ${text}`,
        onclick: () => pick(data),
    });
    if (x1 - x0 > 0.07 && y1 - y0 > 0.06) button.append(h("span", { class: "cell-name" }, own(shortName(data))));
    if (x1 - x0 > 0.07 && y1 - y0 > 0.12) button.append(h("span", {}, count(data.findings)));
    Object.assign(button.style, { left: percent(x0), top: percent(y0), width: percent(x1 - x0), height: percent(y1 - y0) });
    return button;
}

function shortName(cell: Cell): string {
    const parts = cell.path.split("/").filter((part) => part !== "");
    const name = parts.slice(-2).join("/") || "(no directory)";
    return cell.direct && cell.path ? `${name}/*` : name;
}

function legend(limits: number[]): HTMLElement {
    if (limits.length === 0) return h("p", { class: "hint" }, "Area: findings.");
    const items = Array.from({ length: STEPS }, (_none, step) => {
        const text = step === 0 ? `up to ${rounded(limits[0])}` : `more than ${rounded(limits[step - 1])}`;
        return h("li", {}, h("span", { class: `swatch density-${step}`, "aria-hidden": "true" }), text);
    });
    return h("div", { class: "legend" }, h("span", {}, "Area: findings. Colour: findings in a file"), h("ul", {}, items));
}

/** The treemap; `pick` is called with the cell that is clicked. */
export function renderTreemap(root: Directory, pick: (cell: Cell) => void): HTMLElement | null {
    const found = cells(root).filter((cell) => cell.findings > 0);
    if (found.length < 2) return null;
    const limits = densitySteps(found.map(density));
    const whole: Cell = { path: "", direct: false, findings: 0, files: 0 };
    const tree = hierarchy(whole, (cell) => (cell === whole ? found : null));
    const layout = treemap<Cell>().size([1, 1]);
    const leaves = layout(tree.sum((cell) => cell.findings).sort((a, b) => b.value - a.value)).leaves();
    const buttons = leaves.map((leaf) => cellButton(leaf, limits, pick));
    const map = h("div", { class: "treemap", role: "group", "aria-label": "Directories by findings" }, buttons);
    return h("section", { class: "card wide" }, h("h2", {}, "Where they are"), map, legend(limits));
}
