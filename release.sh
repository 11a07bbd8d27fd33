#!/bin/bash
# Installs what is missing and builds the release in build/release, optimised by a profile: which
# branches the libraries take on the benchmarks' kind of data.
#
#   ./release.sh [CMAKE_OPTION...]     such as -DCMAKE_INSTALL_PREFIX=/usr
#
# BRADEP_PROFILE, an environment variable, names the directory of the profile. If it is not set, a
# profile is recorded in build/profile/data. Two recordings differ a little: addresses, by which
# strings are ordered, change which branches are taken. The same profile, compiler and sources give
# the same libraries.
set -euo pipefail
[ -z "${BRADEP_PROFILE:-}" ] || BRADEP_PROFILE=$(realpath -e "$BRADEP_PROFILE")
cd "$(dirname "$0")"
source scripts/prepare.sh

install_packages

profile=${BRADEP_PROFILE:-$PWD/build/profile/data}
if [ -z "${BRADEP_PROFILE:-}" ]; then
    rm -rf "$profile"
    build profile
    build/profile/bench/record_profile
fi

cmake --preset release -DBRADEP_PROFILE="$profile" "$@"
# Anew, since the build system does not know on which files of the profile an object depends.
cmake --build --preset release --parallel "$(nproc)" --clean-first --target bradep
