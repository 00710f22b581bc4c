# Sourced by the benchmark scripts. bench_build GROUP TARGET...: installs the Debian packages of GROUP
# (scripts/setup.sh), configures build/bench (or $VISTREL_BENCH_DIR) optimised, -O2 without debug
# checks or tests, builds the targets and sets $build to that folder.
bench_build() {
  local group=$1
  shift
  bash scripts/setup.sh "$group"
  build=${VISTREL_BENCH_DIR:-build/bench}
  cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" \
        -DVISTREL_BUILD_TESTS=OFF >/dev/null
  cmake --build "$build" --target "$@" >&2
}
