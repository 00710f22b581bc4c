#!/usr/bin/env bash
# Builds the benchmarks optimised (-O2, no debug checks) in build/bench and runs them, reporting the
# median of several runs of each. Run it under the shared build lock, on an otherwise quiet machine:
#
#   flock /tmp/vistrel-build.lock bash scripts/bench.sh [benchmark filter regex]
set -euo pipefail
cd "$(dirname "$0")/.."

source scripts/bench-build.sh
bench_build test bench_flatten bench_png bench_undo_memory

filter=${1:-.}
for bench in bench_flatten bench_png bench_undo_memory; do
  "$build/bench/$bench" --benchmark_filter="$filter" --benchmark_repetitions=9 \
      --benchmark_report_aggregates_only=true --benchmark_display_aggregates_only=true
done
