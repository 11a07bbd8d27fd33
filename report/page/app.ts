// The frame of the page: header, filter, and the view that the address names.

import { announce, append, type Child, fill, h, own } from "./dom";
import { loadText, isSingleFile } from "./chunks";
import { FilterBox } from "./filter_box";
import { FindingView } from "./finding/view";
import { formatHash, type Names, parseHash, type State } from "./hash";
import { type Key, listen, showKeys } from "./keys";
import { FindingList, GROUPS, SORTS } from "./list";
import type { Model } from "./model";
import { renderOverview } from "./overview";
import type { Page } from "./page";
import { count, counted } from "./text";
import type { Term } from "./filter";

export class App implements Page {
    state: State;
    private readonly names: Names;
    private readonly box: FilterBox;
    private readonly list: FindingList;
    private readonly nav = h("nav", { "aria-label": "Views" });
    private readonly counter = h("p", { class: "counter" });
    private readonly main = h("main", { id: "main", tabindex: -1 });
    private readonly detail = h("div", { class: "detail-pane" });
    private readonly keys: Key[];
    private view: FindingView | null = null;
    private opening = -1;
    private filteredBy = "[]";
    private said = 0;

    constructor(
        readonly model: Model,
        root: HTMLElement,
    ) {
        this.names = {
            fields: new Set(model.table.dimensions.keys()),
            sorts: new Set(SORTS.map(([name]) => name)),
            groups: new Set(GROUPS.map(([name]) => name)),
            findings: model.table.count,
        };
        this.state = parseHash(location.hash, this.names);
        this.box = new FilterBox(this, (terms) => this.preview(terms));
        this.list = new FindingList(this);
        this.keys = this.makeKeys();
        fill(root, this.header(), this.main, this.footer());
        listen(this.keys);
        addEventListener("hashchange", () => this.read());
        this.show();
    }

    private header(): HTMLElement {
        const keys = h("button", { type: "button", class: "help", title: "Keys (?)", "aria-label": "Keys", onclick: () => showKeys(this.keys) }, "?");
        return h("header", { class: "top" }, h("a", { class: "skip", href: "#main", onclick: (event: Event) => this.skip(event) }, "To the findings"),
            h("div", { class: "bar-top" }, h("h1", {}, own(this.model.index.title || "Report")), this.nav, keys),
            h("div", { class: "bar-filter" }, this.box.element, this.counter));
    }

    private skip(event: Event): void {
        event.preventDefault();
        this.main.focus();
    }

    private footer(): HTMLElement {
        const { sets, old_sets: old, source } = this.model.index;
        const names = (list: { name: string }[]): Child[] => list.slice(0, 10).flatMap((set, i) => [i ? ", " : null, own(set.name)]);
        const skipped = Object.entries(source?.skipped ?? {});
        const read = Object.keys(source?.files ?? {}).length - skipped.reduce((sum, [, many]) => sum + many, 0);
        const left = skipped.flatMap(([reason, many], i) => [i ? ", " : "; left out: ", own(`${counted(many, "file")} (${reason})`)]);
        const files = source ? h("p", {}, "Source of ", counted(read, "file"), left) : null;
        const licences = isSingleFile()
            ? h("button", { type: "button", class: "link", onclick: () => void this.showLicences() }, "Licences")
            : h("a", { href: "licences.txt" }, "Licences");
        return h("footer", {}, h("p", {}, "Of ", names(sets), old ? [", compared with ", ...names(old)] : null), files, h("p", {}, licences));
    }

    private async showLicences(): Promise<void> {
        const text = await loadText("licences");
        const dialog = h("dialog", { "aria-label": "Licences" }, h("form", { method: "dialog" }, h("button", { type: "submit" }, "Close")), h("pre", {}, text));
        dialog.addEventListener("close", () => dialog.remove());
        document.body.append(dialog);
        dialog.showModal();
    }

    link(change: Partial<State>): string {
        return formatHash({ ...this.state, ...change });
    }

    go(change: Partial<State>, replace = false): void {
        this.state = { ...this.state, ...change };
        const hash = formatHash(this.state);
        if (hash !== location.hash && !(hash === "#" && location.hash === "")) {
            if (replace) location.replace(hash);
            else location.hash = hash;
        }
        this.show();
    }

    /** Shows what the address says; it says what is shown already after `go`. */
    private read(): void {
        const state = parseHash(location.hash, this.names);
        if (formatHash(state) === formatHash(this.state)) return;
        const opened = state.finding !== null && state.finding !== this.state.finding;
        this.state = state;
        if (opened) this.view = null;
        this.show();
    }

    private preview(terms: Term[]): void {
        this.state = { ...this.state, terms };
        this.show();
    }

    private filter(): void {
        const terms = JSON.stringify(this.state.terms);
        if (terms === this.filteredBy) return;
        this.filteredBy = terms;
        this.model.filter(this.state.terms);
    }

    private show(): void {
        this.filter();
        this.box.update();
        this.drawNav();
        this.drawCounter();
        if (this.state.view === "overview") this.showOverview();
        else this.showFindings();
    }

    /** Draws anew what depends on messages, when these have come. */
    messagesCame(): void {
        this.filteredBy = "";
        this.show();
    }

    private drawNav(): void {
        const current = (view: string): "page" | null => (this.state.view === view ? "page" : null);
        fill(this.nav,
            h("a", { href: this.link({ view: "overview", finding: null }), "aria-current": current("overview") }, "Overview"),
            h("a", { href: this.link({ view: "findings", finding: null }), "aria-current": current("findings") }, "Findings"));
    }

    private drawCounter(): void {
        const { count: left } = this.model.outcome;
        const all = this.model.table.count;
        const text = left === all ? counted(all, "finding") : `${count(left)} of ${counted(all, "finding")}`;
        fill(this.counter, text);
        clearTimeout(this.said);
        this.said = window.setTimeout(() => announce(text), 500);
    }

    private showOverview(): void {
        this.view = null;
        this.opening = -1;
        const focused = document.activeElement instanceof HTMLElement && this.main.contains(document.activeElement) ? document.activeElement.dataset.focus : undefined;
        this.main.className = "";
        fill(this.main, renderOverview(this));
        if (focused === undefined) return;
        const again = [...this.main.querySelectorAll<HTMLElement>("[data-focus]")].find((element) => element.dataset.focus === focused);
        (again ?? this.main).focus({ preventScroll: true });
    }

    private showFindings(): void {
        if (!this.main.contains(this.list.element)) fill(this.main, this.list.element, this.detail);
        const { finding } = this.state;
        this.main.className = finding === null ? "findings" : "findings with-detail";
        this.list.update();
        if (finding === null) this.close();
        else if (this.opening !== finding || this.view === null) void this.open(finding);
        else this.drawDetailBar(finding);
    }

    private close(): void {
        this.view = null;
        this.opening = -1;
        this.detail.replaceChildren();
    }

    private readonly detailBar = h("div", { class: "detail-bar" });

    private drawDetailBar(finding: number): void {
        const move = (distance: 1 | -1, text: string, sign: string): HTMLElement =>
            h("button", { type: "button", title: text, "aria-label": text, onclick: () => this.list.openNext(distance) }, sign);
        if (this.detailBar.contains(document.activeElement)) {
            this.detailBar.querySelector(".counter")?.replaceChildren(this.list.placeOf(finding));
            return;
        }
        fill(this.detailBar, h("button", { type: "button", onclick: () => this.back() }, "← List"), move(-1, "Previous finding (k)", "‹"), move(1, "Next finding (j)", "›"),
            h("span", { class: "counter" }, this.list.placeOf(finding) || "not in the list"));
    }

    private async open(finding: number): Promise<void> {
        this.opening = finding;
        const keep = this.box.has(document.activeElement) || this.detailBar.contains(document.activeElement);
        try {
            const view = new FindingView(this, finding, await this.model.detail(finding));
            if (this.opening !== finding) return;
            this.view = view;
            this.drawDetailBar(finding);
            if (this.detailBar.parentNode !== this.detail) fill(this.detail, this.detailBar, view.element);
            else this.detail.replaceChildren(this.detailBar, view.element);
            if (keep) this.detailBar.querySelector<HTMLElement>("button:focus")?.focus();
            await view.open();
            performance.mark("bradep-finding");
            this.detail.scrollTop = 0;
            if (!keep) view.focus();
        } catch (error) {
            if (this.opening === finding) fill(this.detail, this.detailBar, h("p", { class: "error", role: "alert" }, (error as Error).message));
        }
    }

    private back(): void {
        this.go({ finding: null, flow: 0, step: null });
        this.list.focus();
    }

    private escape(): boolean {
        if (this.box.has(document.activeElement)) (this.state.view === "findings" ? this.list : this.main).focus();
        else if (this.state.finding !== null) this.back();
        else return false;
        return true;
    }

    private makeKeys(): Key[] {
        const inList = (): boolean => this.state.view === "findings";
        const next = (distance: 1 | -1) => (): boolean | void => (inList() ? this.list.openNext(distance) : false);
        return [
            { keys: ["/"], text: "Write a filter", action: () => this.box.focus() },
            { keys: ["o"], text: "Overview", action: () => this.go({ view: "overview", finding: null }) },
            { keys: ["l"], text: "List of findings", action: () => this.toList() },
            { keys: ["↑", "↓", "Home", "End"], text: "Move in the list" },
            { keys: ["←", "→"], text: "Fold and unfold a group of the list" },
            { keys: ["Enter"], text: "Open the finding" },
            { keys: ["j"], text: "Next finding", action: next(1) },
            { keys: ["k"], text: "Previous finding", action: next(-1) },
            { keys: ["n"], text: "Next step of the flow", action: () => this.view?.stepBy(1) ?? false },
            { keys: ["p"], text: "Previous step of the flow", action: () => this.view?.stepBy(-1) ?? false },
            { keys: ["f"], text: "Next flow", action: () => this.view?.flowBy(1) ?? false },
            { keys: ["Escape"], text: "Back to the list", action: () => this.escape() },
            { keys: ["?"], text: "These keys", action: () => showKeys(this.keys) },
        ];
    }

    private toList(): void {
        this.go({ view: "findings", finding: null });
        this.list.focus();
    }
}

/** Shows that the report can't be shown. */
export function showFailure(root: HTMLElement, error: Error): void {
    const advice = "If you copied or unpacked the report, copy the whole directory, with its folder “data”.";
    append(root, h("div", { class: "error", role: "alert" }, h("h1", {}, "This report can't be shown"), h("p", {}, error.message), h("p", {}, advice)));
}
