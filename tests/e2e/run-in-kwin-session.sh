#!/usr/bin/env bash
# Runs a command inside a throw-away KDE Plasma compositor: a headless KWin 5.27 (virtual outputs, OpenGL
# compositing on llvmpipe) with two outputs of 1280x720 pixels, Virtual-0 at 0,0 at scale 1 and
# Virtual-1 at 1280,0 at scale 2 (640x360 in layout coordinates), each showing its own wallpaper (the
# desk image of mkdesk.py; Virtual-1's turned half round, so the outputs cannot be told apart by
# mistake), a private D-Bus session and dunst. Everything is torn down when the command ends; the
# command's exit status is kept.
#
#   run-in-kwin-session.sh --wallpaper KWIN_WALLPAPER -- COMMAND [ARGUMENT...]
#
# KWin 5.27 has no option for a scale per output: it applies KScreen's saved layout for its set of
# outputs, $XDG_DATA_HOME/kscreen/<md5 of the sorted output names>, at start-up, which is written here.
# /usr/bin/kwin_wayland carries a file capability that a container refuses to exec, so a copy without
# it runs (named kwin_wayland still, as KWin finds its helpers by its own name).
#
# When started as root, KWin, its clients and the command run as nobody (uid/gid 65534). The command sees
# WAYLAND_DISPLAY, XDG_RUNTIME_DIR, DBUS_SESSION_BUS_ADDRESS, QT_QPA_PLATFORM=wayland, no DISPLAY,
# VISTREL_E2E_BACKGROUND_VIRTUAL_0 and _1 (the PNG each output shows), VISTREL_E2E_KWIN_PYTHON (a copy of
# the interpreter that a desktop entry grants org.kde.KWin.ScreenShot2, for helpers/kwin_screenshot.py)
# and a private HOME, XDG folders and TMPDIR under VISTREL_E2E_DIR, all writable by it; desktop entries it
# writes to $XDG_DATA_HOME/applications are seen by KWin's checks. VISTREL_E2E_OUTPUT, when set, is
# replaced by a folder the command can write whose files are copied to the given one afterwards.
# Exit status 77 (ctest's skip) only when KWin is not installed.
set -uo pipefail

wallpaper=
while [ $# -gt 0 ]; do
  case "$1" in
    --wallpaper) wallpaper=$2; shift 2 ;;
    --) shift; break ;;
    *) echo "run-in-kwin-session.sh: unknown option $1" >&2; exit 2 ;;
  esac
done
[ $# -gt 0 ] || { echo "run-in-kwin-session.sh: no command given" >&2; exit 2; }
[ -x "$wallpaper" ] || { echo "run-in-kwin-session.sh: --wallpaper names no program" >&2; exit 2; }

if [ ! -e /usr/bin/kwin_wayland ]; then
  echo "SKIP: kwin_wayland is not installed (scripts/setup.sh test installs kwin-wayland)" >&2
  exit 77
fi

source "$(dirname "$0")/session-lib.sh"
session_begin run-in-kwin-session.sh 20

session_user
mkdir -p "$session/bin"
session_wayland_home KDE .local/share/applications .local/share/kscreen
unset DISPLAY WAYLAND_DISPLAY SWAYSOCK DBUS_SESSION_BUS_ADDRESS KWIN_SCREENSHOT_NO_PERMISSION_CHECKS \
      KWIN_WAYLAND_NO_PERMISSION_CHECKS

# The wallpapers, made once and kept in the cache.
session_desk_cache
if [ ! -s "$cache/kwin-desk-0.png" ] || [ ! -s "$cache/kwin-desk-1.png" ]; then
  /usr/bin/python3 "$mkdesk" 1280 720 "$session/desk.png" &&
    /usr/bin/python3 -c 'import sys; from PIL import Image
desk = Image.open(sys.argv[1]).convert("RGB")
desk.save(sys.argv[2]); desk.transpose(Image.Transpose.ROTATE_180).save(sys.argv[3])' \
      "$session/desk.png" "$session/made-0.png" "$session/made-1.png" &&
    mv "$session/made-0.png" "$cache/kwin-desk-0.png" && mv "$session/made-1.png" "$cache/kwin-desk-1.png" ||
    fail "the wallpapers could not be made"
fi
export VISTREL_E2E_BACKGROUND_VIRTUAL_0="$cache/kwin-desk-0.png" VISTREL_E2E_BACKGROUND_VIRTUAL_1="$cache/kwin-desk-1.png"
user test -r "$VISTREL_E2E_BACKGROUND_VIRTUAL_1" || fail "the session's user cannot read $cache"

# The layout KWin applies at start-up.
user sh -c "cat >'$XDG_DATA_HOME/kscreen/$(printf 'Virtual-0Virtual-1' | md5sum | cut -d' ' -f1)'" <<'EOF'
[{"id": "Virtual-0", "metadata": {"name": "Virtual-0"}, "enabled": true, "priority": 1,
  "pos": {"x": 0, "y": 0}, "scale": 1, "rotation": 1},
 {"id": "Virtual-1", "metadata": {"name": "Virtual-1"}, "enabled": true, "priority": 2,
  "pos": {"x": 1280, "y": 0}, "scale": 2, "rotation": 1}]
EOF

# KWin grants a restricted D-Bus interface to the first application entry whose Exec names the caller's
# executable, so the oracle's interpreter is a copy of its own: the system's python3 has an entry.
cp /usr/bin/kwin_wayland "$session/bin/kwin_wayland"
cp "$(readlink -f /usr/bin/python3)" "$session/bin/python3"
export VISTREL_E2E_KWIN_PYTHON="$session/bin/python3"
user sh -c "cat >'$XDG_DATA_HOME/applications/vistrel-e2e-kwin-screenshot.desktop'" <<EOF
[Desktop Entry]
Type=Application
Name=KWin screenshot oracle
Exec=$VISTREL_E2E_KWIN_PYTHON
NoDisplay=true
X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2
EOF

session_user_bus

LIBGL_ALWAYS_SOFTWARE=1 "${as_user[@]}" "$session/bin/kwin_wayland" --virtual --width 1280 --height 720 \
  --output-count 2 --socket wayland-vistrel --no-lockscreen --no-global-shortcuts --no-kactivities \
  >"$session/kwin.log" 2>&1 &
pids+=($!)
wait_for test -S "$XDG_RUNTIME_DIR/wayland-vistrel" && wait_for has_name org.kde.KWin ||
  fail "KWin did not start: $(tail -n 5 "$session/kwin.log")"
export WAYLAND_DISPLAY=wayland-vistrel

"${as_user[@]}" "$wallpaper" >"$session/wallpaper.log" 2>&1 &
pids+=($!)
shows() {
  user "$VISTREL_E2E_KWIN_PYTHON" "$here/helpers/kwin_screenshot.py" "$1" "$user_dir/tmp/shown.png" &&
    /usr/bin/python3 -c 'import sys; from PIL import Image, ImageChops
sys.exit(ImageChops.difference(Image.open(sys.argv[1]), Image.open(sys.argv[2]).convert("RGB")).getbbox() is not None)' \
      "$user_dir/tmp/shown.png" "$2"
}
wait_for shows Virtual-0 "$VISTREL_E2E_BACKGROUND_VIRTUAL_0" && wait_for shows Virtual-1 "$VISTREL_E2E_BACKGROUND_VIRTUAL_1" ||
  fail "the outputs do not show their wallpaper: $(tail -n 5 "$session/wallpaper.log" "$session/kwin.log")"
rm -f "$user_dir/tmp/shown.png"

session_run_with_notifications "$@"
