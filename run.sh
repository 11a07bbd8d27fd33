#!/bin/bash
# Installs what is missing, builds, analyses the C programs in examples/analysed with the Clang
# static analyser, imports its SARIF into a result set and shows it. Prints its path at the end.
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
echo
echo "$PWD/$result_set"
