#!/bin/bash
# Two ClickHouse servers for tests, on the loopback interface, as the shards of the cluster `bradep`:
#
#   clickhouse.sh start DIR     starts them in DIR, without data but a database `bradep` on each
#   clickhouse.sh stop DIR      stops them
#
# The ports are BRADEP_CLICKHOUSE_PORT, 54330 by default, and the five after it: the first two are
# those for clickhouse-client.
set -euo pipefail
[ $# -eq 2 ] || { echo "usage: $0 start|stop DIR" >&2; exit 2; }
port=${BRADEP_CLICKHOUSE_PORT:-54330}
directory=$2
sources=$(dirname "$(realpath "$0")")

# start_one NUMBER
start_one() {
    local own=$directory/$1
    mkdir -p "$own/data" "$own/tmp"
    sed -e "s|@directory@|$own|g" -e "s|@port@|$((port + $1 - 1))|" \
        -e "s|@http_port@|$((port + 1 + $1))|" -e "s|@interserver_port@|$((port + 3 + $1))|" \
        -e "s|@port_1@|$port|" -e "s|@port_2@|$((port + 1))|" \
        "$sources/clickhouse.xml" > "$own/config.xml"
    (cd "$own" && exec setsid clickhouse-server --config-file="$own/config.xml") \
        > "$own/output.log" 2>&1 < /dev/null &
    echo $! > "$own/pid"
}

wait_for() {
    local client=(clickhouse-client --host 127.0.0.1 --port $((port + $1 - 1)))
    for _ in $(seq 300); do
        "${client[@]}" --query 'CREATE DATABASE IF NOT EXISTS bradep' 2> /dev/null && return
        sleep 0.1
    done
    echo "the server in $directory/$1 does not answer:" >&2
    cat "$directory/$1"/*.log >&2
    return 1
}

start() {
    rm -rf "$directory"
    mkdir -p "$directory"
    directory=$(realpath "$directory")
    start_one 1
    start_one 2
    wait_for 1
    wait_for 2
}

stop() {
    local pid_file pid
    for pid_file in "$directory"/*/pid; do
        [ -e "$pid_file" ] || continue
        pid=$(cat "$pid_file")
        kill "$pid" 2> /dev/null || true
        while kill -0 "$pid" 2> /dev/null; do sleep 0.1; done
        rm "$pid_file"
    done
}

"$1"
