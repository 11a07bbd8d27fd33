#!/usr/bin/env python3
"""Compares reports with what other commands say of the same result sets.

usage: report_test.py BRADEP RANDOM_VALUES FIXTURES
"""

import base64
import hashlib
import itertools
import json
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import unittest

from report_reader import Page, Report

# The roots with checks, and where these are.
CHECKS = {"Base_Gui_Internal_Form_Datas_Aggregated_Results_T": "application_results.checks",
          "Application_Results_Application_Results": "checks"}
RESULT_SET = next(iter(CHECKS))
# Logs that hold what no other has, beside the fixtures.
MORE_LOGS = [path for directory in filter(None, os.environ.get("BRADEP_SARIF_DIRS", "").split(":"))
             for path in sorted(pathlib.Path(directory).glob("*.sarif"))]
SEED = int(os.environ.get("BRADEP_SEED", random.SystemRandom().randrange(2**32)))
COLUMNS = ["tool", "rule", "level", "kind", "category", "class", "message", "uri", "function", "line", "column",
           "suppressed"]


def run(*command, code=0):
    done = subprocess.run([str(part) for part in command], capture_output=True, check=False, timeout=600)
    assert done.returncode == code, (command, done.returncode, done.stderr)
    return done.stdout


def lines(text):
    return [json.loads(line) for line in text.splitlines()]


def place(number):
    return number if 0 < (number or 0) < 2**32 else 0


class ReportData(unittest.TestCase):
    bradep = random_values = fixtures = None
    maxDiff = 2000

    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.here = pathlib.Path(cls.scratch.name)
        cls.logs = [log for log in sorted(pathlib.Path(cls.fixtures).glob("*.sarif"))
                    if not log.name.startswith("bad-")] + MORE_LOGS
        cls.numbers = itertools.count()

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def report(self, *arguments, code=0):
        target = self.here / f"report{next(self.numbers)}"
        run(self.bradep, "report", *arguments, "-o", target, code=code)
        return Report(target) if code == 0 else None

    def imported(self, *logs):
        target = self.here / f"set{next(self.numbers)}"
        run(self.bradep, "import", *logs, "-o", target)
        return target

    def random_sets(self):
        """Sets with checks that no import has made, with their roots."""
        directory = self.here / f"random{next(self.numbers)}"
        directory.mkdir()
        print(run(self.random_values, directory).decode().strip())
        found = [(root, one) for root in CHECKS for one in sorted(directory.glob(f"{root}.random*"))
                 if self.asked([one], "SELECT finding FROM findings", root)]
        self.assertGreater(len(found), 0)
        return found

    def asked(self, sets, sql, root=RESULT_SET):
        return lines(run(self.bradep, "sql", "--format", "ndjson", "--root", root, *sets, sql))

    def expect_what_others_say(self, sets, report, root=RESULT_SET):
        """Everything but states, identities and sources."""
        rows = {(row["result_set"] - 1, row["key"]): row
                for row in self.asked(sets, "SELECT * FROM findings", root)}
        details, columns = report.details(), report.columns()
        self.assertEqual(report.index["findings"], len(rows))
        self.assertEqual(len(details), len(rows))
        results = []
        for one in sets:
            log = json.loads(run(self.bradep, "export", "--root", root, one, "--sarif", "-"))
            results.append([(run_number, result) for run_number, run in enumerate(log["runs"])
                            for result in run.pop("results")])
            if one == sets[0]:
                runs = []
            runs += log["runs"]
        self.assertEqual(report.runs(), runs)
        self.expect_columns(rows, details, columns)
        self.expect_results(results, details, columns)
        self.expect_records(sets, details, root)

    def expect_columns(self, rows, details, columns):
        seen = set()
        for i, detail in enumerate(details):
            row = rows[detail["set"], detail["key"]]
            seen.add((detail["set"], detail["key"]))
            expected = {name: row[name] if name == "suppressed" else
                              place(row[name]) if name in ("line", "column") else row[name] or ""
                        for name in COLUMNS}
            result = detail.get("result", {})
            expected["level"] = result.get("level", expected["level"])
            if row["run"] is None:  # a kernel's check
                expected["message"] = result["message"]["text"]
                names = result.get("locations", [{}])[0].get("logicalLocations", [{}])
                expected["function"] = names[0].get("name", "")
            self.assertEqual({name: columns[name][i] for name in COLUMNS}, expected)
            self.assertEqual(columns["state"][i], row["baseline_state"] or "")
        self.assertEqual(seen, set(rows))

    def expect_results(self, results, details, columns):
        found = [[] for _ in results]
        first_runs = []
        for i, detail in enumerate(details):
            if "result" in detail:
                found[detail["set"]].append((columns["run"][i], detail["result"]))
        first = 0
        for of_set in results:
            first_runs.append(first)
            first += 1 + max((number for number, _ in of_set), default=0)
        for number, of_set in enumerate(results):
            # Runs without results make no difference but in the numbers.
            expected = [result for _, result in of_set]
            self.assertEqual([result for _, result in found[number]], expected)
            if len(results) == 1:
                self.assertEqual([run for run, _ in found[number]], [run for run, _ in of_set])

    def expect_records(self, sets, details, root):
        for number, one in enumerate(sets):
            records = {f"{file}:{ordinal}": (file, ordinal, value) for (file, ordinal), value in
                       lines(run(self.bradep, "dump", "--root", root, one, "--ndjson", CHECKS[root]))}
            found = {f"{detail['record'][0][0]}:{detail['record'][0][1]}": (*detail["record"][0], detail["record"][1])
                     for detail in details if detail["set"] == number}
            self.assertEqual(found, records)

    def test_imported_sets(self):
        for log in self.logs:
            with self.subTest(log=log.name):
                one = self.imported(log)
                self.expect_what_others_say([one], self.report(one))

    def test_logs_are_imported(self):
        for log in self.logs:
            of_log, of_set = self.report(log), self.report(self.imported(log))
            self.assertEqual(of_log.columns(), of_set.columns())
            self.assertEqual(of_log.details(), of_set.details())
            self.assertEqual(of_log.index["sets"][0]["name"], str(log))

    def test_several_sets_are_one_report(self):
        sets = [self.imported(*self.logs[i::3]) for i in range(3)]
        report = self.report(*reversed(sets))
        self.expect_what_others_say(sorted(sets), report)
        self.assertEqual([one["name"] for one in report.index["sets"]], sorted(map(str, sets)))
        for one in report.index["sets"]:
            self.assertEqual(one["bytes"], os.path.getsize(one["name"]))

    def test_sets_that_no_import_has_made(self):
        for root, one in self.random_sets():
            with self.subTest(one=one.name):
                self.expect_what_others_say([one], self.report("--root", root, one), root)

    def test_a_diff(self):
        old, new = self.pair()
        report = self.report(new, "--diff", old)
        said = lines(run(self.bradep, "diff", old, new, "--format", "ndjson"))
        self.assertEqual({one["state"] for one in said}, {"new", "absent", "updated", "unchanged"})
        expected = {(one["state"] == "absent", one["new"] or one["old"]): one for one in said}
        details, columns = report.details(), report.columns()
        found = {(detail.get("old", False), detail["key"]): i for i, detail in enumerate(details)}
        self.assertEqual(set(found), set(expected))
        for key, one in expected.items():
            i = found[key]
            self.assertEqual(columns["state"][i], one["state"])
            self.assertEqual(details[i]["result"]["baselineState"], one["state"])
            changes = [{name: value for name, value in change.items() if value is not None}
                       for change in one["changes"]]
            self.assertEqual(details[i].get("changes", []), changes)
            self.assertEqual(details[i].get("old", False), one["state"] == "absent")
        self.assertEqual([one["name"] for one in report.index["old_sets"]], [str(old)])
        runs = report.runs()
        self.assertEqual({runs[run]["tool"]["driver"]["name"] for run in columns["run"]}, {"Tool"})
        self.assertEqual(len(runs), 2)

    def pair(self):
        def result(rule, line, text, level="warning"):
            return {"ruleId": rule, "level": level, "message": {"text": text}, "locations": [{"physicalLocation": {
                "artifactLocation": {"uri": "src/a.c"}, "region": {"startLine": line}}}]}
        olds = [result("a", 1, "stays"), result("b", 2, "goes"), result("c", 3, "changes", "note")]
        news = [result("a", 5, "stays"), result("c", 3, "changes", "error"), result("d", 9, "comes")]
        return [self.log(name, results) for name, results in (("old.sarif", olds), ("new.sarif", news))]

    def log(self, name, results, **members):
        path = self.here / name
        path.write_text(json.dumps({"version": "2.1.0", "runs": [
            {"tool": {"driver": {"name": "Tool"}}, "results": results, **members}]}))
        return path

    def test_a_series(self):
        old, new = self.pair()
        series = self.here / "series"
        run(self.bradep, "track", series, old, new)
        report = self.report(new, "--track", series)
        ids = {(one["rule"], one["line"]): one for one in
               lines(run(self.bradep, "track", series, "--list", "open", "--format", "ndjson"))}
        columns, details = report.columns(), report.details()
        for i, detail in enumerate(details):
            one = ids.pop((columns["rule"][i], columns["line"][i]))
            self.assertEqual(columns["identity"][i], one["id"])
            self.assertEqual(detail["first_seen"], str([old, new][one["first_run"] - 1]))
            self.assertEqual(detail["last_seen"], str(new))
        self.assertEqual(ids, {})
        said = lines(run(self.bradep, "track", series, "--format", "ndjson"))
        self.assertEqual(report.index["history"], [
            {"run": one["run"], "name": one["name"], "findings": one["open"] + one["suppressed"],
             **{name: one[name] for name in ("open", "new", "returned", "fixed")}} for one in said])

    def test_equal_findings_of_a_series_have_numbers_of_their_own(self):
        one = {"ruleId": "a", "message": {"text": "equal"}}
        log = self.log("equal.sarif", [one] * 50)
        series = self.here / "equal"
        run(self.bradep, "track", series, log)
        self.assertEqual(sorted(self.report(log, "--track", series).columns()["identity"]), list(range(1, 51)))

    def test_a_series_of_kernel_sets(self):
        for root, one in self.random_sets():
            series = self.here / f"series{next(self.numbers)}"
            run(self.bradep, "track", series, "--root", root, one)
            identities = self.report("--root", root, one, "--track", series).columns()["identity"]
            self.assertEqual(sorted(identities), list(range(1, len(identities) + 1)))

    def test_another_run_of_a_series_has_no_numbers(self):
        old, new = self.pair()
        series = self.here / "other"
        run(self.bradep, "track", series, old, new)
        report = self.report(old, "--track", series)
        self.assertNotIn("identity", report.columns())
        self.assertEqual(len(report.index["history"]), 2)

    def test_one_file_has_the_same_chunks(self):
        old, new = self.pair()
        arguments = [new, "--diff", old, "--source-root", self.fixtures, "--title", "</title> & more"]
        directory = self.report(*arguments)
        single = self.report(*arguments, "--single")
        self.assertEqual(single.names, sorted([*directory.names, "licences"]))
        for name in directory.names:
            self.assertEqual(single.read(name), directory.read(name), name)
        self.assertEqual(single.bytes("licences"), (directory.path / "licences.txt").read_bytes())

    def test_the_policy_allows_what_one_file_runs_and_nothing_else(self):
        single = self.report(self.logs[0], "--single")
        page = Page(single.path.read_text(encoding="utf-8"))
        for directive, tag in (("script-src", "script"), ("style-src", "style")):
            allowed, = re.findall(rf"{directive} ([^;]*)", page.policy)
            texts = [text for name, attributes, text in page.elements if name == tag and "type" not in attributes]
            self.assertEqual(len(texts), 1)
            digest = base64.b64encode(hashlib.sha256(texts[0].encode()).digest()).decode()
            self.assertEqual(allowed.strip(), f"'sha256-{digest}'")
        self.assertTrue(page.policy.startswith("default-src 'none';"))
        for tag, attributes, _ in page.elements:
            self.assertFalse({"src", "href", "style"} & set(attributes), (tag, attributes))
            self.assertFalse([name for name in attributes if name.startswith("on")])

    def test_the_page_of_a_directory_loads_its_own_files_only(self):
        report = self.report(self.logs[0], "--title", "</title><script>alert(1)</script>")
        page = Page((report.path / "index.html").read_text(encoding="utf-8"))
        self.assertEqual([text for tag, _, text in page.elements if tag == "title"],
                         ["</title><script>alert(1)</script>"])
        self.assertEqual([attributes for tag, attributes, _ in page.elements if tag == "script"],
                         [{"src": "report.js"}])
        self.assertEqual(report.index["title"], "</title><script>alert(1)</script>")

    def test_equal_input_gives_equal_bytes(self):
        old, new = self.pair()
        for arguments in ([self.imported(*self.logs)], [new, "--diff", old]):
            first, second = self.report(*arguments), self.report(*arguments)
            for name in ("index.html", "report.js", "report.css", "licences.txt",
                         *(f"data/{name}.js" for name in first.names)):
                self.assertEqual((first.path / name).read_bytes(), (second.path / name).read_bytes(), name)
            self.assertEqual(first.names, second.names)

    def test_sources(self):
        sources = self.here / "project"
        (sources / "src").mkdir(parents=True)
        (sources / "src/a b.c").write_bytes(b"int a;\xff\n")
        (sources / "src/step.c").write_text("step")
        (sources / "src/related.c").write_text("related")
        (sources / "binary.c").write_bytes(b"\0")
        (sources / "large.c").write_text("x" * 300)
        (self.here / "secret.c").write_text("secret")
        (sources / "link.c").symlink_to(self.here / "secret.c")
        os.mkfifo(sources / "fifo.c")

        def at(uri, **more):
            return {"physicalLocation": {"artifactLocation": {"uri": uri, **more}, "region": {"startLine": 1}}}
        uris = {f"file://{sources}/src/a%20b.c": None, "src/related.c": None, "step.c": None,
                "binary.c": "", "large.c": "", "link.c": "", "fifo.c": "", "../secret.c": "", "/etc/shadow": "",
                "../../../../../../etc/shadow": "", "..%2fsecret.c": "", f"{self.here}/secret.c": "",
                "missing.c": "", "/dev/zero": ""}
        others = [uri for uri in uris if uri not in ("src/related.c", "step.c")]
        results = [{"message": {"text": "m"}, "locations": [at(uri)]} for uri in others]
        results[0]["relatedLocations"] = [at("src/related.c")]
        results[0]["codeFlows"] = [{"threadFlows": [{"locations": [{"location": at("step.c", uriBaseId="SRC")}]}]}]
        log = self.log("sources.sarif", results, originalUriBaseIds={
            "SRC": {"uri": "src/", "uriBaseId": "ROOT"}, "ROOT": {"uri": f"file://{sources}/"}})
        report = self.report(log, "--source-root", sources, "--max-source-file", 100)
        self.assertEqual(set(report.index["source"]["files"]), set(uris))
        texts = {uri: report.source(uri).get("text") for uri in uris}
        self.assertEqual({uri: text for uri, text in texts.items() if text is not None},
                         {f"file://{sources}/src/a%20b.c": "int a;\ufffd\n", "src/related.c": "related",
                          "step.c": "step"})
        skipped = report.index["source"]["skipped"]
        self.assertEqual(sum(skipped.values()), len(uris) - 3)
        self.assertNotIn(b"secret", b"".join(report.bytes(name) for name in report.names
                                             if name.startswith("source-")))
        for uri in uris:
            self.assertTrue(report.source(uri).get("text") or report.source(uri)["skipped"] in skipped)
        total = self.report(log, "--source-root", sources, "--max-source", 10).index["source"]["skipped"]
        self.assertGreater(sum(total.values()), sum(skipped.values()))

    def test_one_file_has_10000_findings_at_most(self):
        def many(count):
            return self.log(f"{count}.sarif", [{"message": {"text": str(i % 7)}} for i in range(count)])
        self.assertEqual(self.report(many(10000), "--single").index["findings"], 10000)
        self.report(many(10001), "--single", code=1)
        self.assertFalse((self.here / f"report{next(self.numbers) - 1}").exists())


if __name__ == "__main__":
    ReportData.bradep, ReportData.random_values, ReportData.fixtures = map(os.path.abspath, sys.argv[1:4])
    print(f"BRADEP_SEED={SEED}")
    os.environ["BRADEP_SEED"] = str(SEED)
    unittest.main(argv=sys.argv[:1])
