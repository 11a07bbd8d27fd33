#!/usr/bin/env python3
"""Compares diffs of real logs with a match of multisets.

    compare.py [--show] BRADEP DIR

DIR is what make.sh has made. The multiset of a side has, for each finding, its rule, the name of its file without
directories, its message, and the text of the flagged line without blanks. As many findings of one kind as both
sides have are the same. `diff` can know better: of two findings that look alike, one may be gone and the other new;
a finding whose line or message changed is still the same. What differs is counted here, and printed with --show. Each
pair is compared twice, without and with the sources.
"""

import argparse
import collections
import json
import pathlib
import subprocess
import urllib.parse


def findings_of(directory, sources):
    """The kind of each finding in the logs of a directory, by its key in the imported set."""
    kinds, ordinals, lines = {}, collections.Counter(), {}
    for log in sorted(directory.iterdir()):
        for run in json.loads(log.read_bytes())["runs"]:
            for result in run["results"]:
                place = result["locations"][0]["physicalLocation"]
                uri = place["artifactLocation"]["uri"]
                ordinals[uri] += 1
                path = pathlib.Path(urllib.parse.unquote(uri.removeprefix("file://")))
                if path not in lines:
                    lines[path] = (sources / path).read_text(encoding="latin-1").split("\n")
                number = place["region"]["startLine"]
                text = lines[path][number - 1] if number <= len(lines[path]) else ""
                kinds[f"{uri}:{ordinals[uri]}"] = (result.get("ruleId"), path.name, result["message"]["text"],
                                                   "".join(text.split()))
    return kinds


class Pair:
    def __init__(self, bradep, directory):
        self.bradep, self.directory = bradep, directory
        self.kinds = {side: findings_of(directory / f"{side}.logs", directory / side) for side in ["old", "new"]}

    def diff(self, with_sources):
        sources = [f"--{side}-source={self.directory / side}" for side in ["old", "new"]] if with_sources else []
        done = subprocess.run([self.bradep, "diff", self.directory / "old.logs", self.directory / "new.logs", *sources,
                               "--format", "json"], capture_output=True, check=True)
        return json.loads(done.stdout)

    def in_both(self):
        return sum((collections.Counter(self.kinds["old"].values())
                    & collections.Counter(self.kinds["new"].values())).values())

    def deviations(self, diff):
        """Pairs of different kinds, and findings that are alone although the other side has another one of their kind
        that is alone."""
        alone = {"old": collections.Counter(), "new": collections.Counter()}
        pairs = []
        for one in diff["findings"]:
            if one["old"] and one["new"]:
                kinds = self.kinds["old"][one["old"]], self.kinds["new"][one["new"]]
                if kinds[0] != kinds[1]:
                    pairs.append((one["state"], *kinds))
            else:
                side = "old" if one["old"] else "new"
                alone[side][self.kinds[side][one[side]]] += 1
        return pairs, list((alone["old"] & alone["new"]).elements())


def print_row(pair, name, with_sources, show):
    diff = pair.diff(with_sources)
    counts = diff["counts"]
    pairs, alone = pair.deviations(diff)
    both = pair.in_both()
    olds, news = len(pair.kinds["old"]), len(pair.kinds["new"])
    parts = [sum(older[part] != newer[part] for _, older, newer in pairs) for part in [1, 2, 3]]
    print(f"| {name} | {olds:,} | {news:,} | {both:,} | {news - both:,} | {olds - both:,} | "
          f"{'yes' if with_sources else 'no'} | {counts['unchanged'] + counts['updated']:,} | {counts['new']:,} | "
          f"{counts['absent']:,} | {len(pairs):,} | {parts[0]:,} | {parts[1]:,} | {parts[2]:,} | {len(alone):,} |", flush=True)
    for state, older, newer in pairs if show else []:
        print(f"    {state}\n      old {older}\n      new {newer}")
    for kind in alone if show else []:
        print(f"    new and absent {kind}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--show", action="store_true", help="print each deviation")
    parser.add_argument("bradep", type=pathlib.Path, metavar="BRADEP")
    parser.add_argument("directory", type=pathlib.Path, metavar="DIR")
    arguments = parser.parse_args()
    print("| analyser | old | new | same kind in both | new | gone | sources | `diff`: the same | new | absent |"
          " pairs of two kinds | file | message | line | alone on both sides |")
    print("|" + "---|" * 15)
    for directory in sorted(arguments.directory.iterdir()):
        if not (directory / "old.logs").is_dir():
            continue
        pair = Pair(arguments.bradep, directory)
        for with_sources in [False, True]:
            print_row(pair, directory.name, with_sources, arguments.show)


if __name__ == "__main__":
    main()
