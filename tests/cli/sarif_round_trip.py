#!/usr/bin/env python3
"""Imports SARIF logs, exports the sets as SARIF, and compares what comes out with what went in.

Usage: sarif_round_trip.py BRADEP DIRECTORY...

Takes every sound .sarif file in the directories and in those that BRADEP_SARIF_DIRS names, and random logs.
- The export is valid by the schema.
- If the log is valid, too: importing the export gives a set with the same digest, and every property that the
  set keeps is equal in both logs, by the independent reader of sarif_reference.py.
- If it is not: what comes out is the same when it goes in once more.
"""

import json
import os
import random
import subprocess
import sys
import tempfile
from pathlib import Path

import jsonschema

import random_sarif
import sarif_reference
from compare_with_reference import difference, logs
from sarif_reference import DEFINITIONS, SCHEMA, first, given, whole_numbers

VALIDATOR = jsonschema.Draft4Validator(SCHEMA)
RANDOM_LOGS = 150

COMPONENTS = ("tool", "taxonomies")
KEPT_OF_RUN = (
    "invocations automationDetails runAggregates baselineGuid originalUriBaseIds versionControlProvenance conversion "
    "language columnKind defaultEncoding defaultSourceLanguage newlineSequences redactionTokens specialLocations "
    "properties").split()


class Facts(sarif_reference.Run):
    """What a set keeps of a run beside its results, as one value that is equal for equal runs."""

    def __init__(self, run):
        super().__init__(0, run)
        self.used = []

    def descriptor(self, reference, lists):
        found = super().descriptor(reference, lists)
        if found is not None and lists != ["rules"]:
            self.use(found[0])
        return found

    def use(self, descriptor):
        if any(descriptor is one for one in self.used):
            return
        self.used.append(descriptor)
        for relationship in given(descriptor, "relationships") or []:
            self.descriptor(given(relationship, "target"), ["taxa"])

    def text(self, value, schema, strings=({}, None)):
        self.last_name = ""
        return whole_numbers(self.resolved(value, schema, strings))

    def kept_component(self, component):
        rest = {name: value for name, value in component.items() if name not in ("rules", "taxa", "notifications")}
        kept = self.text(rest, {"$ref": "/toolComponent"}, ({}, component))
        for name in ("taxa", "notifications"):
            used = [one for one in component.get(name) or [] if any(one is other for other in self.used)]
            if used:
                kept[name] = [self.text(one, {"$ref": "/reportingDescriptor"}, ({}, component)) for one in used]
        return kept

    def all(self):
        rules = []
        extensions = []
        for result in self.run.get("results") or []:
            rule, component = self.rule(result)
            self.more(result, sarif_reference.RESULT, DEFINITIONS["result"], (rule, component))
            for flow in result.get("codeFlows") or []:
                for thread in flow.get("threadFlows") or []:
                    for step in thread.get("locations") or []:
                        self.step(step, rule, component)
            if not rule:
                rules.append(None)
                continue
            if component is not self.driver and not any(component is one for one in extensions):
                extensions.append(component)
            number = next((i for i, one in enumerate(extensions) if one is component), None)
            rules.append([number, self.text(rule, {"$ref": "/reportingDescriptor"}, (rule, component))])
        facts = {}
        for name in KEPT_OF_RUN:
            if self.run.get(name) is not None:
                facts[name] = self.text(self.run[name], DEFINITIONS["run"]["properties"][name], ({}, self.driver))
        facts["tool.properties"] = whole_numbers(given(given(self.run, "tool"), "properties"))
        extensions += [
            one for one in self.extensions
            if self.names_used(one) and not any(one is other for other in extensions)]
        facts["extensions"] = [self.kept_component(one) for one in extensions]
        facts["driver"] = self.kept_component(self.driver)
        facts["taxonomies"] = [
            self.kept_component(one) for one in self.run.get("taxonomies") or [] if self.names_used(one)]
        facts["rules"] = rules
        return facts

    def names_used(self, component):
        return any(one is other for name in ("taxa", "notifications") for one in component.get(name) or []
                   for other in self.used)


def bradep(*arguments):
    done = subprocess.run([BRADEP, *map(str, arguments)], capture_output=True, check=False)
    assert done.returncode == 0, f"{arguments}: {done.returncode} {done.stderr.decode(errors='replace')}"
    return done


def digest(result_set):
    root = "Base_Gui_Internal_Form_Datas_Aggregated_Results_T"
    return bradep("digest", "-q", "--root", root, result_set).stdout.split()[0]


def compare_logs(before, after):
    checks = [sarif_reference.checks([log]) for log in (before, after)]
    if found := difference(*checks):
        raise AssertionError(f"results{found}")
    runs = [sarif_reference.load(log)["runs"] for log in (before, after)]
    assert len(runs[0]) == len(runs[1]), "another number of runs"
    for number, (one, other) in enumerate(zip(*runs)):
        if found := difference(Facts(one).all(), Facts(other).all()):
            raise AssertionError(f"run {number}{found}")


def errors_of(path):
    return [f"{'/'.join(map(str, error.absolute_path))}: {error.message:.200}"
            for error in VALIDATOR.iter_errors(sarif_reference.load(path))]


def round_trip(log, scratch):
    """Returns whether the log is valid."""
    sets = [scratch / f"{number}.set" for number in range(3)]
    exports = [scratch / f"{number}.sarif" for number in range(2)]
    bradep("import", log, "-o", sets[0])
    first_export = bradep("export", sets[0], "--sarif", exports[0])
    errors = errors_of(exports[0])
    assert not errors, f"no valid export: {errors[0]}"
    bradep("import", exports[0], "-o", sets[1])
    is_valid = not errors_of(log)
    if is_valid:
        assert first_export.stderr == b"", first_export.stderr.decode()
        compare_logs(log, exports[0])
        assert digest(sets[0]) == digest(sets[1]), "importing the export gives another set"
        return True
    bradep("export", sets[1], "--sarif", exports[1])
    assert errors_of(exports[1]) == []
    bradep("import", exports[1], "-o", sets[2])
    assert digest(sets[1]) == digest(sets[2]), "the second round gives another set than the first"
    return False


def tried(log, name, counts):
    with tempfile.TemporaryDirectory() as scratch:
        try:
            counts[round_trip(log, Path(scratch))] += 1
        except (AssertionError, sarif_reference.Damaged, ValueError) as failure:
            counts["failed"] += 1
            print(f"FAIL  {name}: {failure}")


def main(program, *directories):
    global BRADEP
    BRADEP = program
    counts = {True: 0, False: 0, "failed": 0}
    for log in logs(directories):
        if not log.name.startswith("bad-"):
            tried(log, log, counts)
    assert counts[True] > 0 and counts[False] > 0, counts
    seed = int(os.environ.get("BRADEP_SEED", random.SystemRandom().randrange(2**32)))
    count = int(os.environ.get("BRADEP_RANDOM_LOGS", RANDOM_LOGS))
    print(f"{count} random logs, BRADEP_SEED={seed}")
    with tempfile.TemporaryDirectory() as directory:
        log = Path(directory) / "random.sarif"
        for number in range(count):
            made = random_sarif.log(random.Random(f"{seed} {number}"))
            log.write_text(json.dumps(made), encoding="utf-8")
            errors = errors_of(log)
            assert not errors, f"the random log {number} is not valid: {errors[0]}"
            tried(log, f"random log {number}", counts)
            if counts["failed"] and (keep := os.environ.get("BRADEP_KEEP_FAILED")):
                Path(keep).write_bytes(log.read_bytes())
                break
    print(f"{counts[True]} valid and {counts[False]} other logs passed, {counts['failed']} failed")
    return 1 if counts["failed"] else 0


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
    sys.exit(sarif_reference.on_a_deep_stack(lambda: main(*sys.argv[1:])))
