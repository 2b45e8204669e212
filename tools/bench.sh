#!/usr/bin/env bash
# Runs the benchmarks that are built, one table each; fails when one of them does.
# Arguments go to every program: tools/bench.sh --benchmark_filter=spill
set -euo pipefail
cd "$(dirname "$0")/.."

status=0
for name in ceilings kernels zoimage node edit shape; do
    program=build/bin/bench_$name
    [ ! -x "$program" ] || "$program" "$@" || status=1
done
exit "$status"
