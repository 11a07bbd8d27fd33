#!/bin/bash
# Installs what is missing and builds the release in build/release, optimised by a profile of the
# libraries on the benchmarks' kind of data, which is recorded first, in build/profile/data.
#
#   ./release.sh [CMAKE_OPTION...]     such as -DCMAKE_INSTALL_PREFIX=/usr
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

install_packages

profile=$PWD/build/profile/data
rm -rf "$profile"
build profile record_profile
# At the same addresses each time, since strings are hashed and ordered by theirs. So the same
# sources give the same profile and the same libraries.
setarch --addr-no-randomize build/profile/bench/record_profile

cmake --preset release -DBRADEP_PROFILE="$profile" "$@"
cmake --build --preset release --parallel "$(nproc)" --target bradep
