#!/usr/bin/env python3
"""Runs all benchmarks of writing and reading result sets, and prints their figures as tables.

  table.py [--sizes N,...] [--serialisers NAME,...] [--rounds R] [--million] [--allocators] BUILD

BUILD is the build directory; `bench` is its target. Each serialiser runs in a process of its own, in
turns, R times (4 by default) with three repetitions each; the tables have the medians. Without
--serialisers, all that are built run; plain and library always run. --allocators adds a table of the
allocators that are installed. --million adds one encoding and one decoding of a million checks, which
take about 8 GB.
"""

import argparse
import json
import math
import os
import pathlib
import statistics
import subprocess
import sys
import tempfile

REPETITIONS = 3
MILLION = 1_000_000
MILLION_MEMORY = 12e9  # bytes of memory that a million checks require

OPERATIONS = {"encode": "encode, `fromCxx`", "decode": "decode, `toCxx`",
              "toStream": "`toStream`, a `std::ofstream`",
              "fromStream": "`fromStream`, a `std::ifstream`", "equal": "`==` of equal graphs"}
LIMITS = {"copy_warm": "copying the bytes, warm", "copy_to_fresh_pages": "copying them to fresh pages",
          "copy_to_file": "copying them to a file, a `std::ofstream`",
          "make_nodes": "allocating, linking and writing the nodes",
          "read_both": "reading both graphs once",
          "read_infos": "reading the infos once, in the order of their table",
          "read_infos_by_address": "reading the infos once, by their addresses"}

# Ways to get memory that a caller can choose, as variables of the environment.
LIBRARIES = "/usr/lib/x86_64-linux-gnu/"
ALLOCATORS = {"glibc": {},
              "glibc, huge pages": {"GLIBC_TUNABLES": "glibc.malloc.hugetlb=1"},
              "glibc, 2,000 free blocks kept of each size":
                  {"GLIBC_TUNABLES": "glibc.malloc.tcache_count=2000"},
              "mimalloc": {"LD_PRELOAD": LIBRARIES + "libmimalloc.so.2"},
              "jemalloc": {"LD_PRELOAD": LIBRARIES + "libjemalloc.so.2"}}


def run(*command, environment=None):
    return subprocess.run([str(part) for part in command], check=True, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True,
                          env={**os.environ, **(environment or {})}).stdout


class Timings:
    """The times of all benchmarks, in microseconds per check."""

    def __init__(self, program, sizes, rounds, wanted):
        names = run(program, "--benchmark_list_tests").split()
        self.serialisers = list(dict.fromkeys(
            name.split("/")[0] for name in names
            if "/" in name and name.split("/")[1] in (*OPERATIONS, *LIMITS)))
        if wanted:
            self.serialisers = [serialiser for serialiser in self.serialisers
                                if serialiser in ("plain", "library", *wanted)]
        self.sizes = sizes
        self.times = {}
        self.first = {}
        self.size = {}
        for turn in range(rounds):
            for size in sizes:
                for serialiser in self.serialisers:
                    print(f"turn {turn + 1} of {rounds}: {serialiser}, {size:,} checks",
                          file=sys.stderr)
                    self.add(program, serialiser, size)

    def add(self, program, serialiser, size):
        figures = json.loads(run(program, f"--benchmark_filter=^{serialiser}/.*/{size}$",
                                 f"--benchmark_repetitions={REPETITIONS}",
                                 "--benchmark_min_time=0.3", "--benchmark_format=json"))
        for row in figures["benchmarks"]:
            if "error_occurred" in row:
                sys.exit(f"{row['name']}: {row['error_message']}")
            if row["run_type"] != "iteration":
                continue
            key = (serialiser, row["name"].split("/")[1], size)
            self.times.setdefault(key, []).append(row["check"] * 1e6)
            if "first" in row and row["repetition_index"] == 0:
                self.first.setdefault(key, []).append(row["first"])
            if "size" in row:
                self.size[serialiser, size] = row["size"]

    def __call__(self, serialiser, operation, size):
        return statistics.median(self.times[serialiser, operation, size])

    def first_call(self, serialiser, operation, size):
        return statistics.median(self.first[serialiser, operation, size])


def print_table(title, heads, rows):
    print(f"\n{title}\n\n| {' | '.join(heads)} |\n|{'---|' * len(heads)}")
    for row in rows:
        print(f"| {' | '.join(row)} |")


def print_against_plain(timings):
    rows = []
    for operation, title in OPERATIONS.items():
        for size in timings.sizes:
            plain = timings("plain", operation, size)
            own = timings("library", operation, size)
            rows.append([title, f"{size:,}", f"{plain:.2f}", f"{own:.2f}", f"{plain / own:.2f}",
                         f"{timings.size['library', size] / size / own:.0f}"])
    for size in timings.sizes:
        less = timings("library", "less", size)
        equal = timings("library", "equal_with_payloads", size)
        rows.append(["`<`, walking everything", f"{size:,}", "", f"{less:.2f}",
                     f"{less / equal:.2f} of the time of `==`", ""])
        rows.append(["destroying", f"{size:,}", "", f"{timings('library', 'destroy', size):.2f}",
                     "", ""])
    print_table("Beside the reference implementation, microseconds a check:",
                ["", "checks", "plain", "library", "times as fast", "MB/s"], rows)


def print_peers(timings):
    for size in timings.sizes:
        rows = []
        for serialiser in timings.serialisers:
            if (serialiser, "encode", size) not in timings.times:
                continue
            row = [serialiser, f"{timings.size[serialiser, size] / size:.0f}"]
            for operation in ("encode", "decode"):
                time = timings(serialiser, operation, size)
                row += [f"{timings.first_call(serialiser, operation, size):.1f}", f"{time:.2f}",
                        f"{timings('plain', operation, size) / time:.2f}"]
            rows.append(row)
        print_table(f"Ways to write and read {size:,} checks, microseconds a check; how many times "
                    "as fast as the reference implementation:",
                    ["", "bytes a check", "first encode", "encode", "times", "first decode",
                     "decode", "times"], rows)


def print_limits(timings):
    if "limit" not in timings.serialisers:
        return
    rows = []
    for size in timings.sizes:
        rows += [[title, f"{size:,}", f"{timings('limit', limit, size):.2f}"]
                 for limit, title in LIMITS.items()]
        both = timings("library", "equal", size) / timings("limit", "read_both", size)
        rows.append(["`==` / reading both graphs once", f"{size:,}", f"{both:.2f}"])
        for stream, buffer in (("toStream", "encode"), ("fromStream", "decode")):
            ratio = timings("library", stream, size) / timings("library", buffer, size)
            rows.append([f"{OPERATIONS[stream]} / {OPERATIONS[buffer]}", f"{size:,}",
                         f"{ratio:.2f}"])
    print_table("What the machine itself needs, microseconds a check:", ["", "checks", ""], rows)


def print_growth(timings):
    least, most = timings.sizes[0], timings.sizes[-1]
    if least == most:
        return
    rows = []
    for operation in (*OPERATIONS, "less", "destroy"):
        ratio = timings("library", operation, most) / timings("library", operation, least)
        rows.append([operation, f"{1 + math.log(ratio) / math.log(most / least):.2f}"])
    print_table(f"How time grows from {least:,} to {most:,} checks, as an exponent:",
                ["", "exponent"], rows)


def once(build, checks, folder):
    """Runs bench_once for encode and decode; returns its figures by the name of the call."""
    file = pathlib.Path(folder) / f"{checks}.bin"
    run(build / "bench" / "make_workload", checks, file)
    figures = {call: json.loads(run(build / "bench" / "bench_once", call, file))
               for call in ("encode", "decode")}
    file.unlink()
    return figures


def print_memory(build, sizes):
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        for size in sizes:
            for call, figures in once(build, size, folder).items():
                base = figures["bytes"] if call == "encode" else figures["resident"]
                heap_base = figures["bytes"] if call == "encode" else figures["heap"]
                rows.append([OPERATIONS[call], f"{size:,}", f"{figures['ns'] / size / 1000:.2f}",
                             f"{figures['resident_peak'] / 1e6:.1f}",
                             f"{figures['resident_peak'] / base:.3f} of the "
                             + ("output" if call == "encode" else "graph"),
                             f"{figures['heap_peak'] / heap_base:.3f}",
                             f"{figures['allocations']:,}",
                             f"{figures['allocations'] / size:.4f}",
                             f"{figures['allocations_kept']:,}"])
    print_table("One call in a fresh process:",
                ["", "checks", "microseconds a check", "rise of the resident peak, MB", "that is",
                 "heap peak", "allocations", "a check", "kept"], rows)


def print_allocators(build, rounds, checks=100_000):
    """Prints what one call takes in a fresh process and later ones, with each allocator found."""
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        file = pathlib.Path(folder) / "workload"
        run(build / "bench" / "make_workload", checks, file)
        for title, environment in ALLOCATORS.items():
            if not pathlib.Path(environment.get("LD_PRELOAD", "/")).exists():
                continue
            row = [title]
            for call in ("encode", "decode"):
                first = [json.loads(run(build / "bench" / "bench_once", call, file,
                                        environment=environment)) for _ in range(rounds)]
                later = json.loads(run(build / "bench" / "bench",
                                       f"--benchmark_filter=^library/{call}/{checks}$",
                                       f"--benchmark_repetitions={rounds}",
                                       "--benchmark_format=json", environment=environment))
                row += [f"{statistics.median(one['ns'] for one in first) / checks / 1000:.2f}",
                        "{:.2f}".format(statistics.median(
                            one["check"] * 1e6 for one in later["benchmarks"]
                            if one["run_type"] == "iteration")),
                        f"{first[0]['resident_peak'] / 1e6:.0f}"]
            rows.append(row)
    print_table(f"Allocators, {checks:,} checks, microseconds a check:",
                ["", "first encode", "encode", "peak, MB", "first decode", "decode", "peak, MB"],
                rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path, metavar="BUILD")
    parser.add_argument("--sizes", default="1000,10000,100000", metavar="N,...",
                        help="some of 1000, 10000 and 100000, ascending")
    parser.add_argument("--serialisers", metavar="NAME,...",
                        help="some of cereal, boost, protobuf, flatbuffers and limit")
    parser.add_argument("--rounds", type=int, default=4, metavar="R")
    parser.add_argument("--million", action="store_true")
    parser.add_argument("--allocators", action="store_true")
    options = parser.parse_args()
    sizes = [int(size) for size in options.sizes.split(",")]

    wanted = options.serialisers.split(",") if options.serialisers else None
    timings = Timings(options.build / "bench" / "bench", sizes, options.rounds, wanted)
    print_against_plain(timings)
    print_peers(timings)
    print_limits(timings)
    print_growth(timings)
    if options.million:
        memory = os.sysconf("SC_PAGE_SIZE") * os.sysconf("SC_PHYS_PAGES")
        if memory >= MILLION_MEMORY:
            sizes = [*sizes, MILLION]
        else:
            print(f"\nA million checks are left out: they ask for {MILLION_MEMORY / 1e9:.0f} GB of "
                  f"memory, and there are {memory / 1e9:.0f}.")
    print_memory(options.build, sizes)
    if options.allocators:
        print_allocators(options.build, options.rounds)


if __name__ == "__main__":
    main()
