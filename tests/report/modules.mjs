// Modules of the page for tests that need no browser: each is bundled by esbuild and imported.

import { execFileSync } from "node:child_process";
import { mkdtempSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath, pathToFileURL } from "node:url";

const page = fileURLToPath(new URL("../../report/page/", import.meta.url));
const directory = mkdtempSync(join(tmpdir(), "bradep-modules-"));
process.on("exit", () => rmSync(directory, { recursive: true, force: true }));

/** Imports a module of report/page by its path without ".ts". */
export async function load(name) {
    const output = join(directory, `${name.replaceAll("/", "-")}.mjs`);
    execFileSync("esbuild", [`${name}.ts`, "--bundle", "--format=esm", "--log-level=error", `--outfile=${output}`], {
        cwd: page,
        env: { ...process.env, NODE_PATH: "/usr/share/nodejs" },
    });
    return import(pathToFileURL(output));
}
