#!/bin/bash
# Creates the tables that are missing and loads the result sets that are not loaded yet:
#
#   schema/load_clickhouse.sh DATABASE HOST[:PORT]...
#
# The hosts are the shards of the cluster `bradep`, which their configuration defines. On each, the
# database must be there. TABLE_local is a shard's part of a table, and TABLE is the whole.
#
# The rows of a result set in `result_sets` are loaded last. If a run is ended before that, the next
# one deletes what it has loaded and loads it again.
set -euo pipefail
export LC_ALL=C
[ $# -ge 2 ] || { echo "usage: $0 DATABASE HOST[:PORT]..." >&2; exit 2; }
cd "$(dirname "$0")/.."
database=$1
shift
hosts=("$@")
batch_size=500  # result sets that are loaded together

# client HOST[:PORT] [ARGUMENT...]
client() {
    local host=$1
    shift
    local port=(--port "${host##*:}")
    [ "$host" != "${host%:*}" ] || port=()
    clickhouse-client --host "${host%:*}" "${port[@]}" --database "$database" "$@"
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for host in "${hosts[@]}"; do
    client "$host" --multiquery < schema/clickhouse.sql
done
client "${hosts[0]}" --query 'SELECT result_set FROM result_sets' | sort > "$work/loaded"
find result_sets -name '*.@format@' -printf '%f\n' | sed 's/\.@format@$//' | sort > "$work/there"
comm -13 "$work/loaded" "$work/there" > "$work/new"
split --lines=$batch_size "$work/new" "$work/batch."

# delete TABLE SETS: the rows of these result sets. Deleting goes on behind the scenes.
delete() {
    local host
    for host in "${hosts[@]}"; do
        client "$host" --query "ALTER TABLE $1_local DELETE WHERE result_set IN ($2)"
        while [ "$(client "$host" --query "SELECT count() FROM system.mutations
                WHERE database = '$database' AND table = '$1_local' AND NOT is_done")" != 0 ]; do
            sleep 0.2
        done
    done
}

# Prints the files of a table, each with a NUL behind it. Not every result set has one.
files_of() {
    local set
    while read -r set; do
        [ ! -e "$1/$set.@format@" ] || printf '%s/%s.@format@\0' "$1" "$set"
    done < "$2"
}

rows_of_csv() { xargs -0 tail -q -n +2; }
rows_of_ndjson() { xargs -0 cat; }
format_of_csv=CSV
format_of_ndjson=JSONEachRow

for batch in "$work"/batch.*; do
    [ -e "$batch" ] || break
    sets=$(paste -sd, "$batch")
    while read -r table; do
        [ "$(client "${hosts[0]}" --query \
            "SELECT count() FROM $table WHERE result_set IN ($sets)")" = 0 ] || delete "$table" "$sets"
        files_of "$table" "$batch" > "$work/files"
        [ -s "$work/files" ] || continue
        rows_of_@format@ < "$work/files" |
            client "${hosts[0]}" --insert_distributed_sync=1 \
                --query "INSERT INTO $table FORMAT $format_of_@format@"
    done < schema/tables
done
