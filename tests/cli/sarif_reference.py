#!/usr/bin/env python3
"""Prints the required output of `bradep show --json` for SARIF logs, by the rules of SARIF 2.1.0.

Usage: sarif_reference.py LOG.sarif... prints the lines. Exit code 1: a log is damaged.

It is a second reader on purpose: it shares no code and no structure with the C++ reader.
"""

import json
import re
import sys
import threading
from collections import Counter
from pathlib import Path

SCHEMA = json.loads((Path(__file__).parent.parent / "sarif" / "sarif-2.1.0.schema.json").read_text())
DEFINITIONS = {**SCHEMA["definitions"], "log": SCHEMA}


class Damaged(Exception):
    pass


def demand(condition, what):
    if not condition:
        raise Damaged(what)


def typed(container, name, kind):
    """The member; None if it is absent or null."""
    demand(isinstance(container, dict), f"{container!r:.60} is no object")
    value = container.get(name)
    if value is None:
        return None
    demand(isinstance(value, kind), f"{name} is {value!r:.60}")
    return value


def obj(container, name):
    return typed(container, name, dict)


def array(container, name):
    return typed(container, name, list) or []


def string(container, name):
    return typed(container, name, str)


def integer(container, name):
    value = typed(container, name, (int, float))
    if value is None:
        return None
    demand(not isinstance(value, bool), f"{name} is a boolean")
    demand(-(2**31) <= value < 2**31 and int(value) == value, f"{name} is {value}")
    return int(value)


def array_index(container, name="index"):
    """The index; None if it is absent or -1, the default of every index property in SARIF."""
    value = integer(container, name)
    demand(value is None or value >= -1, f"{name} is {value}")
    return None if value == -1 else value


def first(*candidates):
    return next((c for c in candidates if c is not None), None)


def without_absent(**members):
    return {name: value for name, value in members.items() if value is not None and value != [] and value != {}}


WHOLE, MARKDOWN, LOGICAL = "whole", "markdown", "logical"
REGION = dict.fromkeys(
    "charOffset charLength byteOffset byteLength snippet message sourceLanguage properties".split(), WHOLE)
PHYSICAL = {"region": REGION, "contextRegion": WHOLE, "address": WHOLE, "properties": WHOLE}
ANY_LOCATION = {
    "physicalLocation": PHYSICAL, "logicalLocations": LOGICAL, "annotations": WHOLE, "relationships": WHOLE,
    "properties": WHOLE}
STEP = {
    **dict.fromkeys("kinds state nestingLevel executionOrder executionTimeUtc importance taxa module stack "
                    "webRequest webResponse properties".split(), WHOLE),
    "location": {"id": WHOLE, "message": MARKDOWN, **ANY_LOCATION}}
RESULT = {
    **dict.fromkeys("guid correlationGuid rank occurrenceCount fixes taxa analysisTarget attachments stacks "
                    "provenance hostedViewerUri workItemUris webRequest webResponse properties".split(), WHOLE),
    "message": MARKDOWN,
    "locations": [{"id": WHOLE, "message": WHOLE, **ANY_LOCATION}],
    "relatedLocations": [{"message": MARKDOWN, **ANY_LOCATION}],
    "suppressions": [dict.fromkeys("guid justification location properties".split(), WHOLE)],
    "codeFlows": [{
        "message": WHOLE, "properties": WHOLE,
        "threadFlows": [dict.fromkeys("id message initialState immutableState properties".split(), WHOLE)]}]}


def given(value, name):
    return value.get(name) if isinstance(value, dict) else None


def at_index(values, index):
    is_index = isinstance(index, (int, float)) and not isinstance(index, bool) and index == index // 1
    return values[int(index)] if isinstance(values, list) and is_index and 0 <= index < len(values) else None


def whole_numbers(value):
    """1.0 is the integer 1."""
    if isinstance(value, dict):
        return {name: whole_numbers(child) for name, child in value.items()}
    if isinstance(value, list):
        return [whole_numbers(child) for child in value]
    if isinstance(value, float) and value == int(value) and abs(value) <= 2**53:
        return int(value)
    return value


LISTS = {
    "taxa": "taxa", "relationships": "taxa", "associatedRule": "rules", "ruleConfigurationOverrides": "rules",
    "notificationConfigurationOverrides": "notifications", "toolConfigurationNotifications": "notifications",
    "toolExecutionNotifications": "notifications"}
SHARED = {
    "logicalLocation": "logicalLocations", "address": "addresses", "webRequest": "webRequests",
    "webResponse": "webResponses"}


def part_schema(schema, name):
    """The schema of a property of an object, or of the elements of a list of objects."""
    target = schema.get("items", schema)
    definition = DEFINITIONS[target["$ref"].rsplit("/", 1)[1]] if "$ref" in target else target
    return definition["properties"][name]


class Run:
    last_name = ""

    def __init__(self, number, run):
        self.number = number
        self.run = run
        tool = obj(run, "tool") or {}
        self.driver = obj(tool, "driver") or {}
        self.extensions = array(tool, "extensions")
        self.tool_name = string(self.driver, "name")
        self.check_what_is_not_printed()

    def check_what_is_not_printed(self):
        string(self.driver, "version"), string(self.driver, "semanticVersion")
        for name in ("artifacts", "logicalLocations", "threadFlowLocations"):
            array(self.run, name)
        for component in [self.driver, *self.extensions]:
            for rule in array(component, "rules"):
                string(rule, "id")

    def component(self, reference):
        """The component that a toolComponentReference refers to: an element of tool.extensions by
        index, guid or name; without any of them, the driver."""
        if reference is None:
            return self.driver
        at = array_index(reference)
        if at is not None:
            demand(at < len(self.extensions), f"toolComponent.index {at}")
            return self.extensions[at]
        for name in ("guid", "name"):
            wanted = string(reference, name)
            if wanted is not None:
                for extension in self.extensions:
                    if string(extension, name) == wanted:
                        return extension
        return self.driver

    def rule_by_id(self, component, rule_id):
        """The rule whose id is the longest start of a hierarchical rule id, cut at slashes."""
        parts = rule_id.split("/")
        for length in range(len(parts), 0, -1):
            wanted = "/".join(parts[:length])
            for rule in array(component, "rules"):
                if string(rule, "id") == wanted:
                    return rule
        return None

    def rule(self, result):
        reference = obj(result, "rule") or {}
        component_reference = obj(reference, "toolComponent")
        component = self.component(component_reference)
        rules = array(component, "rules")
        rule_id = first(string(result, "ruleId"), string(reference, "id"))
        at = first(array_index(reference), array_index(result, "ruleIndex"))
        if at is not None and at < len(rules):
            return rules[at], component
        guid = string(reference, "guid")
        if guid is not None:
            for rule in rules:
                if string(rule, "guid") == guid:
                    return rule, component
        demand(at is None or rule_id is not None, f"rule index {at}")
        if rule_id is not None:
            for candidate in [component, self.driver, *self.extensions]:
                rule = self.rule_by_id(candidate, rule_id)
                if rule is not None:
                    return rule, candidate
        return {}, component

    def message(self, holder, rule, component):
        message = obj(holder, "message")
        if message is None:
            return None
        arguments = array(message, "arguments")
        for argument in arguments:
            demand(isinstance(argument, str), f"argument {argument!r:.60}")
        text = string(message, "text")
        if text is not None:
            return filled_in(text, arguments) if arguments else text
        message_id = string(message, "id")
        markdown = string(message, "markdown")
        if markdown is not None and arguments:
            markdown = filled_in(markdown, arguments)
        if message_id is None:
            return markdown
        for owner, table in (
            (rule, "messageStrings"),
            (component, "globalMessageStrings"),
            (self.driver, "globalMessageStrings"),
        ):
            found = obj(obj(owner, table) or {}, message_id) or {}
            pattern = first(string(found, "text"), string(found, "markdown"))
            if pattern is not None:
                return filled_in(pattern, arguments)
        demand(markdown is not None, f"message id {message_id}")
        return markdown

    def artifact(self, artifact_location):
        uri = string(artifact_location, "uri")
        base = string(artifact_location, "uriBaseId")
        at = array_index(artifact_location)
        if uri is None and at is not None:
            artifacts = array(self.run, "artifacts")
            demand(at < len(artifacts), f"artifact index {at}")
            location = obj(artifacts[at], "location") or {}
            uri = string(location, "uri")
            base = first(base, string(location, "uriBaseId"))
        return uri, base

    def check_logical_location(self, location):
        logical = array(location, "logicalLocations")[:1]
        for one in logical:
            if string(one, "fullyQualifiedName") is not None:
                continue
            name, at = string(one, "name"), array_index(one)
            known = array(self.run, "logicalLocations")
            demand(at is None or name is not None or at < len(known), f"logicalLocation index {at}")
            if at is not None and at < len(known) and string(known[at], "fullyQualifiedName") is None:
                string(known[at], "name")

    def place(self, location):
        self.check_logical_location(location)
        physical = obj(location, "physicalLocation") or {}
        region = obj(physical, "region") or {}
        uri, base = self.artifact(obj(physical, "artifactLocation") or {})
        return dict(
            uri=uri,
            base=base,
            line=integer(region, "startLine"),
            column=integer(region, "startColumn"),
            endLine=integer(region, "endLine"),
            endColumn=integer(region, "endColumn"),
        )

    def step(self, thread_flow_location, rule, component):
        location = obj(thread_flow_location, "location")
        at = array_index(thread_flow_location)
        if location is None and at is not None:
            shared = array(self.run, "threadFlowLocations")
            demand(at < len(shared), f"threadFlowLocation index {at}")
            location = obj(shared[at], "location")
        location = location if location is not None else {}
        place = self.place(location)
        known = at_index(given(self.run, "threadFlowLocations"), at)
        return without_absent(
            more=self.more(thread_flow_location, STEP, DEFINITIONS["threadFlowLocation"], (rule, component), other=known),
            uri=place["uri"],
            line=place["line"],
            column=place["column"],
            message=self.message(location, rule, component),
        )

    def resolved(self, value, property_schema, strings=({}, None), listed="taxa"):
        """The value without indices, by the types of the schema; property bags as they are."""
        listed = LISTS.get(self.last_name, listed)
        if property_schema is None:
            return value
        if property_schema.get("type") == "array" and isinstance(value, list):
            items = property_schema["items"]
            none = items.get("$ref", "").endswith("/notification")
            elements = [
                element if isinstance(element, list) else self.resolved_one(element, items, strings, listed)
                for element in value
                if not (none and given(element, "level") == "none")]
            if not property_schema.get("uniqueItems"):
                return elements
            texts = [json.dumps(whole_numbers(element)) for element in elements]
            return [element for at, element in enumerate(elements) if texts.index(texts[at]) == at]
        values = property_schema.get("additionalProperties")
        if property_schema.get("type") == "object" and isinstance(values, dict) and isinstance(value, dict):
            return {key: self.resolved_one(child, values, strings, listed)
                    for key, child in value.items() if child is not None}
        if isinstance(value, list):
            return value
        return self.resolved_one(value, property_schema, strings, listed)

    def resolved_one(self, value, schema, strings, listed):
        name = schema.get("$ref", "/").rsplit("/", 1)[1]
        if not name or name == "propertyBag" or not isinstance(value, dict):
            return value
        value = {key: child for key, child in value.items() if child is not None}
        if name == "notification":
            strings = self.descriptor(value.get("descriptor"), ["notifications"]) or ({}, None)
        if name == "artifactLocation":
            artifact = at_index(given(self.run, "artifacts"), value.pop("index", None))
            if "uri" not in value:
                location = given(artifact, "location")
                for key in ("uri", "uriBaseId"):
                    if key not in value and isinstance(given(location, key), str):
                        value[key] = location[key]
        elif name == "message":
            value = self.resolved_message(value, strings)
        elif name == "reportingDescriptorReference":
            found = self.descriptor(value, [listed]) or self.descriptor(value, ["rules"]) or ({}, None)
            value.pop("index", None)
            if "id" not in value and isinstance(given(found[0], "id"), str):
                value["id"] = found[0]["id"]
        elif name == "toolComponentReference":
            component = self.any_component(value)
            value.pop("index", None)
            if isinstance(given(component, "name"), str):
                value["name"] = component["name"]
        elif name in SHARED:
            shared = at_index(given(self.run, SHARED[name]), value.get("index"))
            shared = {key: child for key, child in (shared if isinstance(shared, dict) else {}).items()
                      if child is not None}
            value = {key: child for key, child in {**shared, **value}.items() if key not in ("index", "parentIndex")}
        resolved = {}
        for key, child in value.items():
            self.last_name = key
            part = self.resolved(child, DEFINITIONS[name]["properties"].get(key), strings, LISTS.get(key, listed))
            if part == [] and child != [] and key.endswith("Notifications"):
                continue
            resolved[key] = part
        return resolved

    def resolved_message(self, message, strings):
        if "text" in message or not isinstance(message.get("id"), str):
            return message
        rule, component = strings
        for owner, table in ((rule, "messageStrings"), (component, "globalMessageStrings"),
                             (self.driver, "globalMessageStrings")):
            entry = given(given(owner, table), message["id"])
            if entry is None:
                continue
            if not isinstance(given(entry, "text"), str):
                return message
            message = {key: child for key, child in message.items() if key != "id"}
            message["text"] = entry["text"]
            if "markdown" not in message and isinstance(entry.get("markdown"), str):
                message["markdown"] = entry["markdown"]
            return message
        return message

    def any_component(self, reference):
        """What a toolComponentReference leads to, which may be a taxonomy."""
        if reference is None:
            return self.driver
        at, name, guid = given(reference, "index"), given(reference, "name"), given(reference, "guid")
        taxonomies = given(self.run, "taxonomies") or []

        def first_with(key, wanted):
            lists = [*(taxonomies if isinstance(taxonomies, list) else []), *self.extensions, self.driver]
            return next((one for one in lists if isinstance(wanted, str) and given(one, key) == wanted), None)

        known = first_with("guid", guid)
        if known is not None:
            return known
        taxonomy, extension = at_index(taxonomies, at), at_index(self.extensions, at)
        if taxonomy is not None and not (isinstance(name, str) and given(extension, "name") == name):
            return taxonomy
        return extension if extension is not None else first_with("name", name)

    def descriptor(self, reference, lists):
        component = self.any_component(given(reference, "toolComponent"))
        for name in lists:
            entries = given(component, name)
            found = at_index(entries, given(reference, "index"))
            if found is not None:
                return found, component
            for wanted in (given(reference, "guid"), given(reference, "id")):
                for entry in entries if isinstance(entries, list) and isinstance(wanted, str) else []:
                    if wanted in (given(entry, "id"), given(entry, "guid")):
                        return entry, component
        return None

    def logical_locations(self, locations, strings):
        locations = locations if isinstance(locations, list) else []
        if len(locations) == 1 and isinstance(locations[0], dict):
            shared = at_index(given(self.run, "logicalLocations"), locations[0].get("index"))
            merged = {**(shared if isinstance(shared, dict) else {}), **locations[0]}
            names = [k for k, v in merged.items() if k not in ("index", "parentIndex") and v is not None]
            if not names or names in (["name"], ["fullyQualifiedName"]):
                return None
        schema = DEFINITIONS["location"]["properties"]["logicalLocations"]
        return whole_numbers(self.resolved(locations, schema, strings)) or None

    def more(self, value, table, schema, strings, before="", other=None):
        """The properties that have no field, by pointer."""
        kept = {}
        for name, how in table.items():
            child = first(given(value, name), given(other, name))
            if child is None:
                continue
            pointer = before + name
            its_schema = part_schema(schema, name)
            if how == MARKDOWN:
                text = given(child, "markdown")
                if isinstance(text, str):
                    arguments = array(child, "arguments")
                    kept[pointer + "/markdown"] = filled_in(text, arguments) if arguments else text
            elif how == LOGICAL:
                kept[pointer] = self.logical_locations(child, strings)
            elif how == WHOLE:
                self.last_name = name
                kept[pointer] = whole_numbers(self.resolved(child, its_schema, strings))
            elif isinstance(child, list):
                parts = how[0] if isinstance(how, list) else how
                for at, element in enumerate(child):
                    kept.update(self.more(element, parts, its_schema, strings, f"{pointer}/{at}/"))
            else:
                parts = how[0] if isinstance(how, list) else how
                kept.update(self.more(child, parts, its_schema, strings, pointer + "/"))
        return {pointer: child for pointer, child in kept.items() if child is not None}

    def check(self, result, ordinals):
        rule, component = self.rule(result)
        kind = first(string(result, "kind"), "fail")
        defaults = obj(rule, "defaultConfiguration") or {}
        by_default = "none" if kind != "fail" else first(string(defaults, "level"), "warning")
        locations = [self.place(location) for location in array(result, "locations")]
        uri = first(locations[0]["uri"] if locations else None, "")
        ordinals[uri] += 1
        related = []
        for location in array(result, "relatedLocations"):
            message = self.message(location, rule, component)
            related.append(without_absent(id=integer(location, "id"), **self.place(location), message=message))
        flows = [
            [
                [self.step(step, rule, component) for step in array(thread_flow, "locations")]
                for thread_flow in array(code_flow, "threadFlows")
            ]
            for code_flow in array(result, "codeFlows")
        ]
        suppressions = [
            without_absent(kind=string(one, "kind"), status=string(one, "status"))
            for one in array(result, "suppressions")
        ]
        check = without_absent(
            tool=self.tool_name,
            rule=first(string(result, "ruleId"), string(obj(result, "rule") or {}, "id"), string(rule, "id")),
            level=first(string(result, "level"), by_default),
            kind=kind,
            baselineState=string(result, "baselineState"),
            suppressions=suppressions,
            message=self.message(result, rule, component),
            locations=[without_absent(**place) for place in locations],
            related=related,
            flows=flows,
            more=self.more(result, RESULT, DEFINITIONS["result"], (rule, component)),
            fingerprints=fingerprints(result),
        )
        return {"key": [uri, ordinals[uri]], "run": self.number, **check}


def filled_in(pattern, arguments):
    def replacement(match):
        if match["brace"]:
            return match["brace"][0]
        at = int(match["number"])
        return arguments[at] if at < len(arguments) else match[0]

    return re.sub(r"(?P<brace>\{\{|\}\})|\{(?P<number>[0-9]+)\}", replacement, pattern)


def fingerprints(result):
    merged = {}
    for family in ("partialFingerprints", "fingerprints"):
        for name, value in (obj(result, family) or {}).items():
            if value is not None:
                demand(isinstance(value, str), f"{family}.{name}")
                merged[name] = value
    return merged


def refuse_constant(name):
    raise Damaged(f"{name} is not JSON")


def load(path):
    with open(path, "rb") as file:
        data = file.read()
    try:
        log = json.loads(data.decode("utf-8-sig"), parse_constant=refuse_constant)
        json.dumps(log, ensure_ascii=False).encode("utf-8")  # refuses half of a surrogate pair
    except (ValueError, RecursionError) as error:
        raise Damaged(str(error)) from error
    return log


def checks(paths):
    """The expected objects, in order. Runs and ordinals are numbered across all logs."""
    ordinals = Counter()
    runs_before = 0
    expected = []
    for path in paths:
        log = load(path)
        demand(isinstance(log, dict), "the log is no object")
        demand(string(log, "version") == "2.1.0", f"version {log.get('version')!r}")
        demand(isinstance(log.get("runs"), list), "no runs")
        for number, run in enumerate(log["runs"], runs_before):
            reader = Run(number, run)
            expected += [reader.check(result, ordinals) for result in array(run, "results")]
        runs_before += len(log["runs"])
    return expected


def main(paths):
    for check in checks(paths):
        print(json.dumps(check, ensure_ascii=False))


def on_a_deep_stack(action):
    """Runs the action with a deep stack, as logs may nest deeply; returns its exit code."""
    sys.setrecursionlimit(20000)
    threading.stack_size(512 * 1024 * 1024)
    codes = []

    def guarded():
        try:
            codes.append(action() or 0)
        except Damaged as damage:
            print(f"sarif_reference: {damage}", file=sys.stderr)
            codes.append(1)

    thread = threading.Thread(target=guarded)
    thread.start()
    thread.join()
    return codes[0] if codes else 2


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8")
    sys.exit(on_a_deep_stack(lambda: main(sys.argv[1:])))
