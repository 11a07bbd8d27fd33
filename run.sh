#!/bin/bash
# Installs what is missing, builds, analyses the C programs in examples/analysed with the Clang
# static analyser, imports its SARIF into a result set, shows it and writes a report for the browser. Prints
# the paths of both at the end.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

install_packages
build release bradep

bradep=build/release/tools/bradep
result_set=results/analysed.bradep
rm -rf results
echo "== analysing examples/analysed"
analyse_examples results/sarif

echo "== importing"
"$bradep" import results/sarif/*.sarif -o "$result_set"
"$bradep" show "$result_set"
echo "== report"
"$bradep" report "$result_set" -o results/report --source-root examples/analysed --title "examples/analysed"
echo
echo "$PWD/$result_set"
echo "$PWD/results/report/index.html"
