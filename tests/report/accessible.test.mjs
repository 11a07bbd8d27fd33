// Nothing that an accessibility checker holds for serious, in any view, light and dark.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { join } from "node:path";
import { test } from "node:test";
import { close, numbers, open } from "./browser.mjs";
import { example, report } from "./reports.mjs";

const axe = readFileSync(createRequire(import.meta.url).resolve("axe-core/axe.min.js"), "utf8");
const small = report("accessible", [join(example, "example.sarif")], "--source-root", example);

const number = await numbers(small, { socket: "rule=leak/socket", bounds: "rule=bounds" });

const views = {
    overview: ["", ".overview"],
    "filtered overview": ["#level=error&-q=x", ".overview"],
    list: ["#view=findings", ".list-row"],
    "grouped list": ["#view=findings&group=rule&sort=-file", ".list-row.group"],
    "empty list": ["#view=findings&q=nothing", ".empty"],
    finding: [`#finding=${number.socket}&step=2`, ".line.current"],
    "another finding": [`#finding=${number.bounds}`, ".line.current"],
};

async function serious(page) {
    await page.evaluate(axe);
    const { violations } = await page.evaluate(() => window.axe.run({ preload: false }));
    return violations
        .filter(({ impact }) => impact === "serious" || impact === "critical")
        .map(({ id, nodes }) => `${id}: ${nodes.map(({ html, any }) => `${html.slice(0, 200)} ${any[0]?.message ?? ""}`).join("; ")}`);
}

for (const [name, [hash, ready]] of Object.entries(views)) {
    for (const dark of [false, true]) {
        for (const width of [1400, 320]) {
            test(`${name}, ${dark ? "dark" : "light"}, ${width} pixels`, async () => {
                const page = await open(small, { hash, ready, dark, width });
                assert.deepEqual(await serious(page), []);
                await close(page);
            });
        }
    }
}

test("dialog and syntax", async () => {
    const page = await open(small);
    await page.click(".filter-help summary");
    assert.deepEqual(await serious(page), []);
    await page.keyboard.press("?");
    assert.deepEqual(await serious(page), []);
    await close(page);
});
