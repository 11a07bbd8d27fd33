// Reports for tests, made by the command `bradep`, whose path is in BRADEP.

import { execFileSync } from "node:child_process";
import { existsSync, mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath } from "node:url";

const bradep = process.env.BRADEP;
if (!bradep || !existsSync(bradep)) throw new Error("BRADEP must be the path of the command");

export const scratch = mkdtempSync(join(tmpdir(), "bradep-report-"));
process.on("exit", () => rmSync(scratch, { recursive: true, force: true }));

export const example = fileURLToPath(new URL("example", import.meta.url));

export function run(...args) {
    return execFileSync(bradep, args, { stdio: ["ignore", "pipe", "pipe"], maxBuffer: 1 << 28 }).toString();
}

/** Imports logs and writes a report of them; gives its directory, or its file with `--single`. */
export function report(name, logs, ...options) {
    const set = join(scratch, `${name}.set`);
    run("import", ...logs, "-o", set);
    return reportOf(name, [set], ...options);
}

/** Writes a report of result sets. */
export function reportOf(name, sets, ...options) {
    const output = join(scratch, options.includes("--single") ? `${name}.html` : name);
    run("report", ...sets, "-o", output, ...options);
    return output;
}

/** Writes a log of one run and gives its path. */
export function log(name, run) {
    const path = join(scratch, `${name}.sarif`);
    writeFileSync(path, JSON.stringify({ version: "2.1.0", runs: [run] }));
    return path;
}

/** A run with so many results, of 40 rules in some hundred files, one in ten with a flow. */
export function manyFindings(many) {
    let state = 20231;
    const random = (below) => (state = (state * 48271) % 2147483647) % below;
    const words = ["buffer", "socket", "index", "pointer", "length", "lock", "value", "name", "queue", "packet"];
    const levels = ["error", "warning", "warning", "note"];
    const rules = Array.from({ length: 40 }, (_none, i) => ({
        id: `${words[i % 10]}/${["leak", "range", "null", "race"][i >> 3 & 3]}-${i}`,
        shortDescription: { text: `The ${words[i % 10]} is used in a wrong way.` },
        help: { text: "Mend it.", markdown: `Mend the **${words[i % 10]}**, as in \`f(x)\`.` },
        defaultConfiguration: { level: levels[i % 4] },
    }));
    const place = () => ({
        physicalLocation: {
            artifactLocation: { uri: `src/${words[random(10)]}/${words[random(10)]}/file_${random(5)}.c` },
            region: { startLine: 1 + random(3000), startColumn: 1 + random(60) },
        },
    });
    const results = Array.from({ length: many }, (_none, i) => {
        const rule = random(40);
        const result = {
            ruleId: rules[rule].id,
            ruleIndex: rule,
            message: { text: `The ${words[random(10)]} '${words[random(10)]}_${random(1000)}' may be wrong when ${words[random(10)]} is ${random(5000)}` },
            locations: [{ ...place(), logicalLocations: [{ fullyQualifiedName: `${words[random(10)]}_${random(300)}` }] }],
            baselineState: ["new", "unchanged", "unchanged", "updated"][random(4)],
        };
        if (random(10) === 0) {
            const locations = Array.from({ length: 8 }, () => ({ location: { ...place(), message: { text: `Step ${i}` } } }));
            result.codeFlows = [{ threadFlows: [{ locations }] }];
        }
        if (random(20) === 0) result.suppressions = [{ kind: "inSource" }];
        return result;
    });
    return { tool: { driver: { name: "Example", rules } }, results };
}
