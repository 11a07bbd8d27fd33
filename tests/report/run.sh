#!/bin/bash
# run.sh BRADEP [--all]: tests the page of reports, and reports of the command BRADEP in a headless browser. Installs
# what is missing. With --all the budgets are tried with 100,000 findings, not only with 10,000.
set -euo pipefail
bradep=$(realpath "$1")
cd "$(dirname "$0")"
source ../../scripts/prepare.sh

install_packages packages.txt
# a nodejs that is not Debian's brings npm with it
command -v npm > /dev/null || as_root apt-get install -q -y --no-install-recommends npm
[ node_modules/.package-lock.json -nt package-lock.json ] ||
    npm ci --ignore-scripts --no-audit --no-fund

export BRADEP=$bradep
export REPORT_FINDINGS=10000
[ "${2:-}" != --all ] || REPORT_FINDINGS=100000
node --test --test-concurrency=1 ./*.test.mjs
