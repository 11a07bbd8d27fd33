// What a report may cost in the browser, with REPORT_FINDINGS findings.

import assert from "node:assert/strict";
import { readdirSync, statSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import "./browser.mjs";
import { measure } from "./measure.mjs";
import { log, manyFindings, report, scratch } from "./reports.mjs";

const findings = Number(process.env.REPORT_FINDINGS ?? 10_000);
const budgets = { firstContent: 1000, ready: 2000, key: 100, slowestOpen: 150, memory: 300e6 };

function sizeOf(path) {
    const status = statSync(path);
    if (!status.isDirectory()) return status.size;
    return readdirSync(path).reduce((sum, name) => sum + sizeOf(join(path, name)), 0);
}

const many = report("budget", [log("budget", manyFindings(findings))]);

test(`a report of ${findings} findings keeps its budgets`, async () => {
    const costs = await measure(many, findings);
    console.log(JSON.stringify(costs));
    for (const [name, most] of Object.entries(budgets)) assert.ok(costs[name] <= most, `${name}: ${costs[name]} is more than ${most}`);
});

test("a report is no larger than its result set", () => {
    const page = ["index.html", "report.js", "report.css", "licences.txt"];
    const own = page.reduce((sum, name) => sum + sizeOf(join(many, name)), 0);
    assert.ok(sizeOf(many) - own <= sizeOf(join(scratch, "budget.set")), `${sizeOf(many) - own} bytes`);
});
