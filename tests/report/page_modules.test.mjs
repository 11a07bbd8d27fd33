import assert from "node:assert/strict";
import { test } from "node:test";
import { load } from "./modules.mjs";

const { parseFilter, formatFilter, exactly, matcher, evaluate, facetCounts, toggled } = await load("filter");
const { formatHash, parseHash, DEFAULTS } = await load("hash");
const { makeTable, commonDirectory, textOf } = await load("table");
const { Rows, Sorter, filtered, grouped, stableSort, textRanks } = await load("order");
const { messageParts, messageText } = await load("message");
const { pieces, plain, cut, wellFormed } = await load("text");
const { fileLines, markedPart, segments, snippetLines, withLines } = await load("finding/lines");
const { hexFloat, rangesIn } = await load("finding/ranges");
const { cells, directoryTree, total } = await load("treemap");
const { stringify } = await load("json");
const { logOf } = await load("finding/copy");

const isField = (name) => ["rule", "file", "level", "function"].includes(name);

/** A table of findings, each given as [level, rule, uri, line, message, suppressed]. */
function tableOf(findings) {
    const dictionaries = { level: [""], rule: [""], uri: [""] };
    const messages = [""];
    const number = (texts, text) => (texts.includes(text) ? texts.indexOf(text) : texts.push(text) - 1);
    const columns = { level: [], rule: [], uri: [], message: [], suppressed: [], line: [] };
    for (const [level, rule, uri, line, message, suppressed = 0] of findings) {
        columns.level.push(number(dictionaries.level, level));
        columns.rule.push(number(dictionaries.rule, rule));
        columns.uri.push(number(dictionaries.uri, uri));
        columns.message.push(number(messages, message));
        columns.suppressed.push(suppressed);
        columns.line.push(line);
    }
    const names = Object.keys(columns);
    const index = {
        findings: findings.length,
        columns: names.map((name) => ({ name, type: name === "line" ? "u32" : "u8" })),
        dictionaries,
    };
    const parts = names.map((name) => Buffer.from((name === "line" ? Uint32Array : Uint8Array).from(columns[name]).buffer));
    const table = makeTable(index, new Uint8Array(Buffer.concat(parts)), ["1"]);
    const searched = [{ values: table.columns.get("message"), texts: messages }];
    for (const name of ["rule", "file"]) searched.push(table.dimensions.get(name));
    return { table, searched };
}

const FINDINGS = [
    ["error", "leak/socket", "src/net/http.c", 31, "The socket is never closed"],
    ["warning", "leak/memory", "src/net/http.c", 12, "The buffer is never freed", 1],
    ["warning", "leak/memory", "src/main.c", 5, "The list is never freed"],
    ["note", "style", "test/main.c", 7, "A [brace](1) is missing"],
];

function found(text) {
    const { table, searched } = tableOf(FINDINGS);
    const terms = parseFilter(text, (name) => table.dimensions.has(name));
    return [...evaluate(table, terms, searched).failing.keys()].filter((i) => evaluate(table, terms, searched).failing[i] === 0);
}

test("a filter is read as its terms and written as it was read", () => {
    const texts = ["", "word", '"two words"', "rule:leak/memory", '-file:"a b"', 'function:"f(\\"x\\")"', '-word level:error', 'rule:""', '"http://x"', '"-x"'];
    for (const text of texts) assert.equal(formatFilter(parseFilter(text, isField)), text);
    assert.deepEqual(parseFilter('  -rule:"a\\\\b" http://x - rule:', isField), [
        { field: "rule", value: "a\\b", negated: true },
        { field: "", value: "http://x", negated: false },
    ]);
});

test("terms that are written are read as the same terms", () => {
    for (const value of ["a", "a b", '"', "\\", '\\"', "a\\", "-", "*", "\\*", "é\u202e", "rule:x"]) {
        for (const field of ["", "rule"]) {
            const terms = [{ field, value, negated: field === "" }];
            assert.deepEqual(parseFilter(formatFilter(terms), isField), terms, JSON.stringify(value));
        }
    }
});

test("a text that is made exact selects itself and nothing else", () => {
    const texts = ["", "a", "a*", "a?", "a\\", "a\\*", "a\\\\*", "ab", "A", "operator*(int)", "C:\\src\\a.c"];
    for (const text of texts) assert.deepEqual(texts.filter(matcher(exactly(text), texts)), [text]);
});

test("a value selects a text that it is, else texts that it fits, else those that have it", () => {
    const texts = ["leak", "leak/memory", "LEAK/Socket", "style"];
    assert.deepEqual(texts.filter(matcher("leak", texts)), ["leak"]);
    assert.deepEqual(texts.filter(matcher("leak/*", texts)), ["leak/memory", "LEAK/Socket"]);
    assert.deepEqual(texts.filter(matcher("sock", texts)), ["LEAK/Socket"]);
    assert.deepEqual(texts.filter(matcher("st?le", texts)), ["style"]);
    assert.deepEqual(texts.filter(matcher("(", texts)), []);
});

test("findings are filtered by words, fields, patterns and their negations", () => {
    assert.deepEqual(found(""), [0, 1, 2, 3]);
    assert.deepEqual(found("NEVER freed"), [1, 2]);
    assert.deepEqual(found('"is never closed"'), [0]);
    assert.deepEqual(found("http.c"), [0, 1]);
    assert.deepEqual(found("level:error level:note"), [0, 3]);
    assert.deepEqual(found("file:*/net/* suppressed:no"), [0]);
    assert.deepEqual(found("-file:*/net/*"), [2, 3]);
    assert.deepEqual(found("-freed"), [0, 3]);
    assert.deepEqual(found("directory:src/"), [2]);
    assert.deepEqual(found("rule:nothing"), []);
});

test("a facet is counted over the rest of the filter", () => {
    const { table, searched } = tableOf(FINDINGS);
    const outcome = evaluate(table, parseFilter("level:error never", (name) => table.dimensions.has(name)), searched);
    const { texts } = table.dimensions.get("level");
    const counts = facetCounts(table.dimensions.get("level"), outcome);
    assert.deepEqual(Object.fromEntries(texts.map((text, i) => [text, counts[i]])), { "": 0, error: 1, warning: 2, note: 0 });
    assert.equal(facetCounts(table.dimensions.get("rule"), outcome).reduce((a, b) => a + b), 1);
});

test("random filters agree with one that looks at each finding", () => {
    const seed = Number(process.env.SEED ?? Date.now() % 1e6);
    console.log(`seed ${seed}`);
    let state = seed;
    const random = (many) => (state = (state * 48271 + 11) % 2147483647) % many;
    const levels = ["error", "warning", "note", "none"];
    const list = Array.from({ length: 300 }, () => [levels[random(4)], `r${random(5)}`, `d${random(3)}/f${random(9)}.c`, random(90), `m${random(20)}`, random(2)]);
    const { table, searched } = tableOf(list);
    const texts = ["level:error", "level:note", "rule:r1", "rule:r?", "-rule:r3", "file:d1/*", "-file:*f2*", "m1", "-m7", "suppressed:yes"];
    const holds = [
        (f) => f[0] === "error", (f) => f[0] === "note", (f) => f[1] === "r1", () => true, (f) => f[1] === "r3", (f) => f[2].startsWith("d1/"),
        (f) => f[2].includes("f2"), (f) => f[4].includes("m1"), (f) => f[4].includes("m7"), (f) => f[5] === 1,
    ];
    for (let round = 0; round < 200; ++round) {
        const picked = texts.map((_text, i) => i).filter(() => random(3) === 0);
        const terms = parseFilter(picked.map((i) => texts[i]).join(" "), (name) => table.dimensions.has(name));
        const fieldOf = (i) => /^-?(\w+):/.exec(texts[i])?.[1] ?? `word ${i}`;
        const expected = list.map((f) => {
            if (picked.some((i) => texts[i].startsWith("-") && holds[i](f))) return false;
            const fields = new Set(picked.filter((i) => !texts[i].startsWith("-")).map(fieldOf));
            return [...fields].every((field) => picked.some((i) => !texts[i].startsWith("-") && fieldOf(i) === field && holds[i](f)));
        });
        assert.deepEqual([...evaluate(table, terms, searched).failing].map((fails) => fails === 0), expected, picked.map((i) => texts[i]).join(" "));
    }
});

test("clicking a bar adds its term, clicking again removes it", () => {
    const once = toggled([], "rule", "a*");
    assert.deepEqual(once, [{ field: "rule", value: "a\\*", negated: false }]);
    assert.deepEqual(toggled(once, "rule", "a*"), []);
});

test("the fragment of the address can be read, and gives the state again", () => {
    const names = { fields: new Set(["rule", "level", "file"]), sorts: new Set(["level", "file"]), groups: new Set(["", "rule"]), findings: 10 };
    const state = {
        ...DEFAULTS, view: "findings", sort: "file", descending: true, group: "rule", finding: 7, flow: 1, step: 3,
        terms: [
            { field: "level", value: "error", negated: false },
            { field: "file", value: "*/net/*", negated: true },
            { field: "", value: "a&b = 100 % é#", negated: false },
            { field: "rule", value: "", negated: false },
        ],
    };
    const hash = formatHash(state);
    assert.match(hash, /level=error&-file=\*\/net\/\*&q=/);
    assert.deepEqual(parseHash(hash, names), state);
    assert.deepEqual(parseHash("", names), DEFAULTS);
    assert.deepEqual(parseHash("#__proto__=1&constructor=2&finding=99&sort=none&group=x&q=%E0%A4%A&x", names).terms, [{ field: "", value: "%E0%A4%A", negated: false }]);
    assert.equal(parseHash(formatHash({ ...state, terms: [{ field: "", value: "\ud800", negated: false }] }), names).terms[0].value, "\ufffd");
});

test("columns of one, two and four bytes are read from where they stand", () => {
    const bytes = new Uint8Array([1, 2, 3, 1, 0, 2, 0, 0, 1, 1, 0, 0, 0, 255, 255, 255, 255, 4, 0, 0, 0]);
    const index = { findings: 3, columns: [{ name: "level", type: "u8" }, { name: "rule", type: "u16" }, { name: "line", type: "u32" }], dictionaries: { level: ["", "error"], rule: [""] } };
    const table = makeTable(index, bytes, []);
    assert.deepEqual([...table.columns.get("rule")], [1, 2, 256]);
    assert.deepEqual([...table.columns.get("line")], [1, 4294967295, 4]);
    assert.equal(textOf(table, "level", 0), "error");
    assert.equal(textOf(table, "level", 1), "");
    assert.throws(() => makeTable(index, bytes.slice(1), []), /too short/);
});

test("directories come from URIs", () => {
    const { table } = tableOf(FINDINGS);
    assert.deepEqual([0, 1, 2, 3].map((i) => textOf(table, "directory", i)), ["src/net/", "src/net/", "src/", "test/"]);
    assert.equal(commonDirectory(["", "a/b/c.c", "a/b/d/e.c"]), "a/b/");
    assert.equal(commonDirectory(["a/b.c", "ab.c"]), "");
    assert.equal(commonDirectory([]), "");
});

test("sorting is stable, also by large keys", () => {
    assert.deepEqual([...stableSort(Uint32Array.of(3, 1, 2, 0), (i) => [5, 4294967295, 0, 5][i])], [2, 3, 0, 1]);
    assert.deepEqual([...textRanks("level", ["", "note", "error", "odd"])], [2, 1, 0, 3]);
    assert.deepEqual([...textRanks("rule", ["", "r10", "r9"])], [0, 2, 1]);
});

test("the list is sorted, filtered and grouped, and groups can be closed", () => {
    const { table, searched } = tableOf(FINDINGS);
    const sorter = new Sorter(table, () => ({ values: searched[0].values, texts: searched[0].texts }));
    assert.deepEqual([...sorter.all("level", false)], [0, 2, 1, 3]);
    assert.deepEqual([...sorter.all("level", true)], [3, 2, 1, 0]);
    assert.deepEqual([...sorter.all("file", false)], [2, 1, 0, 3]);
    const order = filtered(sorter.all("file", false), evaluate(table, [], searched));
    const { values } = table.dimensions.get("rule");
    const result = grouped(order, values, sorter.rank("rule"));
    const closed = new Set();
    const rows = () => new Rows(result.order, result.groups, (group) => closed.has(group.value));
    const shown = () => Array.from({ length: rows().length }, (_none, i) => rows().at(i).finding ?? "group");
    assert.deepEqual(shown(), ["group", 2, 1, "group", 0, "group", 3]);
    assert.equal(rows().rowOf(3), 6);
    closed.add(result.groups[0].value);
    assert.deepEqual(shown(), ["group", "group", 0, "group", 3]);
    assert.equal(rows().rowOf(1), 0);
});

test("links in messages are found, escaped brackets are not links", () => {
    assert.deepEqual(messageParts("[opened](1) and [never [closed](2)"), [
        { text: "opened", target: "1" }, { text: " and [never " }, { text: "closed", target: "2" },
    ]);
    assert.deepEqual(messageParts("a \\[b\\](1) [c\\]d](https://x/y)"), [{ text: "a [b](1) " }, { text: "c]d", target: "https://x/y" }]);
    assert.equal(messageText("C:\\\\dir [](1) [x]( 1) x[0](y"), "C:\\\\dir [](1) [x]( 1) x[0](y");
});

test("a long hostile message takes no long time", () => {
    for (const text of ["[", "\\[", "](", "[a](", "[a", "\\", "[a](b"]) {
        const begin = performance.now();
        messageParts(text.repeat(1_000_000 / text.length));
        pieces(text.repeat(1_000_000 / text.length));
        assert.ok(performance.now() - begin < 2000, text);
    }
});

test("characters that can't be seen become marks", () => {
    assert.equal(plain("a\u202eb\u200bc\u0000\ufeff"), "a⟨U+202E⟩b⟨U+200B⟩c⟨U+0000⟩⟨U+FEFF⟩");
    assert.equal(plain("\ud800x\udc00 \u{1f600} \t\n\r\n\r"), "⟨U+D800⟩x⟨U+DC00⟩ \u{1f600} \t\n\n⟨U+000D⟩");
    assert.equal(plain("עברית ❤️ é"), "עברית ❤️ é");
    assert.equal(plain("\u{e0041}\u3164\u2028"), "⟨U+E0041⟩⟨U+3164⟩⟨U+2028⟩");
    assert.equal(pieces("\u202e".repeat(1000)).length, 1);
    assert.equal(cut("ab\u{1f600}c", 3), "ab…");
    assert.equal(wellFormed("\ud800\u{1f600}"), "\ufffd\u{1f600}");
});

test("regions mark parts of lines", () => {
    const region = { startLine: 2, startColumn: 3, endLine: 4, endColumn: 2 };
    assert.equal(markedPart("  abc", 1, region, false), null);
    assert.deepEqual(markedPart("  abc", 2, region, false), [2, 5]);
    assert.deepEqual(markedPart("  abc", 3, region, false), [2, 5]);
    assert.deepEqual(markedPart("  abc", 4, region, false), [2, 3]);
    assert.deepEqual(markedPart("x name(y)", 1, { startLine: 1, startColumn: 3 }, false), [2, 6]);
    assert.deepEqual(markedPart("\u{1f600}ab", 1, { startLine: 1, startColumn: 2, endColumn: 3 }, true), [2, 3]);
    assert.deepEqual(markedPart("ab", 1, { startLine: 1, startColumn: 99, endColumn: 120 }, false), [2, 2]);
    assert.deepEqual(segments("abcd", [[1, 3], [2, 4], null]), [
        { text: "a", marks: [] }, { text: "b", marks: [0] }, { text: "c", marks: [0, 1] }, { text: "d", marks: [1] },
    ]);
});

test("lines come from a file, a context or a snippet, and from offsets", () => {
    assert.deepEqual(fileLines("a\r\nb\nc").lines, ["a", "b", "c"]);
    const context = { startLine: 4, snippet: { text: "x\ny\n" } };
    assert.deepEqual(snippetLines({ startLine: 5 }, context), { first: 4, lines: ["x", "y"], missing: 0 });
    assert.deepEqual(snippetLines({ startLine: 5, startColumn: 3, snippet: { text: "q" } }, undefined), { first: 5, lines: ["q"], missing: 2 });
    assert.equal(snippetLines({ startLine: 5 }, undefined), null);
    const placed = withLines({ charOffset: 4, charLength: 3 }, fileLines("abc\ndef"));
    assert.deepEqual([placed.startLine, placed.startColumn, placed.endLine, placed.endColumn], [2, 1, 2, 4]);
});

test("ranges of values are found in payloads, and integers of any length are kept", () => {
    const value = (range) => ({ first_string: "x", first_int: 1, type: { arm: "Inf_Type_Integer", args: {} }, range });
    const big = "-5033586775027789292406387987836992921740875772110299347420";
    const range = { arm: "Value_Range", args: { intervals: [{ arm: "Int_Interval", args: { lower: big, upper: null } }, { arm: "Nan" }], multiplicity: { arm: "Multiple", args: "4" } } };
    const [first, second] = rangesIn({ variable: { arm: "OTHER" }, value: value(range), fields: [["name", [1, { arm: "Field_Scalar", args: value({ arm: "Int_Full_Range", args: { lower: "0", upper: "99" } }) }]]] });
    assert.equal(first.intervals[0].lower.text, big);
    assert.ok(Math.abs(first.intervals[0].lower.at + 57.7) < 0.1);
    assert.equal(first.intervals[0].upper, null);
    assert.equal(first.also, "multiple of 4, or NaN");
    assert.equal(first.path, "value");
    assert.equal(second.intervals[0].upper.text, "99");
    assert.ok(second.full && second.path.includes("name"));
    assert.deepEqual(rangesIn({ range: { arm: 1 }, type: null }), []);
});

test("floats in hexadecimal are read", () => {
    const cases = { "0X1.8P+1": 3, "-0XF.FFFFFP+124": -3.4028234663852886e38, "0X0P+0": 0, "0X1P-1074": 5e-324, "0X1P+16383": Infinity };
    for (const [text, value] of Object.entries(cases)) assert.equal(hexFloat(text), value, text);
    assert.ok(Number.isNaN(hexFloat("NAN")));
});

test("the cells of the treemap hold each finding once", () => {
    const uris = ["", "a/b/c/1.c", "a/b/c/2.c", "a/b/3.c", "a/x/4.c", "5.c"];
    const tree = directoryTree(uris, Uint32Array.of(0, 3, 2, 1, 4, 1));
    assert.deepEqual(total(tree), { findings: 11, files: 5 });
    const found = cells(tree);
    assert.equal(found.reduce((sum, cell) => sum + cell.findings, 0), 11);
    assert.deepEqual(found.map((cell) => `${cell.path}${cell.direct ? "*" : ""} ${cell.findings}`).sort(), ["* 1", "a/b/* 1", "a/b/c/ 5", "a/x/ 4"]);
});

test("a path of very many directories is no trouble", () => {
    const tree = directoryTree(["", `${"a/".repeat(100_000)}x.c`, "b.c"], Uint32Array.of(0, 1, 1));
    assert.equal(cells(tree).length, 2);
});

test("a log of one finding has its rule alone, in place of all", () => {
    const run = { tool: { driver: { name: "t", rules: [{ id: "a" }, { id: "b" }] }, extensions: [{ name: "e", rules: [{ id: "c" }] }] }, columnKind: "utf16CodeUnits" };
    const log = JSON.parse(stringify(logOf({ ruleId: "b", ruleIndex: 1, message: { text: "m" } }, run)));
    assert.equal(log.version, "2.1.0");
    assert.deepEqual(log.runs[0].tool, { driver: { name: "t", rules: [{ id: "b" }] }, extensions: [{ name: "e" }] });
    assert.deepEqual(log.runs[0].results, [{ ruleId: "b", ruleIndex: 0, message: { text: "m" } }]);
    assert.equal(run.tool.driver.rules.length, 2);
    const other = logOf({ ruleId: "c", rule: { index: 0, toolComponent: { index: 0 } }, message: { text: "m" } }, run);
    assert.deepEqual(other.runs[0].tool.extensions, [{ name: "e", rules: [{ id: "c" }] }]);
});
