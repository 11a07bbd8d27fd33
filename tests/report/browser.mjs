// Opens reports in a headless browser, from disk, and notes whatever a report must never cause.

import { strict as assert } from "node:assert";
import { after } from "node:test";
import { pathToFileURL } from "node:url";
import { join } from "node:path";
import { chromium } from "playwright-core";

const flags = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
    "--disable-background-networking", "--disable-component-update", "--disable-sync", "--enable-precise-memory-info"];

export const browser = await chromium.launch({ executablePath: process.env.CHROMIUM ?? "/usr/bin/chromium", args: flags });
after(() => browser.close());

/** What happens in every page before the report's script: violations are noted, and what is copied. */
function watch() {
    window.violations = [];
    window.copied = [];
    document.addEventListener("securitypolicyviolation", (event) => window.violations.push(`${event.violatedDirective} ${event.blockedURI} ${event.sample}`));
    navigator.clipboard.writeText = async (text) => void window.copied.push(text);
}

/** The address of a report's page. */
export function address(report, hash = "") {
    return pathToFileURL(report.endsWith(".html") ? report : join(report, "index.html")).href + hash;
}

/** A page with a report. Errors, dialogs, requests of the network and further windows fail the test that checks them. */
export async function open(report, { hash = "", dark = false, width = 1400, height = 900, ready = "main > *" } = {}) {
    const context = await browser.newContext({ colorScheme: dark ? "dark" : "light", viewport: { width, height } });
    await context.addInitScript(watch);
    const page = await context.newPage();
    page.setDefaultTimeout(5000);
    const wrong = [];
    context.on("page", (other) => wrong.push(`window ${other.url()}`));
    page.on("dialog", (dialog) => (wrong.push(`dialog ${dialog.message()}`), dialog.dismiss()));
    page.on("pageerror", (error) => wrong.push(`error ${error.stack}`));
    page.on("console", (message) => message.type() === "error" && wrong.push(`console ${message.text()}`));
    page.on("request", (request) => isOwn(request.url(), report) || wrong.push(`request ${request.url()}`));
    page.wrong = async () => [...wrong, ...(await page.evaluate(() => window.violations))];
    await page.goto(address(report, hash));
    await page.waitForSelector(ready);
    return page;
}

function isOwn(url, report) {
    const own = address(report).replace(/[^/]*$/, "");
    return url.startsWith("blob:") || (url.startsWith(own) && /^(index\.html|report\.(js|css)|data\/[a-z]+(-\d+)?\.js|[\w-]+\.html)(#.*)?$/s.test(url.slice(own.length)));
}

export async function close(page) {
    assert.deepEqual(await page.wrong(), []);
    await page.context().close();
}

/** The text of the first element that a selector finds, without spaces around it. */
export async function text(page, selector) {
    return (await page.locator(selector).first().textContent()).trim();
}

/** Waits until a function gives something true in the page. */
export async function until(page, check) {
    for (const end = Date.now() + 5000; Date.now() < end; await page.waitForTimeout(20)) {
        if (await page.evaluate(check)) return;
    }
    assert.fail(`never true: ${check}`);
}

/** The numbers of findings in a report that filters, as in addresses, pick one by one. */
export async function numbers(report, filters) {
    const found = {};
    const page = await open(report, { hash: "#view=findings", ready: ".list-row" });
    for (const [name, filter] of Object.entries(filters)) {
        await page.evaluate((hash) => (location.hash = hash), `#view=findings&${filter}`);
        await until(page, () => document.querySelectorAll(".list-row").length === 1);
        await page.click(".list-row");
        found[name] = /finding=(\d+)/.exec(page.url())[1];
        await page.evaluate(() => (location.hash = "#view=findings"));
        await until(page, () => document.querySelectorAll(".list-row").length > 1);
    }
    await close(page);
    return found;
}
