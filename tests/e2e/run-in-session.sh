#!/usr/bin/env bash
# Runs a command inside a throw-away desktop: a private Xvfb, the openbox window manager, a private
# D-Bus session with the dunst notification server, and the desk image (mkdesk.py) as the root
# background. Everything is torn down when the command ends; the command's exit status is kept.
#
#   run-in-session.sh [--size WxH] [--background PNG] -- COMMAND [ARGUMENT...]
#
# The command sees DISPLAY, DBUS_SESSION_BUS_ADDRESS, VISTREL_E2E_BACKGROUND (the PNG on the root
# window), VISTREL_E2E_SIZE, and a private HOME and XDG folders under VISTREL_E2E_DIR. Exit status 77
# (ctest's skip) when no X server can be started at all.
set -uo pipefail

size=1920x1080
background=
while [ $# -gt 0 ]; do
  case "$1" in
    --size) size=$2; shift 2 ;;
    --background) background=$2; shift 2 ;;
    --) shift; break ;;
    *) echo "run-in-session.sh: unknown option $1" >&2; exit 2 ;;
  esac
done
[ $# -gt 0 ] || { echo "run-in-session.sh: no command given" >&2; exit 2; }

source "$(dirname "$0")/session-lib.sh"
session_begin run-in-session.sh

# X server: Xvfb picks a free display itself and writes its number to fd 5.
if ! command -v Xvfb >/dev/null; then
  echo "SKIP: Xvfb is not installed (scripts/setup.sh test installs it)" >&2
  exit 77
fi
Xvfb -displayfd 5 -screen 0 "${size}x24" -nolisten tcp -noreset 5>"$session/display" 2>"$session/xvfb.log" &
pids+=($!)
if ! wait_for test -s "$session/display"; then
  echo "SKIP: Xvfb could not start: $(tail -n 3 "$session/xvfb.log")" >&2
  exit 77
fi
export DISPLAY=":$(head -n 1 "$session/display")"

# Private folders, so nothing of the user's is read or written.
export HOME="$session/home" XDG_CONFIG_HOME="$session/home/.config" XDG_STATE_HOME="$session/home/.local/state" \
       XDG_DATA_HOME="$session/home/.local/share" XDG_CACHE_HOME="$session/home/.cache" \
       XDG_RUNTIME_DIR="$session/runtime" XDG_SESSION_TYPE=x11
unset WAYLAND_DISPLAY
mkdir -p "$HOME/Desktop" "$XDG_CONFIG_HOME" "$XDG_STATE_HOME" "$XDG_RUNTIME_DIR"
chmod 700 "$XDG_RUNTIME_DIR"
export VISTREL_E2E_DIR=$session VISTREL_E2E_SIZE=$size

dbus-daemon --session --nofork --print-address=5 5>"$session/bus" 2>"$session/dbus.log" &
pids+=($!)
wait_for test -s "$session/bus" || fail "dbus-daemon did not start: $(cat "$session/dbus.log")"
export DBUS_SESSION_BUS_ADDRESS=$(head -n 1 "$session/bus")

openbox --sm-disable >"$session/openbox.log" 2>&1 &
pids+=($!)
wait_for sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q "window id"' ||
  fail "openbox did not start: $(cat "$session/openbox.log")"

dunst >"$session/dunst.log" 2>&1 &
pids+=($!)
wait_for has_name org.freedesktop.Notifications || fail "dunst did not start: $(cat "$session/dunst.log")"

# The background: the desk image at the screen's size, made once per size and kept in the cache.
if [ -z "$background" ]; then
  session_desk_cache
  background="$cache/desk-$size.png"
  if [ ! -s "$background" ]; then
    /usr/bin/python3 "$mkdesk" "${size%x*}" "${size#*x}" "$session/desk.png" && mv "$session/desk.png" "$background" ||
      fail "mkdesk.py could not make the background"
  fi
fi
# display(1) leaves the image on the root window (its exit status is 1 even then); check the root.
display -window root "$background" 2>"$session/display.log"
xprop -root _XSETROOT_ID | grep -q pixmap || fail "the background could not be set: $(cat "$session/display.log")"
export VISTREL_E2E_BACKGROUND=$background

"$@"
