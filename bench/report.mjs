#!/usr/bin/env node
// report.mjs BUILD_DIR [FINDINGS]: what reports cost, of a kernel's results and of an imported log, as a table in
// markdown. Wants tests/report/run.sh to have run once, for the browser driver.

import { execFileSync } from "node:child_process";
import { mkdtempSync, readdirSync, rmSync, statSync } from "node:fs";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";

const [build, findings = "100000"] = process.argv.slice(2);
if (!build) {
    console.error("usage: report.mjs BUILD_DIR [FINDINGS]");
    process.exit(2);
}
process.env.BRADEP = resolve(build, "tools/bradep");
const { browser } = await import("../tests/report/browser.mjs");
const { measure } = await import("../tests/report/measure.mjs");
const { log, manyFindings, run } = await import("../tests/report/reports.mjs");

const directory = mkdtempSync(join(tmpdir(), "bradep-bench-"));
process.on("exit", () => rmSync(directory, { recursive: true, force: true }));

function sizeOf(path) {
    const status = statSync(path);
    return status.isDirectory() ? readdirSync(path).reduce((sum, name) => sum + sizeOf(join(path, name)), 0) : status.size;
}

function sets() {
    const kernel = join(directory, "kernel.set");
    execFileSync(resolve(build, "bench/make_workload"), [findings, kernel]);
    const imported = join(directory, "imported.set");
    run("import", log("imported", manyFindings(Number(findings))), "-o", imported);
    return [["a kernel's", kernel, ["--root", "Application_Results_Application_Results"]], ["imported", imported, []]];
}

const mega = (bytes) => (bytes / 1e6).toFixed(1);
const rows = [];
for (const [name, set, options] of sets()) {
    const output = join(directory, "report");
    rmSync(output, { recursive: true, force: true });
    const begin = performance.now();
    run("report", set, "-o", output, ...options);
    const seconds = (performance.now() - begin) / 1000;
    const bytes = sizeOf(set);
    const costs = await measure(output, Number(findings));
    const times = [costs.firstContent, costs.ready, costs.key, costs.view, costs.open, costs.slowestOpen].map((time) => time.toFixed(0));
    rows.push([name, mega(bytes), mega(sizeOf(output)), seconds.toFixed(2), (bytes / 1e6 / seconds).toFixed(1), ...times, mega(costs.memory)]);
}
await browser.close();

const heads = ["set", "MB", "report, MB", "written in s", "MB/s", "first content, ms", "all filters, ms", "slowest key, ms",
    "slowest order or group, ms", "a finding opens, ms", "slowest, ms", "PSS, MB"];
console.log(`${findings} findings, Chromium\n`);
for (const row of [heads, heads.map(() => "---"), ...rows]) console.log(`| ${row.join(" | ")} |`);
