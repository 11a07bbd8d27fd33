#!/usr/bin/env python3
"""Damages well-formed SARIF logs at random places and compares both readers on them.

Usage: compare_mutations.py BRADEP DIRECTORY [COUNT [SEED]]
Both must refuse a damaged log, or both must read the same from it. With BRADEP_SLOW_TESTS, more are tried.
"""

import copy
import gzip
import json
import os
import random
import sys
import tempfile
from pathlib import Path

import sarif_reference
from compare_with_reference import difference, run_bradep, shown_checks

ODD_VALUES = [None, True, 2**31, 1.5, [], {}, [None], [{}], "x", 7, -1]
FITTING_VALUES = {
    int: [0, 1, 2, 3, -1, 99, 3.0, None],
    str: ["", "x", "R0", "M0", "P0", "default", "shared", "fail", "pass", "a.c", "{0}", None],
    list: [[], None, [{}]],
    dict: [{}, None, {"index": 0}, {"index": 1}, {"id": "default"}, {"text": "{0}", "arguments": ["a"]}],
}


def containers(value):
    """Every object and array of a document that is not empty."""
    if isinstance(value, dict) and value:
        yield value
        for child in value.values():
            yield from containers(child)
    elif isinstance(value, list) and value:
        yield value
        for child in value:
            yield from containers(child)


def mutate(document, choice):
    """Replaces, removes or repeats one value somewhere. The inserted value is a copy: the next mutation
    may change it, and a value that contains itself could not be written."""
    candidates = list(containers(document))
    if not candidates:
        return  # an earlier mutation left nothing
    container = choice.choice(candidates)
    at = choice.choice(list(container) if isinstance(container, dict) else range(len(container)))
    action = choice.random()
    if action < 0.6:
        fitting = FITTING_VALUES.get(type(container[at]), ODD_VALUES)
        container[at] = copy.deepcopy(choice.choice(fitting if choice.random() < 0.8 else ODD_VALUES))
    elif action < 0.8:
        del container[at]
    elif isinstance(container, list):
        container.insert(at, copy.deepcopy(container[choice.randrange(len(container))]))
    else:
        container[at] = copy.deepcopy(container[choice.choice(list(container))])


def spelled(value, choice):
    """The JSON text of a value, with members in another order, some of them twice (the last one counts),
    integers spelled as other numbers, and blanks."""
    if isinstance(value, dict):
        members = list(value.items())
        choice.shuffle(members)
        texts = []
        for name, child in members:
            if choice.random() < 0.03:
                texts.append(f"{json.dumps(name)}:{choice.choice(['null', '{}', '[]', '7', '[1]'])}")
            texts.append(f"{json.dumps(name)}{choice.choice(['', ' '])}:{spelled(child, choice)}")
        return "{" + ",".join(texts) + "}"
    if isinstance(value, list):
        return "[" + choice.choice(["", "\n "]) + ",".join(spelled(child, choice) for child in value) + "]"
    if isinstance(value, int) and not isinstance(value, bool):
        return f"{value}{choice.choice(['', '', '.0', 'e0'])}"
    return json.dumps(value)


def expected_checks(log):
    try:
        return sarif_reference.checks([log])
    except sarif_reference.Damaged:
        return None


def agreement(bradep, log, expected, result_set):
    """None if bradep reads these checks, or refuses the log if they are None; else a description of the
    difference."""
    imported = run_bradep(bradep, "import", log, "-o", result_set)
    if imported.returncode not in (0, 1):
        return f"exit code {imported.returncode}: {imported.stderr!r}"
    if imported.returncode == 1:
        one_line = imported.stderr.count(b"\n") == 1 and not result_set.exists()
        return None if expected is None and one_line else f"bradep alone refuses: {imported.stderr!r}"
    if expected is None:
        return "the reference alone refuses"
    return difference(list(shown_checks(bradep, result_set)), expected)


def main(bradep, directory, count="300", seed=None):
    count = int(count) * (5 if os.environ.get("BRADEP_SLOW_TESTS") else 1)
    seed = int(seed) if seed else random.SystemRandom().randrange(2**32)
    print(f"seed {seed}", flush=True)
    choice = random.Random(seed)
    logs = sorted(p for p in Path(directory).glob("*.sarif") if not p.name.startswith(("bad-", "deep")))
    texts = [sarif_reference.load(log) for log in logs]
    refused = failed = 0
    with tempfile.TemporaryDirectory() as scratch:
        for number in range(count):
            document = json.loads(json.dumps(choice.choice(texts)))
            for _ in range(choice.choice([1, 1, 1, 2, 3])):
                mutate(document, choice)
            log, result_set = Path(scratch) / "log.sarif", Path(scratch) / f"{number}.bradep"
            text = spelled(document, choice)
            log.write_text(text, encoding="utf-8")
            expected = expected_checks(log)
            if choice.random() < 0.2:
                log.write_bytes(gzip.compress(text.encode("utf-8")))
            disagreement = agreement(bradep, log, expected, result_set)
            refused += not result_set.exists()
            if disagreement:
                failed += 1
                print(f"FAIL  mutation {number} of seed {seed}: {disagreement}\n{text}")
    print(f"{refused} of {count} logs were refused")
    print(f"{count - failed} passed, {failed} failed")
    return 1 if failed or not 0 < refused < count else 0


if __name__ == "__main__":
    sys.stdout.reconfigure(encoding="utf-8", errors="backslashreplace")
    sys.exit(sarif_reference.on_a_deep_stack(lambda: main(*sys.argv[1:])))
