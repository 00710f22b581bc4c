#!/usr/bin/env bash
# Installs the Debian packages Vistrel needs. Idempotent: when everything is present it only asks dpkg
# and returns; apt-get update runs only when something is missing.
#
#   scripts/setup.sh [build|test|run|bench]...   (default: build)
set -euo pipefail

build=(g++ cmake ninja-build ccache pkg-config
       qt6-base-dev qt6-base-dev-tools qt6-image-formats-plugins
       libpng-dev libdeflate-dev zlib1g-dev
       libxcb1-dev libxcb-shm0-dev libxcb-render0-dev libxcb-keysyms1-dev libxcb-randr0-dev libxcb-xtest0-dev x11proto-dev
       libcanberra-dev libbenchmark-dev libwayland-dev wayland-protocols qt6-wayland
       fonts-dejavu-core fonts-noto-cjk sound-theme-freedesktop)
test=(libxcb-xfixes0-dev libxcb-xkb-dev xvfb xauth openbox dunst dbus dbus-x11 xdotool xclip x11-xserver-utils x11-utils
      imagemagick python3 python3-pil python3-dbus python3-gi trayer at-spi2-core gir1.2-atspi-2.0
      desktop-file-utils clang libclang-rt-14-dev gnome-settings-daemon-common
      sway grim wtype wl-clipboard pipewire xdg-desktop-portal xdg-desktop-portal-wlr xdg-desktop-portal-gtk kwin-wayland libkf5globalaccel-bin
      gnome-shell xdg-desktop-portal-gnome gjs)
run=(xdg-utils)
bench=(scrot maim flameshot kde-spectacle ksnip imagemagick hyperfine time xrestop)

groups=("$@")
[ ${#groups[@]} -gt 0 ] || groups=(build)

wanted=()
for g in "${groups[@]}"; do
  case "$g" in
    build) wanted+=("${build[@]}") ;;
    test)  wanted+=("${build[@]}" "${test[@]}") ;;
    run)   wanted+=("${build[@]}" "${run[@]}") ;;
    bench) wanted+=("${build[@]}" "${test[@]}" "${bench[@]}") ;;
    *) echo "setup.sh: unknown group '$g' (build, test, run, bench)" >&2; exit 2 ;;
  esac
done

missing=()
for p in "${wanted[@]}"; do
  case "$p" in *-) continue ;; esac   # a trailing '-' names a package we never want
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q '^install ok installed$'; then
    missing+=("$p")
  fi
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=()
[ "$(id -u)" -eq 0 ] || sudo=(sudo)
echo "setup.sh: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
"${sudo[@]}" apt-get update -qq
"${sudo[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
