// The smaller parts of a finding, each a section that is left out where there is nothing to say.

import { type Child, h, own } from "../dom";
import { renderMarkdown } from "../markdown";
import { renderMessage } from "../message";
import type { Detail, Model, Run } from "../model";
import { functionOf, type Location, messageOf, position, type Region, regionOf, uriOf } from "../place";
import { cut } from "../text";
import { renderRanges } from "./ranges";

export type Section = HTMLElement | null;

/** A section with a heading, null without content. */
export function section(title: string, ...children: (Child | Child[])[]): Section {
    const content = children.flat().filter((child) => child);
    return content.length > 0 ? h("section", { class: "part" }, h("h3", {}, title), content) : null;
}

/** Rows of a name and a value. */
export function pairs(rows: [string, unknown][]): HTMLElement | null {
    const shown = rows.filter(([, value]) => value !== undefined && value !== null && value !== "");
    if (shown.length === 0) return null;
    const row = ([name, value]: [string, unknown]): HTMLElement =>
        h("div", {}, h("dt", {}, own(name)), h("dd", {}, value instanceof Node ? value : own(cut(String(value), 2000))));
    return h("dl", { class: "pairs" }, shown.map(row));
}

/** A place as text, as in "src/a.c:12:5 in f". */
export function placeText(model: Model, location: Location): HTMLElement {
    const name = functionOf(location);
    const uri = uriOf(location);
    return h("span", { class: "place" }, own(uri ? model.shortened(uri) : "no file", { title: uri }),
        position(regionOf(location)), name ? [h("span", { class: "hint" }, " in "), own(name)] : null);
}

type Follow = (id: number) => (() => void) | undefined;

/** A list of locations; each shows its source when it is picked. */
export function locations(model: Model, title: string, list: Location[], follow: Follow, pick: (location: Location) => void): Section {
    const items = list.map((location) => {
        const payload = location.properties?.payload;
        return h("li", {}, h("button", { type: "button", class: "link", onclick: () => pick(location) }, placeText(model, location)),
            messageOf(location) ? [" ", renderMessage(messageOf(location), follow)] : null,
            payload !== undefined ? renderRanges(payload) : null);
    });
    return section(title, items.length > 0 ? h("ul", { class: "locations" }, items) : null);
}

/** The values that information records know. */
export function values(model: Model, list: Location[], pick: (location: Location) => void): Section {
    const items = list.flatMap((location) => {
        const ranges = renderRanges(location.properties?.payload);
        if (!ranges) return [];
        const name = h("button", { type: "button", class: "link", onclick: () => pick(location) }, placeText(model, location));
        return [h("li", {}, h("p", {}, own(messageOf(location)), " ", name), ranges)];
    });
    return section("Values known", items.length > 0 ? h("ul", { class: "locations" }, items) : null);
}

export function changes(detail: Detail): Section {
    const rows = (detail.changes ?? []).map((change) =>
        h("tr", {}, h("th", { scope: "row" }, own(change.path, { class: "code" })), h("td", {}, h("del", {}, jsonText(change.old))),
            h("td", {}, h("ins", {}, jsonText(change.new)))));
    if (rows.length === 0) return null;
    const heads = ["What", "Before", "Now"].map((name) => h("th", { scope: "col" }, name));
    return section("Changed", h("div", { class: "scroll", tabindex: 0, role: "region", "aria-label": "Changes" },
        h("table", {}, h("thead", {}, h("tr", {}, heads)), h("tbody", {}, rows))));
}

function jsonText(value: unknown): Child {
    if (value === undefined || value === null) return "";
    return own(cut(typeof value === "string" ? value : JSON.stringify(value), 1000));
}

export function suppressions(result: Record<string, any>): Section {
    const items = (result.suppressions ?? []).map((one: any) => {
        const justification = typeof one.justification === "string" ? one.justification : "";
        const status = one.status ? `, ${one.status}` : "";
        return h("li", {}, own(`${one.kind ?? "external"}${status}`), justification ? [": ", own(justification)] : null);
    });
    return section("Suppressions", items.length > 0 ? h("ul", {}, items) : null);
}

type LineText = (uri: string, region: Region) => Promise<string[]>;

async function replacement(model: Model, uri: string, one: any, linesOf: LineText): Promise<HTMLElement> {
    const region: Region = one.deletedRegion ?? {};
    const removed = await linesOf(uri, region);
    const inserted = typeof one.insertedContent?.text === "string" ? one.insertedContent.text : "";
    return h("div", { class: "replacement" }, h("p", {}, own(model.shortened(uri)), position(region)),
        removed.length > 0 ? h("pre", { class: "removed", tabindex: 0 }, removed.map((line) => h("del", {}, own(`− ${line}\n`)))) : null,
        inserted !== "" ? h("pre", { class: "inserted", tabindex: 0 }, inserted.split("\n").map((line: string) => h("ins", {}, own(`+ ${line}\n`)))) : null);
}

/** Changes of files that would mend the finding; `linesOf` gives the text that a region has now. */
export async function fixes(model: Model, result: Record<string, any>, linesOf: LineText): Promise<Section> {
    const items: HTMLElement[] = [];
    for (const fix of result.fixes ?? []) {
        const parts: HTMLElement[] = [];
        for (const change of fix.artifactChanges ?? []) {
            const uri = String(change.artifactLocation?.uri ?? "");
            for (const one of change.replacements ?? []) parts.push(await replacement(model, uri, one, linesOf));
        }
        items.push(h("li", {}, fix.description ? h("p", {}, own(messageOf({ message: fix.description }))) : null, parts));
    }
    return section("Fixes", items.length > 0 ? h("ul", { class: "fixes" }, items) : null);
}

export function stacks(model: Model, result: Record<string, any>, pick: (location: Location) => void): Section {
    const items = (result.stacks ?? []).map((stack: any) => {
        const frames = (stack.frames ?? []).map((frame: any) => {
            const location: Location = frame.location ?? {};
            const place = h("button", { type: "button", class: "link", onclick: () => pick(location) }, placeText(model, location));
            return h("li", {}, place, messageOf(location) ? [" ", own(messageOf(location))] : null);
        });
        return h("li", {}, messageOf(stack) ? own(messageOf(stack)) : null, h("ol", {}, frames));
    });
    return section("Stacks", items.length > 0 ? h("ul", { class: "locations" }, items) : null);
}

function componentName(reference: any, run: Run | undefined): string {
    const component = reference.toolComponent ?? {};
    const found = run?.taxonomies?.[component.index] ?? run?.tool?.extensions?.[component.index];
    return String(component.name ?? found?.name ?? "");
}

export function classification(result: Record<string, any>, run: Run | undefined, more: [string, unknown][]): Section {
    const taxa = (result.taxa ?? []).map((one: any) => h("li", {}, own([componentName(one, run), one.id].filter((part) => part).join(" "))));
    return section("Classification", pairs(more), taxa.length > 0 ? h("ul", {}, taxa) : null);
}

export function fingerprints(result: Record<string, any>): Section {
    const rows = [...Object.entries(result.fingerprints ?? {}), ...Object.entries(result.partialFingerprints ?? {})];
    return section("Fingerprints", pairs(rows));
}

/** What the log says as markdown, where that is more than the text. */
export function markdownMessage(result: Record<string, any>): Section {
    const { text, markdown } = result.message ?? {};
    return typeof markdown === "string" && markdown !== text ? section("Message in full", renderMarkdown(markdown)) : null;
}

/** Where the finding comes from: tool, run, result set. */
export function origin(model: Model, detail: Detail, run: Run | undefined): Section {
    const driver = run?.tool?.driver ?? {};
    const invocation = run?.invocations?.[0] ?? {};
    const sets = detail.old ? model.index.old_sets : model.index.sets;
    const revision = (run?.versionControlProvenance ?? [])[0];
    return section("Origin", pairs([
        ["Tool", [driver.name, driver.version ?? driver.semanticVersion].filter((part) => part).join(" ")],
        ["Run", run?.automationDetails?.id],
        ["Command", invocation.commandLine],
        ["Ended", invocation.endTimeUtc],
        ["Revision", revision && [revision.repositoryUri, revision.revisionId].filter((part: unknown) => part).join(" ")],
        ["Result set", sets?.[detail.set ?? 0]?.name],
        ["Key", detail.key],
        ["First seen", detail.first_seen],
        ["Last seen", detail.last_seen],
    ]));
}
