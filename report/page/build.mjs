#!/usr/bin/env node
// Checks the types of the page and bundles it: build.mjs OUTDIR writes index.html, report.js, report.css and
// licences.txt there. Libraries are those of Debian packages, in /usr/share/nodejs.

import { execFileSync } from "node:child_process";
import { copyFileSync, existsSync, mkdirSync, mkdtempSync, readFileSync, realpathSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { dirname, join, resolve } from "node:path";
import { fileURLToPath } from "node:url";

const MODULES = "/usr/share/nodejs";
const here = dirname(fileURLToPath(import.meta.url));

function run(command, args) {
    return execFileSync(command, args, {
        cwd: here,
        env: { ...process.env, NODE_PATH: MODULES },
        stdio: ["ignore", "pipe", "inherit"],
        maxBuffer: 1 << 26,
    }).toString();
}

function checkTypes() {
    try {
        run("tsc", ["-p", "tsconfig.json"]);
    } catch (error) {
        console.error(String(error.stdout));
        throw new Error("the types of the page are wrong");
    }
}

function bundle(entry, output, ...more) {
    run("esbuild", [entry, "--bundle", "--minify", "--legal-comments=none", "--charset=utf8", "--log-level=warning", "--inject:dompurify_mend.mjs",
        "--target=chrome114,firefox121", `--outfile=${output}`, ...more]);
}

/** Text that would end the element around it in a report of a single file. */
function refuse(file, patterns) {
    const text = readFileSync(file, "utf8");
    for (const pattern of patterns) {
        if (pattern.test(text)) throw new Error(`${file} has ${pattern}`);
    }
}

/** The Debian packages whose files are in the bundle, by the list of files that esbuild writes. */
function packagesOf(meta) {
    const { inputs } = JSON.parse(readFileSync(meta, "utf8"));
    const files = Object.keys(inputs)
        .map((name) => realpathSync(resolve(here, name)))
        .filter((name) => !name.startsWith(here));
    const owners = run("dpkg-query", ["--search", ...files]).trim().split("\n");
    return [...new Set(owners.map((line) => line.slice(0, line.indexOf(":"))))].sort();
}

function licences(packages) {
    return packages
        .map((name) => {
            const file = `/usr/share/doc/${name}/copyright`;
            if (!existsSync(file)) throw new Error(`${file} is missing`);
            return `${name}\n${"=".repeat(name.length)}\n\n${readFileSync(file, "utf8").trim()}\n`;
        })
        .join("\n\n");
}

const [output] = process.argv.slice(2);
if (!output) {
    console.error("usage: build.mjs OUTDIR");
    process.exit(2);
}
const directory = resolve(output);
const meta = join(mkdtempSync(join(tmpdir(), "bradep-page-")), "meta.json");
mkdirSync(directory, { recursive: true });
checkTypes();
bundle("main.ts", join(directory, "report.js"), "--format=iife", `--metafile=${meta}`);
bundle("report.css", join(directory, "report.css"));
refuse(join(directory, "report.js"), [/<\/?script/i]);
refuse(join(directory, "report.css"), [/<\/style/i]);
writeFileSync(join(directory, "licences.txt"), licences(packagesOf(meta)));
rmSync(dirname(meta), { recursive: true });
copyFileSync(join(here, "index.html"), join(directory, "index.html"));
