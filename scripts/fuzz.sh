#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (ASan + UBSan) in build/fuzz and runs each for RUNS executions
# over its seed corpus and the inputs that once failed, then prints the figures. Exits 77 (skipped)
# without clang. CI runs the default through ctest (fuzz_short). An input that fails is left in
# build/fuzz/artifacts; once fixed, it goes to tests/fuzz/regressions/<image|settings>/ and runs every time.
#
#   scripts/fuzz.sh [RUNS] [TARGET...]     default 20000 runs of fuzz_image and fuzz_settings
#   nice -n 19 scripts/fuzz.sh 10000000    the long run
set -euo pipefail
cd "$(dirname "$0")/.."
command -v clang++ >/dev/null || { echo "fuzz.sh: clang++ not installed, skipped" >&2; exit 77; }

runs=${1:-20000}
shift $(( $# > 0 ? 1 : 0 ))
targets=("$@")
[ ${#targets[@]} -gt 0 ] || targets=(fuzz_image fuzz_settings)
build=${VISTREL_FUZZ_BUILD_DIR:-build/fuzz}

CC=clang CXX=clang++ cmake -S . -B "$build" -G Ninja -DVISTREL_FUZZ=ON -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build" >"$build/build.log" 2>&1 || { cat "$build/build.log" >&2; exit 1; }

for target in "${targets[@]}"; do
  name=${target#fuzz_}
  corpus=("$build/corpus/$name" "$build/tests/fuzz/seeds/$name")   # new inputs go to the first
  [ -d "tests/fuzz/regressions/$name" ] && corpus+=("tests/fuzz/regressions/$name")
  mkdir -p "$build/corpus/$name" "$build/artifacts"
  log="$build/$target.log"
  # A picture may take 512 MiB; one allocation above that is a failure, as are leaks and UB.
  if ! "$build/tests/fuzz/$target" -runs="$runs" -malloc_limit_mb=600 -rss_limit_mb=3072 -timeout=20 \
       -print_final_stats=1 -artifact_prefix="$build/artifacts/$target-" "${corpus[@]}" >"$log" 2>&1; then
    tail -n 60 "$log" >&2
    echo "fuzz.sh: $target failed; the input is in $build/artifacts" >&2
    exit 1
  fi
  awk -v t="$target" '/stat::number_of_executed_units/ {n=$NF} /stat::average_exec_per_sec/ {s=$NF}
       /stat::peak_rss_mb/ {m=$NF} /stat::new_units_added/ {u=$NF}
       END {printf "%s: %d executions, %d exec/s, peak RSS %d MB, %d new corpus inputs\n", t, n, s, m, u}' "$log"
done
