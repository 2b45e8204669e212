#!/usr/bin/env bash
# Runs the benchmarks that are built, one table each; fails when one of them does.
#
#   tools/bench.sh [ARGUMENTS]             arguments go to every program: --benchmark_filter=spill
#   tools/bench.sh --update [ARGUMENTS]    also puts the tables under "Figures" in docs/performance.md
set -euo pipefail
cd "$(dirname "$0")/.."

page=docs/performance.md

run_all() {
    local status=0 name program
    for name in ceilings kernels zoimage node bundle edit shape abort solvers tools viewing; do
        program=${BENCH_DIR:-build/bin}/bench_$name
        [ ! -x "$program" ] || "$program" "$@" || status=1
    done
    return "$status"
}

if [ "${1-}" != --update ]; then
    run_all "$@"
    exit
fi
shift
tables=$(mktemp)
trap 'rm -f "$tables" "$tables.page"' EXIT
run_all "$@" | tee "$tables"
{
    sed '/^## Figures$/q' "$page"
    echo
    echo "$(sed -n 's/^model name[^:]*: *//p' /proc/cpuinfo | head -1), $(nproc) threads," \
        "commit $(git rev-parse --short HEAD)."
    cat "$tables"
} >"$tables.page"
cp "$tables.page" "$page"
