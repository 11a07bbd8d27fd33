#!/usr/bin/env python3
"""Compares the tables of tools/sarif/schema.cpp with the schema of SARIF 2.1.0.

Usage: schema_test.py PRINT_SCHEMA sarif-2.1.0.schema.json
"""

import json
import re
import subprocess
import sys
from pathlib import Path

# What is neither kept nor written.
LEFT_OUT = {
    "run": {"addresses", "artifacts", "externalPropertyFileReferences", "graphs", "logicalLocations", "results",
            "threadFlowLocations", "webRequests", "webResponses"},
    "result": {"graphs", "graphTraversals"},
}
LEAST, MOST = -(2**63), 2**63 - 1


def value_of(schema, shown):
    """What the table should say of a value that is no object of the schema."""
    words = shown["words"] if sorted(shown["words"]) == sorted(schema.get("enum", [])) else schema.get("enum", [])
    value = {
        "type": schema.get("type", "string"), "least": int(schema.get("minimum", LEAST)),
        "most": int(schema.get("maximum", MOST)), "words": words, "open": False}
    if "pattern" in schema:
        value["fits"] = {sample: fits(schema["pattern"], sample) for sample in shown.get("fits", {"": 0})}
    return value


def fits(pattern, sample):
    # One pattern of the schema lacks a bracket, and so allows any text after two letters.
    pattern = pattern.replace("^[a-zA-Z]{2}|^[a-zA-Z]{2}-[a-zA-Z]{2}]?$", "^[a-zA-Z]{2}(-[a-zA-Z]{2})?$")
    return re.search(pattern, sample) is not None


def row_of(schema, shown, is_required):
    shape, inner = "one", schema
    if schema.get("type") == "array":
        shape, inner = "list", schema["items"]
    elif schema.get("type") == "object":
        shape, inner = "map", schema["additionalProperties"]
    row = {"shape": shape, "required": is_required, "unique": schema.get("uniqueItems", False),
           "not_empty": schema.get("minItems", 0) > 0}
    if "$ref" in inner:
        row["object"] = inner["$ref"].rsplit("/", 1)[1]
    else:
        row["value"] = value_of(inner, shown.get("value", {"words": []}))
    return row


def compare(name, shown, definition):
    expected = {
        key: row_of(schema, shown["properties"].get(key, {}), key in definition.get("required", []))
        for key, schema in definition["properties"].items() if key not in LEFT_OUT.get(name, ())}
    assert shown["properties"] == expected, f"{name}: {shown['properties']}, not {expected}"
    assert list(shown["properties"]) == sorted(shown["properties"]), f"{name}: not in order"
    alternatives = [one["required"][0] for one in definition.get("anyOf", [])]
    assert sorted(shown["words"]) == sorted(alternatives), f"{name}: {shown['words']}, not {alternatives}"
    assert shown["open"] == (definition["additionalProperties"] is True), name
    assert set(definition.get("required", [])) <= {*definition["properties"]}, name


def main(program, schema_path):
    shown = json.loads(subprocess.run([program], capture_output=True, check=True).stdout)
    definitions = json.loads(Path(schema_path).read_text())["definitions"]
    for name, one in shown.items():
        compare(name, one, definitions[name])
    assert {"run", "result", "toolComponent", "propertyBag"} <= {*shown}
    print(f"{len(shown)} objects")


if __name__ == "__main__":
    main(*sys.argv[1:])
