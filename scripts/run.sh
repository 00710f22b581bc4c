#!/usr/bin/env bash
# Installs what is missing, builds Vistrel in release mode and starts it (in the tray of the current
# X11 or Wayland session). Arguments go to vistrel.
#
#   scripts/run.sh [ARGUMENT...]
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh run

build=build/release
cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release -DVISTREL_BUILD_TESTS=OFF -DVISTREL_BUILD_BENCH=OFF \
  >/dev/null
cmake --build "$build" --target vistrel
exec "$build/src/app/vistrel" "$@"
