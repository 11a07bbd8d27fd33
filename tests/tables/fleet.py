"""A fleet: nightly runs of some projects, in which findings appear and vanish, as result sets.

Most are imported from logs that are made here; some are a kernel's own, made by the workload.
"""

import datetime
import json
import pathlib
import random

from exports import run

RULES = [f"{group}/{name}" for group in ["memory", "numeric", "concurrency", "api", "style"]
         for name in ["use-after-end", "overflow", "unchecked", "leak", "unreachable", "shadowed"]]
LEVELS = ["error", "warning", "warning", "note", "none"]
TOOLS = [("Alpha", "1.4"), ("Beta", "2.0-rc\"1\"")]
FIRST_NIGHT = datetime.date(2024, 12, 30)
# The maps and lists that a kernel's results lack: each is empty.
NO_FORMS = bytes(4 * 3)


def place(rng, uri):
    line = rng.randint(1, 3000)
    region = {"startLine": line, "startColumn": rng.randint(1, 100)}
    if rng.random() < 0.5:
        region |= {"endLine": line + rng.randint(0, 3), "endColumn": rng.randint(1, 100)}
    return {"physicalLocation": {"artifactLocation": {"uri": uri, "uriBaseId": "SRC"}, "region": region}}


def flow(rng, files, uri):
    """A path to a finding: some of its steps are in another file."""
    steps = [{"location": place(rng, rng.choice([uri, rng.choice(files)]))
              | {"message": {"text": f"step {i}"}}} for i in range(rng.randint(2, 6))]
    return {"threadFlows": [{"locations": steps}]}


def finding(rng, files, number):
    uri = rng.choice(files)
    rule = rng.choice(RULES)
    result = {"ruleId": rule, "level": LEVELS[RULES.index(rule) % len(LEVELS)],
              "message": {"text": rng.choice([f"object {number} is used", f"'{number}' may be 0,\nor \"less\"",
                                              f"größer als {number} – \\N"])},
              "locations": [place(rng, uri)],
              "fingerprints": {"stable/v1": f"{rng.getrandbits(64):016x}"}}
    if rng.random() < 0.2:
        result["codeFlows"] = [flow(rng, files, uri) for _ in range(rng.randint(1, 2))]
    if rng.random() < 0.1:
        result["relatedLocations"] = [place(rng, rng.choice(files)) | {"id": i} for i in range(2)]
    if rng.random() < 0.05:
        result["suppressions"] = [{"kind": "inSource"}]
    return result


def log(project, tool, results):
    return {"version": "2.1.0",
            "runs": [{"tool": {"driver": {"name": tool[0], "version": tool[1]}},
                      "automationDetails": {"id": project}, "results": results}]}


def nights_of_project(rng, nights, count):
    """The findings of a project, night by night. Each is there from one night to another."""
    files = [f"src/{['core', 'net', 'ui'][i % 3]}/file{i}.c" for i in range(max(3, count // 12))]
    findings = []
    for number in range(count * 3 // 2):
        first = rng.choice([0, rng.randrange(nights)])
        findings.append((first, rng.choice([nights, rng.randint(first + 1, nights)]),
                         finding(rng, files, number)))
    for night in range(nights):
        present = [(first, one) for first, last, one in findings if first <= night < last]
        yield [one | {"baselineState": "new" if first == night else "unchanged"} for first, one in present]


def make(bradep, make_workload, directory, seed, projects, nights, count, kernels, checks):
    """Makes the result sets PROJECT/NIGHT.rs in the directory, and returns these names. A project has
    about `count` findings; then come `kernels` result sets with about `checks` checks each."""
    rng = random.Random(seed)
    directory = pathlib.Path(directory)
    names = []
    for i in range(projects):
        project = f"project{i:02}"
        (directory / project).mkdir(parents=True)
        for night, results in enumerate(nights_of_project(rng, nights, count)):
            day = FIRST_NIGHT + datetime.timedelta(days=night)
            names.append(f"{project}/{day}.rs")
            text = json.dumps(log(project, TOOLS[i % len(TOOLS)], results), ensure_ascii=False)
            run(bradep, "import", "-", "-o", directory / names[-1], input=text)
    (directory / "kernel").mkdir()
    for i in range(kernels):
        names.append(f"kernel/{FIRST_NIGHT + datetime.timedelta(days=i)}.rs")
        run(make_workload, checks + i, directory / names[-1])
        with (directory / names[-1]).open("ab") as file:
            file.write(NO_FORMS)
    return names
