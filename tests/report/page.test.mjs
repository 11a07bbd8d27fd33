// The report in a browser: what a reviewer sees and does.

import assert from "node:assert/strict";
import { cpSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { close, numbers, open, text, until } from "./browser.mjs";
import { example, log, manyFindings, report, scratch } from "./reports.mjs";

const small = report("small", [join(example, "example.sarif")], "--source-root", example);
const bare = report("bare", [join(example, "example.sarif")]);
const large = report("large", [log("large", manyFindings(10_000))]);

const number = await numbers(small, { socket: "rule=leak/socket", memory: "rule=leak/memory", hebrew: "file=src/main.c" });
const numberWithoutSource = await numbers(bare, { socket: "rule=leak/socket", hebrew: "file=src/main.c" });

const counter = (page) => text(page, ".counter");
const findingTitle = (page) => text(page, "#finding-title");

test("the overview counts findings by level, state, rule and place", async () => {
    const page = await open(small);
    assert.equal(await counter(page), "5 findings");
    assert.match(await text(page, ".tile-error"), /^2\s*error$/);
    assert.match(await text(page, ".tile-new"), /^2\s*new$/);
    const rules = await page.locator("#facet-rule + .bars .bar").allTextContents();
    assert.deepEqual(rules.sort(), ["bounds1", "leak/memory1", "leak/socket1", "style2"]);
    assert.equal(await page.locator(".treemap .cell").count(), 3);
    await close(page);
});

test("a bar is a filter, which stands in the address and can be taken back", async () => {
    const page = await open(small);
    await page.click('#facet-rule + .bars .bar:has-text("style")');
    assert.equal(await counter(page), "2 of 5 findings");
    assert.match(page.url(), /#rule=style$/);
    assert.equal(await page.inputValue("#filter"), "rule:style");
    assert.equal(await page.locator("#facet-rule + .bars .bar").count(), 4, "the other rules are still to be seen");
    await page.click('.bar[aria-pressed="true"]');
    assert.equal(await counter(page), "5 findings");
    await page.goBack();
    await until(page, () => document.querySelector(".counter").textContent === "2 of 5 findings");
    await page.click(".chip");
    assert.equal(await counter(page), "5 findings");
    await close(page);
});

test("a cell of the treemap is a filter", async () => {
    const page = await open(small);
    await page.click('.treemap .cell[aria-label^="src/net/"]');
    assert.equal(await counter(page), "3 of 5 findings");
    assert.equal(await page.inputValue("#filter"), "file:src/net/*");
    await close(page);
});

test("typing filters, and the address follows", async () => {
    const page = await open(small, { hash: "#view=findings" });
    await page.keyboard.press("/");
    await page.keyboard.type("file:*/net/* never -level:warning");
    assert.equal(await counter(page), "1 of 5 findings");
    assert.equal(await page.locator(".list-row").count(), 1);
    await until(page, () => location.hash.includes("file=*/net/*&q=never&-level=warning"));
    await page.keyboard.press("Control+A");
    await page.keyboard.type("nothing of this kind");
    assert.match(await text(page, ".list .empty"), /Nothing fits the filter/);
    await close(page);
});

test("an address opens what it names", async () => {
    const page = await open(small, { hash: `#view=findings&level=error&sort=-file&group=state&finding=${number.socket}&flow=2&step=3`, ready: ".line.current" });
    assert.equal(await counter(page), "2 of 5 findings");
    assert.equal(await page.locator(".list").getAttribute("role"), "treegrid");
    assert.match(await findingTitle(page), /^The socket that is opened is never closed/);
    assert.match(await text(page, '.step[aria-current="step"]'), /^3Assuming that the host is unknown/);
    assert.match(await text(page, ".source-title"), /tcp\.c:13:9$/);
    await close(page);
});

test("the list has only the rows that are seen", async () => {
    const page = await open(large, { hash: "#view=findings", ready: ".list-row" });
    assert.equal(await page.locator(".list").getAttribute("aria-rowcount"), "10001");
    assert.ok((await page.locator(".list-row").count()) < 60);
    await page.focus(".list");
    await page.keyboard.press("End");
    await page.waitForSelector('.list-row[aria-rowindex="10001"].active');
    assert.ok((await page.locator(".list-row").count()) < 60);
    await page.keyboard.press("Home");
    await page.waitForSelector('.list-row[aria-rowindex="2"].active');
    await close(page);
});

test("the list is sorted by its headings, and grouped", async () => {
    const page = await open(large, { hash: "#view=findings", ready: ".list-row" });
    const first = (cell) => text(page, `.list-row .cell-${cell}`);
    await page.click(".list-head .cell-rule button");
    const least = await first("rule");
    await page.click(".list-head .cell-rule button");
    assert.notEqual(await first("rule"), least);
    assert.equal(await page.locator(".list-head .cell-rule").getAttribute("aria-sort"), "descending");
    assert.match(page.url(), /sort=-rule/);
    await page.selectOption('select[data-focus="Group by"]', "rule");
    assert.equal(await page.locator(".list-row.group").first().getAttribute("aria-expanded"), "true");
    await page.click('button[data-focus="fold"]');
    assert.equal(await page.locator(".list").getAttribute("aria-rowcount"), "41");
    const counts = (await page.locator(".list-row.group .hint").allTextContents()).map((one) => parseInt(one));
    assert.ok(counts.every((one, i) => i === 0 || one <= counts[i - 1]), "the largest group is the first");
    await close(page);
});

test("all findings are in the list once, whatever the order", async () => {
    const page = await open(report("few", [log("few", manyFindings(300))]), { hash: "#view=findings&group=file&sort=-message", ready: ".list-row" });
    const seen = new Set();
    await page.focus(".list");
    for (let row = 0; row < 600; ++row) {
        const active = await page.evaluate(() => {
            const element = document.querySelector(".list-row.active");
            return [element.getAttribute("aria-rowindex"), element.classList.contains("group")];
        });
        if (!active[1]) seen.add(active[0]);
        await page.keyboard.press("ArrowDown");
    }
    assert.equal(seen.size, 300);
    await close(page);
});

test("n and p step through a flow, from file to file", async () => {
    const page = await open(small, { hash: `#finding=${number.socket}`, ready: ".line.current" });
    assert.match(await text(page, ".source-title"), /http\.c:21:9$/);
    assert.equal(await text(page, ".line.current mark.mark-finding"), "return 0;");
    const files = [];
    for (let step = 1; step <= 6; ++step) {
        await page.keyboard.press("n");
        await page.waitForSelector(`.line-note.current:has(.badge-number:text-is("${step}"))`);
        files.push(/(\w+)\.c/.exec(await text(page, ".source-title"))[1]);
    }
    assert.deepEqual(files, ["http", "tcp", "tcp", "tcp", "http", "http"]);
    await page.keyboard.press("n");
    assert.match(await text(page, '.step[aria-current="step"]'), /^6/, "the last step is the last");
    await page.keyboard.press("p");
    await page.waitForSelector('.step[aria-current="step"]:has-text("Assuming that sending fails")');
    assert.match(page.url(), /step=5$/);
    await close(page);
});

test("several flows can be chosen from", async () => {
    const page = await open(small, { hash: `#finding=${number.socket}`, ready: ".step" });
    assert.equal(await page.locator(".step").count(), 6);
    await page.selectOption(".steps select", "1");
    assert.equal(await page.locator(".step").count(), 4);
    await page.locator("#finding-title").focus();
    await page.keyboard.press("f");
    assert.equal(await page.locator(".step").count(), 6);
    await close(page);
});

test("a finding shows its rule, fixes, places, classification and record", async () => {
    const page = await open(small, { hash: `#finding=${number.socket}`, ready: ".fixes" });
    const parts = await page.locator(".part h3").allTextContents();
    for (const part of ["Related locations", "Rule leak/socket SocketLeak", "Classification", "Fingerprints", "Origin", "Fixes", "Message in full", "Everything else"]) {
        assert.ok(parts.includes(part), `${part} of ${parts}`);
    }
    assert.equal(await text(page, ".prose pre code"), "if (failed) {\n    close(socket);\n    return 0;\n}");
    assert.match(await text(page, ".removed"), /^− {5}if \(!http_send\(connection, path\)\)\n/);
    assert.match(await text(page, ".inserted"), /tcp_close\(connection\);/);
    await page.click('#finding-title .link:has-text("opened")');
    await until(page, () => document.querySelector(".source-title").textContent.endsWith("tcp.c:12:26"));
    await page.click("summary:has-text('Everything else')");
    await page.click(".tree summary:has-text('properties')");
    await until(page, () => document.querySelector(".tree").innerText.includes("big: 12345678901234567890"));
    assert.match(await page.locator(".tree").nth(1).innerText(), /^key/);
    assert.match(await page.locator(".tree").nth(2).innerText(), /^record.*\ncategory/s);
    await close(page);
});

test("other findings have stacks, suppressions, changes and texts from right to left", async () => {
    const page = await open(small, { hash: `#finding=${number.memory}`, ready: ".line.current" });
    assert.match(await page.locator(".part:has(h3:text-is('Suppressions'))").textContent(), /external, accepted: Only at the end/);
    await page.keyboard.press("Escape");
    await page.click('.list-row:has-text("outside of")');
    await page.waitForSelector(".part h3:text-is('Stacks')");
    await page.click('.locations button:has-text("main.c")');
    await until(page, () => document.querySelector(".source-title").textContent.includes("main.c"));
    await page.click('.list-row:has-text("הודעה")');
    await until(page, () => document.querySelector("#finding-title").textContent.startsWith("הודעה"));
    await page.click('.list-row:has-text("without a place")');
    await until(page, () => document.querySelector(".no-source")?.textContent.includes("No place is known"));
    await close(page);
});

test("without source there are snippets of the log, else the bare places", async () => {
    const page = await open(bare, { hash: `#finding=${numberWithoutSource.hebrew}`, ready: ".line.current" });
    assert.equal(await text(page, ".line.current .line-text"), 'printf("%s", name);');
    assert.equal(await text(page, ".line.current .line-number"), "9");
    assert.match(await text(page, ".line.current mark"), /^printf$/);
    await page.evaluate((hash) => (location.hash = hash), `#finding=${numberWithoutSource.socket}`);
    await page.waitForSelector(".no-source");
    await page.keyboard.press("n");
    await page.waitForSelector('.step[aria-current="step"]');
    assert.match(await text(page, ".no-source"), /not in the report.*Calls 'tcp_connect'/s);
    await close(page);
});

test("link, SARIF log and record can be copied", async () => {
    const page = await open(small, { hash: `#finding=${number.socket}&level=error`, ready: ".line.current" });
    await page.keyboard.press("n");
    for (const name of ["link", "SARIF", "JSON"]) await page.click(`button:has-text("Copy ${name}")`);
    const [link, sarif, json] = await page.evaluate(() => window.copied);
    assert.match(link, /^file:\/\/.*index\.html#view=findings&level=error&finding=\d+&step=1$/);
    const copied = JSON.parse(sarif);
    assert.equal(copied.runs[0].results.length, 1);
    assert.deepEqual(copied.runs[0].tool.driver.rules.map((rule) => rule.id), ["leak/socket"]);
    assert.match(sarif, /"big": 12345678901234567890\b/);
    const again = join(scratch, "copied.sarif");
    writeFileSync(again, sarif);
    report("copied", [again]);
    assert.ok(Array.isArray(JSON.parse(json)));
    await close(page);
});

test("all can be done by keys", async () => {
    const page = await open(small);
    const focused = () => page.evaluate(() => document.activeElement.id || document.activeElement.textContent.trim());
    await page.keyboard.press("?");
    assert.equal(await text(page, "dialog h2"), "Keys");
    await page.keyboard.press("Escape");
    assert.equal(await page.locator("dialog").count(), 0);
    await page.keyboard.press("/");
    assert.equal(await focused(), "filter");
    await page.keyboard.type("socket");
    await page.keyboard.press("Escape");
    await page.keyboard.press("l");
    assert.equal(await focused(), "list");
    await page.keyboard.press("Enter");
    await page.waitForSelector(".line.current");
    assert.equal(await focused(), "finding-title");
    await page.keyboard.press("n");
    await page.waitForSelector('.step[aria-current="step"]');
    assert.equal(await focused(), "finding-title", "stepping does not move the focus");
    assert.match(await text(page, "#live"), /^Step 1 of 6: Calls 'tcp_connect' src\/net\/http.c:17:37$/);
    await page.keyboard.press("Escape");
    assert.equal(await focused(), "list");
    await page.keyboard.press("o");
    await page.waitForSelector(".overview");
    await page.focus(".tile-error");
    const tile = await focused();
    await page.keyboard.press("Enter");
    assert.equal(await counter(page), "1 of 5 findings");
    assert.equal(await page.locator(".tile-error").getAttribute("aria-pressed"), "true");
    assert.equal(await focused(), tile, "a bar keeps the focus when it is pressed");
    await close(page);
});

test("j and k go to the next and the previous finding of the list", async () => {
    const page = await open(small, { hash: "#view=findings", ready: ".list-row" });
    const titles = [];
    for (const key of ["j", "j", "j", "k"]) {
        await page.keyboard.press(key);
        await page.waitForTimeout(150);
        titles.push(await findingTitle(page));
    }
    assert.equal(titles[1], titles[3]);
    assert.equal(new Set(titles).size, 3);
    await close(page);
});

test("the number of findings is announced", async () => {
    const page = await open(small, { hash: "#level=error" });
    await until(page, () => document.querySelector("#live")?.textContent === "2 of 5 findings");
    assert.equal(await page.locator("#live").getAttribute("role"), "status");
    await close(page);
});

for (const [name, hash, ready] of [["overview", "", ".overview"], ["list", "#view=findings&group=rule", ".list-row"], ["finding", `#finding=${number.socket}&step=2`, ".line.current"]]) {
    test(`the ${name} fits 320 pixels, as at 400 %`, async () => {
        const page = await open(small, { hash, ready, width: 320, height: 256 });
        const wide = await page.evaluate(() => document.documentElement.scrollWidth);
        assert.ok(wide <= 320, `${wide} pixels`);
        await close(page);
    });

    test(`the ${name} can be printed`, async () => {
        const page = await open(small, { hash, ready });
        await page.emulateMedia({ media: "print" });
        await page.evaluate(() => dispatchEvent(new Event("beforeprint")));
        assert.equal(await page.locator("nav").isVisible(), false);
        const cut = await page.evaluate(() => [...document.querySelectorAll("main *")].filter((element) =>
            ["auto", "scroll"].includes(getComputedStyle(element).overflowY) && element.scrollHeight > element.clientHeight + 1).map((element) => element.className));
        assert.deepEqual(cut, [], "nothing is cut off by scrolling");
        assert.ok((await page.screenshot({ fullPage: true })).length > 10_000);
        await close(page);
    });
}

test("a chunk that is missing or damaged is named", async () => {
    const broken = join(scratch, "broken");
    const shown = async (change, ready) => {
        rmSync(broken, { recursive: true, force: true });
        cpSync(small, broken, { recursive: true });
        change();
        const page = await open(broken, { ready, hash: `#finding=${number.socket}` });
        const message = await text(page, ready);
        await page.context().close();
        return message;
    };
    const file = (name) => join(broken, "data", `${name}.js`);
    const replace = (name, from, to) => writeFileSync(file(name), readFileSync(file(name), "utf8").replace(from, to));
    const removeSources = () => {
        const data = join(broken, "data");
        for (const name of readdirSync(data)) if (name.startsWith("source-")) rmSync(join(data, name));
    };
    assert.match(await shown(() => rmSync(file("columns")), ".error"), /data\/columns\.js of this report is missing.*whole directory/s);
    assert.match(await shown(() => replace("index", /",?\s*\)?;?\s*$/, ""), ".error"), /data\/index\.js of this report is damaged/);
    assert.match(await shown(() => replace("runs", /, *"/, ', "AAAA'), ".error"), /"runs" of this report is damaged/);
    assert.match(await shown(() => rmSync(file("details-0")), ".detail-pane .error"), /data\/details-0\.js of this report is missing/);
    assert.match(await shown(removeSources, ".no-source"), /not in the report: The file data\/source-\d+\.js of this report is missing/);
});

test("a report of a single file shows the same", async () => {
    const single = report("single", [join(example, "example.sarif")], "--source-root", example, "--single");
    const { socket } = await numbers(single, { socket: "rule=leak/socket" });
    const page = await open(single, { hash: `#finding=${socket}`, ready: ".line.current" });
    assert.match(await findingTitle(page), /^The socket that is opened is never closed/);
    await page.click("footer .link");
    assert.match(await text(page, "dialog pre"), /licen[cs]e/i);
    await page.keyboard.press("Escape");
    await close(page);
});
