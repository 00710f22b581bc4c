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

# The launcher entry, naming this build's program by its full path: KDE Plasma lets only a program with
# such an entry take screenshots through KWin.
program=$(realpath "$build/src/app/vistrel")
applications=${XDG_DATA_HOME:-$HOME/.local/share}/applications
mkdir -p "$applications"
sed "s|^Exec=vistrel|Exec=$program|" resources/vistrel.desktop > "$applications/vistrel.desktop.new"
mv "$applications/vistrel.desktop.new" "$applications/vistrel.desktop"

exec "$program" "$@"
