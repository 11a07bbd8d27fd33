#!/bin/bash
# Installs DuckDB, PostgreSQL and ClickHouse, and tests that exports loaded into them give the answers of
# `bradep sql`. Their data goes to build/engines.
set -euo pipefail
cd "$(dirname "$0")/../.."
source scripts/prepare.sh

install_packages scripts/engines/packages.txt
command -v npm > /dev/null || as_root apt-get install -q -y --no-install-recommends nodejs npm

data=$PWD/build/engines
mkdir -p "$data/npm"
cp scripts/engines/package.json scripts/engines/package-lock.json "$data/npm"
(cd "$data/npm" && npm ci --no-audit --no-fund)

build release bradep make_workload random_values

stop() {
    scripts/engines/clickhouse.sh stop "$data/clickhouse"
    scripts/engines/postgresql.sh stop "$data/postgresql"
}
trap stop EXIT
scripts/engines/postgresql.sh start "$data/postgresql"
scripts/engines/clickhouse.sh start "$data/clickhouse"
PYTHONDONTWRITEBYTECODE=1 python3 tests/tables/engines_test.py build/release/tools/bradep \
    build/release/bench/make_workload build/release/tests/tables/random_values docs/export.md "$data"
