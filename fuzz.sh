#!/bin/bash
# Builds the fuzz targets, replays their corpus, and starts each target from it, all at once.
#
#   ./fuzz.sh [SECONDS [TARGET...]]    SECONDS of a processor for each target, by default 60; by
#                                      default all targets
#
# Ends with 1 on any finding. The inputs that cause findings, and the logs, are in build/asan/found.
# The corpus is the golden files and fuzz/corpus. BRADEP_FUZZ_BUILD is another build directory,
# BRADEP_FUZZ_KEEP a directory for the new inputs that reach new code.
set -euo pipefail
cd "$(dirname "$0")"
source scripts/prepare.sh

seconds=${1:-60}
shift $(($# > 0 ? 1 : 0))
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(walk_fuzz check_fuzz read_fuzz budget_fuzz encode_fuzz)
build=${BRADEP_FUZZ_BUILD:-build/asan}
found=$build/found

export ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1
export UBSAN_OPTIONS=print_stacktrace=1

# The time by the clock in which each target gets so many seconds of a processor: with fewer
# processors than targets, they take turns.
by_the_clock() {
    local processors
    processors=$(nproc)
    ((processors <= ${#targets[@]})) || processors=${#targets[@]}
    echo $((($1 * ${#targets[@]} + processors - 1) / processors))
}

install_packages
generate_comma_locale
mkdir -p "$build"
cmake --preset asan -B "$build"
cmake --build "$build" --parallel "${BRADEP_FUZZ_JOBS:-$(nproc)}" --target fuzz_seeds "${targets[@]}"

rm -rf "$found" "$build/seeds"
mkdir -p "$found"
"$build/fuzz/fuzz_seeds" tests/golden/files "$build/seeds"

# Prints the directories with the inputs that a target starts from.
starts() {
    local kind=bytes
    [ "$1" != encode_fuzz ] || kind=json
    echo "$build/seeds/$kind"
    [ ! -d "fuzz/corpus/$kind" ] || echo "fuzz/corpus/$kind"
}

# Runs each input of the corpus once, then searches for new ones.
run_target() {
    local target=$1 program=$build/fuzz/$1 new=${BRADEP_FUZZ_KEEP:-$build/new}/$1
    local start most_bytes=8193 entropic=1
    [ "$target" != encode_fuzz ] || most_bytes=32768
    # In targets that run real readers or templates of all types, weighing inputs by their rarest
    # features would take most of the time.
    [[ ! $target =~ ^(check|read|budget)_fuzz$ ]] || entropic=0
    mapfile -t start < <(starts "$target")
    mkdir -p "$new"
    "$program" -runs=0 -max_len=$most_bytes -artifact_prefix="$found/$target-" "${start[@]}" \
        >"$found/$target.replay.log" 2>&1 || return 1
    "$program" -max_total_time="$(by_the_clock "$seconds")" -max_len=$most_bytes \
        -timeout="$(by_the_clock 20)" -rss_limit_mb=2048 -entropic=$entropic \
        -print_final_stats=1 -artifact_prefix="$found/$target-" "$new" "${start[@]}" \
        >"$found/$target.log" 2>&1
}

# Prints the figures of a target's log on one line.
report() {
    local log=$found/$1.log last
    if [ ! -f "$log" ]; then
        echo "$1: the replay failed"
        return
    fi
    last=$(grep -E '^#[0-9]+.* cov: ' "$log" | tail -1)
    printf '%-12s %10s executions %7s/s %6s edges, corpus %s\n' "$1" \
        "$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")" \
        "$(sed -n 's/^stat::average_exec_per_sec: *//p' "$log")" \
        "$(sed -n 's/.* cov: \([0-9]*\).*/\1/p' <<<"$last")" \
        "$(sed -n 's/.* corp: \([^ ]*\).*/\1/p' <<<"$last")"
}

failed=()
running=()
for target in "${targets[@]}"; do
    run_target "$target" &
    running+=("$!:$target")
done
for job in "${running[@]}"; do
    wait "${job%%:*}" || failed+=("${job#*:}")
    report "${job#*:}"
done

for target in "${failed[@]}"; do
    echo "== $target found something:"
    cat "$found/$target".*log | grep -E '^(FINDING|root:|bytes:|SUMMARY|==.*ERROR|artifact_prefix)|runtime error' || true
done
[ ${#failed[@]} -eq 0 ]
