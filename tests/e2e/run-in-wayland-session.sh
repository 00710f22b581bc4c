#!/usr/bin/env bash
# Runs a command inside a throw-away Wayland desktop: a headless sway with two outputs, HEADLESS-1
# (1280x720 at 0,0, scale 1) and HEADLESS-2 (1920x1080 pixels at 1280,0, scale 2), each showing the
# desk image (mkdesk.py) at its own pixel size, a private D-Bus session with the dunst notification
# server. Everything is torn down when the command ends; the command's exit status is kept.
#
#   run-in-wayland-session.sh -- COMMAND [ARGUMENT...]
#
# sway refuses to run as root, so when started as root the compositor, its clients and the command run
# as nobody (uid/gid 65534). The command sees WAYLAND_DISPLAY, SWAYSOCK, XDG_RUNTIME_DIR,
# DBUS_SESSION_BUS_ADDRESS, QT_QPA_PLATFORM=wayland, no DISPLAY, VISTREL_E2E_BACKGROUND_HEADLESS_1 and
# _HEADLESS_2 (the PNG each output shows; VISTREL_E2E_BACKGROUND is HEADLESS-1's), and a private HOME,
# XDG folders and TMPDIR under VISTREL_E2E_DIR, all writable by it. VISTREL_E2E_OUTPUT, when set, is
# replaced by a folder the command can write whose files are copied to the given one afterwards.
# Exit status 77 (ctest's skip) only when sway is not installed.
set -uo pipefail

[ "${1:-}" = -- ] && shift
[ $# -gt 0 ] && [ "${1#-}" = "$1" ] || { echo "usage: run-in-wayland-session.sh -- COMMAND [ARGUMENT...]" >&2; exit 2; }

if ! command -v sway >/dev/null; then
  echo "SKIP: sway is not installed (scripts/setup.sh test installs it)" >&2
  exit 77
fi

source "$(dirname "$0")/session-lib.sh"
session_begin run-in-wayland-session.sh

session_user
session_wayland_home sway
unset DISPLAY WAYLAND_DISPLAY SWAYSOCK DBUS_SESSION_BUS_ADDRESS

# The wallpapers: the desk image at each output's pixel size, made once per size and kept in the cache,
# with a PPM copy to compare grim's output against while waiting for the first frame.
session_desk_cache
desk() {
  local size=$1 made="$session/making-desk-$1"
  if [ ! -s "$cache/desk-$size.png" ] || [ ! -s "$cache/desk-$size.ppm" ]; then
    /usr/bin/python3 "$mkdesk" "${size%x*}" "${size#*x}" "$made.png" &&
      /usr/bin/python3 -c 'import sys; from PIL import Image; Image.open(sys.argv[1]).convert("RGB").save(sys.argv[2])' \
        "$made.png" "$made.ppm" && mv "$made.ppm" "$cache/desk-$size.ppm" && mv "$made.png" "$cache/desk-$size.png" ||
      fail "mkdesk.py could not make the $size background"
  fi
  user test -r "$cache/desk-$size.png" || fail "the session's user cannot read $cache/desk-$size.png"
}
desk 1280x720
desk 1920x1080
export VISTREL_E2E_BACKGROUND_HEADLESS_1="$cache/desk-1280x720.png" VISTREL_E2E_BACKGROUND_HEADLESS_2="$cache/desk-1920x1080.png"
export VISTREL_E2E_BACKGROUND=$VISTREL_E2E_BACKGROUND_HEADLESS_1

# No borders, gaps or title bars, so window contents sit where their rectangles say; the Adwaita
# cursor, so tests know its picture; no Xwayland, which Debian's sway would only fail to start.
cat >"$session/sway.conf" <<EOF
output HEADLESS-1 mode 1280x720 position 0 0 scale 1 bg $VISTREL_E2E_BACKGROUND_HEADLESS_1 fill
output HEADLESS-2 mode 1920x1080 position 1280 0 scale 2 bg $VISTREL_E2E_BACKGROUND_HEADLESS_2 fill
seat seat0 fallback true
seat seat0 xcursor_theme Adwaita 24
default_border none
default_floating_border none
gaps inner 0
gaps outer 0
xwayland disable
EOF

# The bus comes first, so that what sway runs (bindsym exec) finds it, and the command's environment too.
session_user_bus

WLR_BACKENDS=headless WLR_LIBINPUT_NO_DEVICES=1 WLR_RENDERER=pixman WLR_HEADLESS_OUTPUTS=2 \
  "${as_user[@]}" sway -c "$session/sway.conf" >"$session/sway.log" 2>&1 &
pids+=($!)
socket() { compgen -G "$XDG_RUNTIME_DIR/$1" | grep -v '\.lock$' | head -n 1; }
wait_for socket 'sway-ipc.*.sock' && wait_for socket 'wayland-*' || fail "sway did not start: $(tail -n 5 "$session/sway.log")"
export SWAYSOCK=$(socket 'sway-ipc.*.sock')
WAYLAND_DISPLAY=$(basename "$(socket 'wayland-*')")
export WAYLAND_DISPLAY
# Both outputs show their wallpaper once swaybg has drawn its first frames.
shows() { user grim -t ppm -o "$1" - | cmp -s - "$2"; }
wait_for shows HEADLESS-1 "$cache/desk-1280x720.ppm" && wait_for shows HEADLESS-2 "$cache/desk-1920x1080.ppm" ||
  fail "the outputs do not show their wallpaper: $(tail -n 5 "$session/sway.log")"

session_run_with_notifications "$@"
