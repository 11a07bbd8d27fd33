#!/usr/bin/env python3
"""Times all peers in turn, each in a process of its own, and prints a table of the medians.

  compare.py PROGRAM [CHECKS [REPETITIONS [ROUNDS]]]

PROGRAM is the built peer_bench. The ratios are times of the plain reference divided by the peer's.
"""

import statistics
import subprocess
import sys

PEERS = ["plain", "library", "cereal", "boost", "protobuf", "flatbuffers"]


def main(program, checks="10000", repetitions="3", rounds="9"):
    figures = {peer: [] for peer in PEERS}
    for _ in range(int(repetitions)):
        for peer in PEERS:
            line = subprocess.run([program, peer, checks, rounds], check=True,
                                  capture_output=True, text=True).stdout.split()
            figures[peer].append([float(figure) for figure in line[1:]])
    medians = {peer: [statistics.median(column) for column in zip(*rows)]
               for peer, rows in figures.items()}
    plain = medians["plain"]
    print(f"{checks} checks; nanoseconds a check, and how many times as fast as plain")
    print(f"{'':12}{'bytes':>8}{'first encode':>14}{'first decode':>14}"
          f"{'encode':>16}{'decode':>16}")
    for peer, (size, first_encode, first_decode, encode, decode) in medians.items():
        print(f"{peer:12}{size / int(checks):8.0f}{first_encode:14.0f}{first_decode:14.0f}"
              f"{encode:9.0f} {plain[3] / encode:5.2f}x{decode:9.0f} {plain[4] / decode:5.2f}x")


if __name__ == "__main__":
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    main(*sys.argv[1:])
