#!/bin/bash
# A PostgreSQL server for tests, on the loopback interface:
#
#   postgresql.sh start DIR     makes a new cluster in DIR, with an empty database `bradep`
#   postgresql.sh stop DIR      stops it
#
# The port is BRADEP_POSTGRESQL_PORT, 54329 by default; the user is `bradep`, without a password.
set -euo pipefail
[ $# -eq 2 ] || { echo "usage: $0 start|stop DIR" >&2; exit 2; }
port=${BRADEP_POSTGRESQL_PORT:-54329}
programs=/usr/lib/postgresql/15/bin
directory=$2

# The server refuses to run as root.
unprivileged() {
    if [ "$(id -u)" -eq 0 ]; then
        (cd / && runuser -u postgres -- "$@")
    else
        "$@"
    fi
}

start() {
    rm -rf "$directory"
    mkdir -p "$directory"
    directory=$(realpath "$directory")
    [ "$(id -u)" -ne 0 ] || chown postgres "$directory"
    unprivileged "$programs/initdb" --pgdata "$directory/data" --username bradep --auth trust \
        --encoding UTF8 --locale C.UTF-8 --no-sync > "$directory.log" 2>&1
    unprivileged "$programs/pg_ctl" start --wait --silent --pgdata "$directory/data" \
        --log "$directory/server.log" \
        --options "-c listen_addresses=127.0.0.1 -c port=$port -c unix_socket_directories=''"
    "$programs/createdb" --host 127.0.0.1 --port "$port" --username bradep bradep
}

stop() {
    [ -e "$directory/data/postmaster.pid" ] || return 0
    unprivileged "$programs/pg_ctl" stop --wait --silent --mode fast \
        --pgdata "$(realpath "$directory")/data"
}

"$1"
