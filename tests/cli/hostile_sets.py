#!/usr/bin/env python3
"""Changes texts and numbers of imported sets at random: the export is valid SARIF, or is refused in one line.

Usage: hostile_sets.py BRADEP DIRECTORY [COUNT [SEED]]
"""

import json
import random
import subprocess
import sys
import tempfile
from pathlib import Path

from sarif_round_trip import VALIDATOR

ROOT = "Base_Gui_Internal_Form_Datas_Aggregated_Results_T"
LOGS = ("complete", "kept", "flows", "review", "many_runs")
NUMBERS = [0, 1, -1, 2, 3, 5, 16, 256, 511, 2**31 - 1, -2**31]
TEXTS = [
    "", "x", "{}", "[]", "null", "1", "1e999", '"s"', '{"a":', "[{}]", '{"text":1}', '{"id":"x","index":-5}', "9" * 40,
    "\udc80\udcff", "fail", "error", "suppression", "relatedLocation", "codeFlows", "message/text",
    "locations/0/physicalLocation", "locations/99/id", "codeFlows/0/threadFlows/0/locations/0", "rules/1",
    "runs/0/tool/driver", "runs/0/tool/extensions/0", "runs/1/invocations", "runs/0/taxonomies/0", "tool/extensions/0"]


def scalars(value):
    """The containers of all texts and numbers, and where in them these are."""
    for key, child in value.items() if isinstance(value, dict) else enumerate(value):
        if isinstance(child, (dict, list)):
            yield from scalars(child)
        elif isinstance(child, (str, int)) and not isinstance(child, bool) and key != "arm":
            yield value, key


def changed(value, choice):
    if isinstance(value, int):
        return choice.choice(NUMBERS)
    is_wide = value.lstrip("-").isdigit()  # a number of 64 bits is a text in JSON
    return str(choice.choice(NUMBERS)) if is_wide else choice.choice(TEXTS)


def run(bradep, *arguments, given=None):
    return subprocess.run([bradep, *map(str, arguments)], input=given, capture_output=True, check=False)


def complaint_about(bradep, result_set):
    """None if the export is as it should be."""
    done = run(bradep, "export", result_set, "--sarif", "-", "--max-output", "100M")
    lines = done.stderr.decode(errors="replace").splitlines()
    if done.returncode == 1:
        return None if lines and all(line.startswith("bradep: ") for line in lines) else f"{lines}"
    if done.returncode != 0:
        return f"exit code {done.returncode}: {lines}"
    return next((f"{error.json_path}: {error.message:.200}"
                 for error in VALIDATOR.iter_errors(json.loads(done.stdout.decode("utf-8")))), None)


def main(bradep, directory, count="200", seed=None):
    seed = int(seed) if seed else random.SystemRandom().randrange(2**32)
    print(f"seed {seed}", flush=True)
    choice = random.Random(seed)
    exported = failed = 0
    with tempfile.TemporaryDirectory() as scratch:
        result_set = Path(scratch) / "set"
        dumps = []
        for log in LOGS:
            assert run(bradep, "import", Path(directory) / f"{log}.sarif", "-o", result_set).returncode == 0
            dumps.append(run(bradep, "dump", "--root", ROOT, result_set).stdout)
        for number in range(int(count)):
            document = json.loads(choice.choice(dumps))
            places = list(scalars(document["value"]))
            for _ in range(choice.choice([1, 2, 5, 30])):
                container, key = choice.choice(places)
                container[key] = changed(container[key], choice)
            made = run(bradep, "encode", "-", "-o", "-", given=json.dumps(document).encode())
            if made.returncode != 0:
                continue  # a number that its field can't hold, or a key twice
            result_set.write_bytes(made.stdout)
            exported += 1
            if complaint := complaint_about(bradep, result_set):
                failed += 1
                print(f"FAIL  set {number} of seed {seed}: {complaint}")
    print(f"{exported} sets, {failed} failed")
    return 1 if failed or exported < int(count) / 2 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
