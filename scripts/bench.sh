#!/usr/bin/env bash
# Builds the benchmarks optimised (-O2, no debug checks) in build/bench and runs them, reporting the
# median of several runs of each. Run it under the shared build lock, on an otherwise quiet machine:
#
#   flock /tmp/vistrel-build.lock bash scripts/bench.sh [benchmark filter regex]
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh test

build=${VISTREL_BENCH_DIR:-build/bench}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" \
      -DVISTREL_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --target bench_flatten bench_png bench_undo_memory

filter=${1:-.}
for bench in bench_flatten bench_png bench_undo_memory; do
  "$build/bench/$bench" --benchmark_filter="$filter" --benchmark_repetitions=9 \
      --benchmark_report_aggregates_only=true --benchmark_display_aggregates_only=true
done
