#!/bin/bash
# Installs what is missing and builds the release in build/release, optimised by a profile: which
# branches the libraries take on the benchmarks' kind of data.
#
#   ./release.sh [CMAKE_OPTION...]     such as -DCMAKE_INSTALL_PREFIX=/usr
#
# BRADEP_PROFILE, an environment variable, names the directory of the profile. If it is not set, a
# profile is recorded in build/profile/data. Recorded ones differ a little, as strings are ordered by
# their addresses; the same profile, compiler and sources give the same libraries.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

install_packages

profile=${BRADEP_PROFILE:-}
if [ -z "$profile" ]; then
    profile=$PWD/build/profile/data
    rm -rf "$profile"
    build profile record_profile
    build/profile/bench/record_profile
fi

cmake --preset release -DBRADEP_PROFILE="$(realpath "$profile")" "$@"
cmake --build --preset release --parallel "$(nproc)" --target bradep
