#!/usr/bin/env bash
# Installs what is missing, builds everything and runs every test. CI runs exactly this.
#
#   scripts/test.sh [ctest arguments...]     e.g. scripts/test.sh -L core
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh test

build=${VISTREL_BUILD_DIR:-build/test}
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build "$build"
cd "$build"
ctest --output-on-failure --no-tests=error "$@"
