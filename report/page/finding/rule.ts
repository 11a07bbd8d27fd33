// The rule of a finding: what it is about and how it is mended, as the tool's author describes it.

import { type Child, external, h, own } from "../dom";
import { renderMarkdown } from "../markdown";
import type { Run } from "../model";

export type Rule = Record<string, any>;

/** A rule and the extension of the tool that defines it; null is the driver. */
export interface FoundRule {
    rule: Rule;
    extension: number | null;
}

function ruleIn(component: any, result: Record<string, any>, index: number | undefined): Rule | undefined {
    const rules: Rule[] = component?.rules ?? [];
    const id = result.ruleId ?? result.rule?.id;
    if (index !== undefined && rules[index]) return rules[index];
    return rules.find((rule) => rule.id === id);
}

/** The descriptor of a result's rule, undefined if the run has none. */
export function componentOf(result: Record<string, any>, run: Run | undefined): FoundRule | undefined {
    const extension: number | undefined = result.rule?.toolComponent?.index;
    const component = extension === undefined ? run?.tool?.driver : run?.tool?.extensions?.[extension];
    const rule = ruleIn(component, result, result.rule?.index ?? result.ruleIndex);
    return rule && { rule, extension: extension ?? null };
}

function describe(text: { text?: string; markdown?: string } | undefined): HTMLElement | null {
    if (typeof text?.markdown === "string") return renderMarkdown(text.markdown);
    if (typeof text?.text === "string") return h("p", { class: "prose plain" }, own(text.text));
    return null;
}

function facts(rule: Rule): Child {
    const severity = rule.properties?.["security-severity"];
    const precision = rule.properties?.precision;
    const tags: unknown[] = Array.isArray(rule.properties?.tags) ? rule.properties.tags : [];
    const parts = [
        severity !== undefined && h("span", { class: "badge" }, "security severity ", own(String(severity))),
        precision !== undefined && h("span", { class: "badge" }, "precision ", own(String(precision))),
        ...tags.slice(0, 40).map((tag) => h("span", { class: "badge" }, own(String(tag)))),
    ].filter((part) => part);
    return parts.length > 0 ? h("p", { class: "badges" }, parts) : null;
}

/** The section about the rule, null if there is nothing to say beyond its id. */
export function renderRule(rule: Rule | undefined): HTMLElement | null {
    if (!rule) return null;
    const texts = [rule.shortDescription, rule.fullDescription].filter(
        (text, i, all) => text && (i === 0 || text.text !== all[0]?.text));
    const link = typeof rule.helpUri === "string" ? h("p", {}, external(rule.helpUri, own(rule.helpUri))) : null;
    const parts = [...texts.map(describe), describe(rule.help), link, facts(rule)].filter((part) => part);
    if (parts.length === 0) return null;
    const name = rule.name && rule.name !== rule.id ? [" ", own(String(rule.name), { class: "hint" })] : [];
    return h("section", { class: "part" }, h("h3", {}, "Rule ", own(String(rule.id ?? ""), { class: "code" }), name), parts);
}
