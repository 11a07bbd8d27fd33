// What a report costs in the browser: times in milliseconds, memory in bytes.

import { readFileSync } from "node:fs";
import { browser, open } from "./browser.mjs";

const mark = (page, name) => page.evaluate((one) => performance.getEntriesByName(one)[0]?.startTime, name);

/** The proportional set size of the renderer that needs most. */
export async function rendererMemory() {
    const session = await browser.newBrowserCDPSession();
    const { processInfo } = await session.send("SystemInfo.getProcessInfo");
    const sizes = processInfo.filter(({ type }) => type === "renderer").map(({ id }) =>
        1024 * Number(/^Pss:\s+(\d+)/m.exec(readFileSync(`/proc/${id}/smaps_rollup`, "utf8"))[1]));
    await session.detach();
    return Math.max(...sizes);
}

async function settled(page) {
    await page.evaluate(() => new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve))));
}

/** Types a text letter by letter; gives the time of each from the key to the next frame. */
async function typed(page, text) {
    const times = [];
    for (const letter of text) {
        await page.evaluate(() => {
            window.typed = new Promise((resolve) => {
                addEventListener("keydown", () => {
                    const begin = performance.now();
                    requestAnimationFrame(() => setTimeout(() => resolve(performance.now() - begin)));
                }, { capture: true, once: true });
            });
        });
        await page.keyboard.press(letter === " " ? "Space" : letter);
        times.push(await page.evaluate(() => window.typed));
    }
    return times;
}

/** Shows what an address names, and gives the time until its next frame. */
async function shown(page, hash) {
    return page.evaluate(async (to) => {
        const begin = performance.now();
        location.hash = to;
        await new Promise((resolve) => addEventListener("hashchange", resolve, { once: true }));
        await new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve)));
        return performance.now() - begin;
    }, hash);
}

/** Opens a finding, and gives the time until it and its source are shown. */
async function opened(page, finding) {
    return page.evaluate(async (number) => {
        performance.clearMarks("bradep-finding");
        const begin = performance.now();
        location.hash = `#view=findings&finding=${number}`;
        while (performance.getEntriesByName("bradep-finding").length === 0) await new Promise((resolve) => setTimeout(resolve));
        await new Promise((resolve) => requestAnimationFrame(() => setTimeout(resolve)));
        return performance.now() - begin;
    }, finding);
}

/** Uses a report as a reviewer does, with all filters, orders and groups. */
async function used(report, findings) {
    const page = await open(report, { ready: ".tiles" });
    while ((await mark(page, "bradep-ready")) === undefined) await page.waitForTimeout(10);
    const firstContent = await mark(page, "bradep-overview");
    const ready = await mark(page, "bradep-ready");
    await page.focus("#filter");
    const keys = await typed(page, "may be level:error -rule:*2 file:*/net");
    await shown(page, "#view=findings");
    await page.focus("#filter");
    keys.push(...(await typed(page, "pointer socket state:new")));
    const views = [];
    for (const sort of ["rule", "message", "file", "state", "function", "-level"]) views.push(await shown(page, `#view=findings&sort=${sort}`));
    for (const group of ["file", "rule", "state", "function"]) views.push(await shown(page, `#view=findings&group=${group}`));
    views.push(await shown(page, "#rule=*a*&-level=note"), await shown(page, "#"));
    const opens = [];
    for (let i = 0; i < 12; ++i) opens.push(await opened(page, Math.floor((i * findings) / 12)));
    await settled(page);
    const memory = await rendererMemory();
    await page.context().close();
    return { times: [firstContent, ready, ...keys, ...views, ...opens], counts: [1, 1, keys.length, views.length, opens.length], memory };
}

const median = (values) => [...values].sort((a, b) => a - b)[values.length >> 1];

/** What a report costs. Each step is done in several rounds and the fastest counts, since other programs run, too. */
export async function measure(report, findings, rounds = 3) {
    let best = null;
    for (let round = 0; round < rounds; ++round) {
        const costs = await used(report, findings);
        if (best) costs.times = costs.times.map((time, i) => Math.min(time, best.times[i]));
        best = { ...costs, memory: Math.max(costs.memory, best?.memory ?? 0) };
    }
    const parts = [];
    let begin = 0;
    for (const many of best.counts) parts.push(best.times.slice(begin, (begin += many)));
    const [[firstContent], [ready], keys, views, opens] = parts;
    return { firstContent, ready, key: Math.max(...keys), view: Math.max(...views), open: median(opens), slowestOpen: Math.max(...opens), memory: best.memory };
}
