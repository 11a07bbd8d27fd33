#!/bin/bash
# Creates the tables that are missing and loads the result sets that are not loaded yet, in one
# transaction:
#
#   schema/load_postgresql.sh [ARGUMENT OF psql...]
set -euo pipefail
export LC_ALL=C
cd "$(dirname "$0")/.."

psql=(psql --no-psqlrc --quiet --no-align --tuples-only --set ON_ERROR_STOP=1 "$@")
"${psql[@]}" --single-transaction --file schema/postgresql.sql

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"${psql[@]}" --command 'SELECT result_set FROM result_sets' | sort > "$work/loaded"
find result_sets -name '*.@format@' -printf '%f\n' | sed 's/\.@format@$//' | sort > "$work/there"
comm -13 "$work/loaded" "$work/there" > "$work/new"
[ -s "$work/new" ] || exit 0

# Prints the files of a table, each with a NUL behind it. Not every result set has one.
files_of() {
    local set
    while read -r set; do
        [ ! -e "$1/$set.@format@" ] || printf '%s/%s.@format@\0' "$1" "$set"
    done < "$work/new"
}

# Prints the rows in the files of a list. psql takes a line \. for the end of all, even within a text
# in quotes: the line gets quotes of its own there.
cat > "$work/rows_of_csv" << 'END'
xargs -0 tail -q -n +2 < "$1" | sed 's/^\\\.\(\r*\)$/"\\."\1/'
END
echo 'xargs -0 cat < "$1"' > "$work/rows_of_ndjson"

# copy TABLE LIST: prints what reads the rows.
copy() { echo "\\copy $1 FROM PROGRAM 'bash \"$work/rows_of_@format@\" \"$2\"' WITH (FORMAT csv, $3)"; }

load_csv() { copy "\"$1\"" "$work/$1" "NULL '\\N'"; }

# JSON has no control characters: a line is one field.
load_ndjson() {
    copy pg_temp.lines "$work/$1" "QUOTE E'\\x01', DELIMITER E'\\x02', NULL E'\\x03'"
    echo "INSERT INTO \"$1\" SELECT one.* FROM pg_temp.lines,
      json_populate_record(NULL::\"$1\", line::json) AS one;"
    echo "TRUNCATE pg_temp.lines;"
}

{
    [ @format@ = csv ] || echo "CREATE TEMPORARY TABLE lines (line text) ON COMMIT DROP;"
    while read -r table; do
        files_of "$table" > "$work/$table"
        [ ! -s "$work/$table" ] || load_@format@ "$table"
    done < schema/tables
} > "$work/load.sql"
"${psql[@]}" --single-transaction --file "$work/load.sql"
