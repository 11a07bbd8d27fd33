#!/usr/bin/env python3
"""Makes a large SARIF log of a small one by repeating its results.

Usage: big_log.py LOG MEGABYTES OUT [--runs] [--vary] [--indent]
--runs repeats the runs instead. --vary gives each copy of a result other fingerprints, and another message,
as results of a real log mostly have. --indent breaks lines as many analysers do.
"""

import argparse
import json


def varied(result, number):
    result = json.loads(json.dumps(result))
    for family in ("fingerprints", "partialFingerprints"):
        for name in result.get(family, {}):
            result[family][name] += f":{number}"
    if "text" in result.get("message", {}):
        result["message"]["text"] += f" ({number})"
    return result


def copies(elements, vary):
    number = 0
    while True:
        for element in elements:
            yield varied(element, number) if vary and number else element
        number += 1


def encoded(value, indent):
    return json.dumps(value, ensure_ascii=False, indent=2 if indent else None).encode("utf-8")


def write_list(out, elements, size, indent):
    for number, element in enumerate(elements):
        out.write(b",\n" if number else b"")
        out.write(encoded(element, indent))
        if out.tell() >= size:
            return


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("log")
    parser.add_argument("megabytes", type=int)
    parser.add_argument("out")
    for option in ("--runs", "--vary", "--indent"):
        parser.add_argument(option, action="store_true")
    options = parser.parse_args()
    size = options.megabytes * 1_000_000
    with open(options.log, encoding="utf-8-sig") as file:
        log = json.load(file)
    with open(options.out, "wb") as out:
        out.write(b'{"version":"2.1.0","runs":[')
        if options.runs:
            write_list(out, copies(log["runs"], False), size, options.indent)
        else:
            run = log["runs"][0]
            rest = {name: value for name, value in run.items() if name != "results"}
            out.write(encoded(rest, options.indent)[:-1] + b',"results":[')
            write_list(out, copies(run["results"], options.vary), size, options.indent)
            out.write(b"]}")
        out.write(b"]}\n")


if __name__ == "__main__":
    main()
