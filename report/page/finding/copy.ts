// What can be copied of a finding: its link, a SARIF log of its own, its record.

import { announce, h } from "../dom";
import { stringify } from "../json";
import type { Run } from "../model";
import { componentOf } from "./rule";

const SCHEMA = "https://docs.oasis-open.org/sarif/sarif/v2.1.0/errata01/os/schemas/sarif-schema-2.1.0.json";

/** A SARIF log with one result and its run, of whose rules only that of the result stays. */
export function logOf(result: Record<string, any>, run: Run): unknown {
    const copy = structuredCloneOfJson(run);
    const found = componentOf(result, run);
    for (const component of [copy.tool?.driver, ...(copy.tool?.extensions ?? [])]) {
        if (component) delete component.rules;
    }
    const own = { ...result };
    if (found) {
        const component = found.extension === null ? copy.tool.driver : copy.tool.extensions[found.extension];
        component.rules = [found.rule];
        if (own.ruleIndex !== undefined) own.ruleIndex = 0;
        if (own.rule?.index !== undefined) own.rule = { ...own.rule, index: 0 };
    }
    return { $schema: SCHEMA, version: "2.1.0", runs: [{ ...copy, results: [own] }] };
}

/** Copies the objects of JSON; numbers that are kept exactly are shared. */
function structuredCloneOfJson(run: Run): Run {
    const tool = run.tool && { ...run.tool };
    if (tool?.driver) tool.driver = { ...tool.driver };
    if (tool?.extensions) tool.extensions = tool.extensions.map((extension: object) => ({ ...extension }));
    return tool ? { ...run, tool } : { ...run };
}

function copyBySelection(text: string): boolean {
    const area = h("textarea", { class: "visually-hidden", "aria-hidden": "true" });
    area.value = text;
    const focused = document.activeElement;
    document.body.append(area);
    area.select();
    const copied = document.execCommand("copy");
    area.remove();
    if (focused instanceof HTMLElement) focused.focus({ preventScroll: true });
    return copied;
}

/** Puts a text on the clipboard and says so. */
export async function copy(text: string, what: string): Promise<void> {
    try {
        await navigator.clipboard.writeText(text);
        announce(`${what} copied`);
    } catch {
        announce(copyBySelection(text) ? `${what} copied` : "The browser did not allow copying");
    }
}

/** A button that copies. */
export function copyButton(what: string, text: () => unknown): HTMLElement {
    const button = h("button", {
        type: "button",
        onclick: async () => {
            const value = text();
            await copy(typeof value === "string" ? value : stringify(value), what);
            button.classList.add("done");
            setTimeout(() => button.classList.remove("done"), 1500);
        },
    }, `Copy ${what}`);
    return button;
}
