// One finding: what is wrong, where, and how the program comes there.

import { announce, append, type Child, fill, h, own } from "../dom";
import { icon } from "../icons";
import { messageText, renderMessage } from "../message";
import type { Detail, Run } from "../model";
import type { Page } from "../page";
import { type Location, messageOf, position, type Region, regionOf, uriOf } from "../place";
import { textOf } from "../table";
import { counted, cut } from "../text";
import { copyButton, logOf } from "./copy";
import { type Flow, type FlowLocation, flowsOf, stepText } from "./flows";
import { fileLines } from "./lines";
import * as parts from "./parts";
import { renderRanges } from "./ranges";
import { componentOf, renderRule } from "./rule";
import { type Mark, SourcePane } from "./source";
import { tree } from "./tree";

const LONGEST_MESSAGE = 20_000;
const MOST_STEPS = 2000;

export class FindingView {
    readonly element = h("article", { class: "finding", "aria-labelledby": "finding-title" });
    private readonly flows: Flow[];
    private readonly run: Run | undefined;
    private readonly source: SourcePane;
    private readonly steps = h("div", { class: "steps" });
    private flow = 0;
    private step = -1;

    constructor(
        private readonly page: Page,
        readonly finding: number,
        private readonly detail: Detail,
    ) {
        const { model } = page;
        this.run = model.runs[model.table.columns.get("run")?.[finding] ?? 0];
        this.flows = flowsOf(detail.result);
        this.source = new SourcePane(model, this.run?.columnKind === "unicodeCodePoints");
    }

    private get result(): Record<string, any> {
        return this.detail.result;
    }

    private get primary(): Location {
        return this.result.locations?.[0] ?? {};
    }

    private get related(): Location[] {
        return this.result.relatedLocations ?? [];
    }

    private text(dimension: string): string {
        return textOf(this.page.model.table, dimension, this.finding);
    }

    /** Builds the view; the source is loaded when this ends. */
    async open(): Promise<void> {
        const { state } = this.page;
        append(this.element, this.header(), this.body());
        this.flow = Math.min(state.flow, Math.max(0, this.flows.length - 1));
        this.drawSteps();
        this.markAll();
        const steps = this.flows[this.flow]?.steps ?? [];
        if (state.step !== null && state.step < steps.length) await this.showStep(state.step, false);
        else await this.source.show(this.primaryMark());
        const after = this.element.querySelector(".source-column")!;
        append(after, await parts.fixes(this.page.model, this.result, (uri, region) => this.linesOf(uri, region)));
    }

    private badges(): Child[] {
        const level = this.text("level");
        const list: Child[] = [h("span", { class: `badge level level-${level}` }, icon(level), level || "no level")];
        const state = this.text("state");
        if (state) list.push(h("span", { class: "badge" }, icon(state), state));
        if (this.text("suppressed") === "yes") list.push(h("span", { class: "badge" }, "suppressed"));
        const kind = this.text("kind");
        if (kind && kind !== "fail") list.push(h("span", { class: "badge" }, own(kind)));
        list.push(own(this.text("rule") || "no rule", { class: "rule-id" }));
        return list;
    }

    private header(): HTMLElement {
        const text = messageOf(this.result);
        const shown = text.slice(0, LONGEST_MESSAGE);
        const message = renderMessage(shown || this.text("rule"), (id) => this.follow(id));
        if (text.length > shown.length) append(message, h("span", { class: "hint" }, ` … ${counted(text.length - shown.length, "more character")}`));
        const long = text.length > 200 || text.includes("\n");
        const title = h("h2", { id: "finding-title", tabindex: -1, class: long ? "long" : false }, message);
        const place = h("p", { class: "finding-place" }, h("button", { type: "button", class: "link", onclick: () => void this.source.show(this.primaryMark()) },
            parts.placeText(this.page.model, this.primary)));
        return h("header", {}, h("p", { class: "badges" }, this.badges()), title, place, this.buttons());
    }

    private buttons(): HTMLElement {
        return h("div", { class: "buttons" },
            copyButton("link", () => this.address()),
            this.run ? copyButton("SARIF", () => logOf(this.result, this.run!)) : null,
            this.detail.record ? copyButton("JSON", () => this.detail.record) : null);
    }

    private address(): string {
        return `${location.href.replace(/#.*$/s, "")}${this.page.link({})}`;
    }

    private body(): Child[] {
        const { model } = this.page;
        const pick = (place: Location): void => this.showRelated(place);
        const more = (this.result.locations ?? []).slice(1);
        const knows = (place: Location): boolean => place.properties?.payload !== undefined && renderRanges(place.properties.payload) !== null;
        const rule = componentOf(this.result, this.run)?.rule;
        return [
            h("div", { class: this.flows.length > 0 ? "evidence with-steps" : "evidence" }, this.flows.length > 0 ? this.steps : null,
                h("div", { class: "source-column" }, this.source.element)),
            parts.changes(this.detail),
            parts.markdownMessage(this.result),
            parts.values(model, this.related.filter(knows), pick),
            parts.locations(model, "Related locations", this.related.filter((place) => !knows(place)), (id) => this.follow(id), pick),
            parts.locations(model, "Further locations", more, (id) => this.follow(id), pick),
            parts.suppressions(this.result),
            parts.stacks(model, this.result, pick),
            renderRule(rule),
            parts.classification(this.result, this.run, this.classes()),
            parts.fingerprints(this.result),
            parts.origin(model, this.detail, this.run),
            this.everything(),
        ];
    }

    private classes(): [string, unknown][] {
        const { table } = this.page.model;
        const { result } = this;
        return [
            ["Category", this.text("category")],
            ["Class", this.text("class")],
            ["Identity", table.columns.get("identity")?.[this.finding]],
            ["Rank", result.rank],
            ["Occurrences", result.occurrenceCount],
            ["GUID", result.guid],
        ];
    }

    private everything(): HTMLElement {
        const { record } = this.detail;
        const rule = componentOf(this.result, this.run)?.rule;
        return h("details", { class: "part" }, h("summary", {}, h("h3", {}, "Everything else")),
            tree("result", this.result), record ? [tree("key", record[0]), tree("record", record[1])] : null, rule ? tree("rule", rule) : null);
    }

    private follow(id: number): (() => void) | undefined {
        const all = [...this.related, ...(this.result.locations ?? [])] as Location[];
        const place = all.find((one) => one.id === id);
        return place && (() => this.showRelated(place));
    }

    private primaryMark(): Mark {
        return this.marks.find((mark) => mark.kind === "finding") ?? this.findingMark();
    }

    private marks: Mark[] = [];

    private findingMark(): Mark {
        return { kind: "finding", location: this.primary, label: "", text: messageText(messageOf(this.result)) };
    }

    private markAll(): void {
        const steps = (this.flows[this.flow]?.steps ?? []).slice(0, MOST_STEPS);
        const ofSteps = steps.map((step, i): Mark => ({
            kind: "step",
            location: step.location ?? {},
            label: String(i + 1),
            text: stepText(step),
            pick: () => void this.showStep(i, true),
        }));
        this.marks = [this.findingMark(), ...ofSteps];
        this.source.setMarks(this.marks);
    }

    private showRelated(place: Location): void {
        const label = place.id === undefined || place.id < 0 ? "•" : `(${place.id})`;
        void this.source.show({ kind: "related", location: place, label, text: messageOf(place) });
        announce(`Source of ${uriOf(place)}${position(regionOf(place))}`);
        this.source.element.scrollIntoView({ block: "nearest" });
    }

    private async linesOf(uri: string, region: Region): Promise<string[]> {
        const source = await this.page.model.source(uri).catch(() => null);
        if (source?.text === undefined || !region.startLine) return [];
        return fileLines(source.text).lines.slice(region.startLine - 1, Math.min(region.endLine ?? region.startLine, region.startLine + 100));
    }

    private drawSteps(): void {
        const flow = this.flows[this.flow];
        if (!flow) return;
        const choice = h("select", { onchange: (event: Event) => this.showFlow(Number((event.target as HTMLSelectElement).value)) },
            this.flows.map((one, i) => h("option", { value: i, selected: i === this.flow }, `${cut(one.name, 80)}, ${counted(one.steps.length, "step")}`)));
        const several = this.flows.length > 1;
        const title = several ? h("label", {}, h("span", { class: "visually-hidden" }, "Flow "), choice) : h("h3", {}, counted(flow.steps.length, "step"));
        const move = (distance: 1 | -1, text: string, sign: string): HTMLElement =>
            h("button", { type: "button", title: text, "aria-label": text, onclick: () => this.stepBy(distance) }, sign);
        const list = h("ol", { tabindex: -1 }, flow.steps.slice(0, MOST_STEPS).map((step, i) => this.stepItem(step, i)));
        const rest = flow.steps.length - MOST_STEPS;
        fill(this.steps, h("div", { class: "steps-head" }, title, move(-1, "Previous step (p)", "↑"), move(1, "Next step (n)", "↓")), list,
            rest > 0 ? h("p", { class: "hint" }, counted(rest, "more step"), " in the tree below.") : null);
    }

    private stepItem(step: FlowLocation, number: number): HTMLElement {
        const place: Location = step.location ?? {};
        const before = this.flows[this.flow].steps[number - 1]?.location;
        const elsewhere = uriOf(place) !== uriOf(before);
        const text = stepText(step);
        const payload = step.properties?.payload;
        const button = h("button", { type: "button", class: "step", onclick: () => void this.showStep(number, true) },
            h("span", { class: "badge-number" }, number + 1),
            h("span", { class: "step-text" }, text ? own(cut(messageText(text), 500)) : h("span", { class: "hint" }, "step")),
            h("span", { class: "step-place" }, elsewhere || !regionOf(place).startLine ? parts.placeText(this.page.model, place) : position(regionOf(place))));
        const nesting = Math.min(12, Math.max(0, Number(step.nestingLevel) || 0));
        button.style.paddingInlineStart = nesting ? `${0.5 + nesting * 0.6}rem` : "";
        return h("li", { class: step.importance === "unimportant" ? "unimportant" : false }, button, payload !== undefined ? renderRanges(payload) : null);
    }

    private showFlow(flow: number): void {
        this.flow = flow;
        this.step = -1;
        this.drawSteps();
        this.markAll();
        this.page.go({ flow, step: null }, true);
        void this.source.show(this.primaryMark());
        this.steps.querySelector("select")?.focus();
    }

    private async showStep(number: number, remember: boolean): Promise<void> {
        const { steps } = this.flows[this.flow];
        this.step = number;
        const items = this.steps.querySelectorAll("ol > li > .step");
        items.forEach((item, i) => (i === number ? item.setAttribute("aria-current", "step") : item.removeAttribute("aria-current")));
        this.scrollSteps(items[number]);
        if (remember) this.page.go({ flow: this.flow, step: number }, true);
        const step = steps[number];
        announce(`Step ${number + 1} of ${steps.length}: ${stepText(step)} ${uriOf(step.location)}${position(regionOf(step.location))}`);
        await this.source.show(this.marks[number + 1] ?? this.primaryMark());
    }

    private scrollSteps(item: Element | undefined): void {
        const list = this.steps.querySelector("ol");
        if (!item || !list) return;
        const box = item.getBoundingClientRect();
        const frame = list.getBoundingClientRect();
        if (box.top < frame.top) list.scrollTop += box.top - frame.top;
        else if (box.bottom > frame.bottom) list.scrollTop += box.bottom - frame.bottom;
    }

    /** Goes to the next or previous step of the flow; false if there is no flow. */
    stepBy(distance: 1 | -1): boolean {
        const flow = this.flows[this.flow];
        if (!flow) return false;
        const last = Math.min(flow.steps.length, MOST_STEPS) - 1;
        const next = this.step < 0 ? (distance > 0 ? 0 : last) : Math.max(0, Math.min(last, this.step + distance));
        void this.showStep(next, true);
        return true;
    }

    /** Goes to the next or previous flow. */
    flowBy(distance: 1 | -1): boolean {
        if (this.flows.length < 2) return false;
        this.showFlow((this.flow + distance + this.flows.length) % this.flows.length);
        return true;
    }

    focus(): void {
        this.element.querySelector<HTMLElement>("#finding-title")?.focus({ preventScroll: true });
    }
}
