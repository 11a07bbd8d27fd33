#!/bin/bash
# Installs what is missing, builds, and runs all tests: built by g++, then by clang under
# AddressSanitizer and UndefinedBehaviorSanitizer with leak detection. Then tests reports in a headless
# browser, runs the test of several threads under ThreadSanitizer, and each fuzz target for
# BRADEP_FUZZ_SECONDS of a processor, 60 by default.
#
#   ./test.sh            the checks that every change must pass
#   ./test.sh --all      also builds by clang without sanitizers and by g++ under them, and runs the
#                        random tests at their slow counts; then adds a record, an arm and a root to a
#                        copy of the sources as CONTRIBUTING.md says, and runs the tests once more with
#                        them; then tests the release that release.sh builds
#   ./test.sh --engines  also loads exports into DuckDB, PostgreSQL and ClickHouse, which it installs
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

presets=(dev asan)
all=false
engines=false
case "${1:-}" in
    "") ;;
    --all)
        presets=(clang dev asan asan-gcc)
        all=true
        export BRADEP_SLOW_TESTS=1
        ;;
    --engines) engines=true ;;
    *)
        echo "usage: ./test.sh [--all|--engines]" >&2
        exit 2
        ;;
esac

install_packages
generate_comma_locale

# Real logs, for comparing `import` and `show` with an independent reader. The caller may add more
# directories.
analyse_examples build/analysed
export BRADEP_SARIF_DIRS="$PWD/build/analysed${BRADEP_SARIF_DIRS:+:$BRADEP_SARIF_DIRS}"

export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1
for preset in "${presets[@]}"; do
    echo "== $preset"
    build "$preset"
    ctest --preset "$preset" --parallel "$(nproc)"
done

echo "== report"
all_budgets=()
! "$all" || all_budgets=(--all)
tests/report/run.sh build/dev/tools/bradep "${all_budgets[@]}"

# The ThreadSanitizer of this compiler fails if the kernel randomises addresses with too many bits.
echo "== tsan"
build tsan inspect_threads_test
same_addresses=()
! setarch --addr-no-randomize true 2>/dev/null || same_addresses=(setarch --addr-no-randomize)
TSAN_OPTIONS=halt_on_error=1 "${same_addresses[@]}" build/tsan/tests/inspect/inspect_threads_test

if "$all"; then
    echo "== additions"
    env -u BRADEP_SLOW_TESTS scripts/try_additions.py

    echo "== release"
    ./release.sh
    cmake --build --preset release --parallel "$(nproc)"
    ctest --preset release --parallel "$(nproc)"
fi

if "$engines"; then
    echo "== engines"
    scripts/engines/test.sh
fi

echo "== fuzz"
./fuzz.sh "${BRADEP_FUZZ_SECONDS:-60}"
