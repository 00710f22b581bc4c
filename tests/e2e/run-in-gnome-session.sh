#!/usr/bin/env bash
# Runs a command inside a throw-away GNOME desktop: a headless GNOME Shell 43 with two virtual monitors
# in GNOME's default layout, which is in pixels: Meta-0 (1280x720 at 0,0, scale 1, primary) and Meta-1
# (1920x1080 pixels at 1280,0, scale 2), the desk image of mkdesk.py spanned over both as the wallpaper.
# It has its own system bus (GNOME Shell needs one) and session bus, PipeWire (Mutter's screen casts,
# which its RemoteDesktop pointer moves within), the desktop portal with GNOME's backend, its screenshot
# permission already granted as a user's earlier "Allow" would have, GNOME Shell's own notification
# server and GNOME's settings daemon for keys (custom shortcuts). Everything is torn down when the command ends; the command's exit status is kept.
#
#   run-in-gnome-session.sh -- COMMAND [ARGUMENT...]
#
# When started as root, GNOME Shell, its services and the command run as nobody (uid/gid 65534). The
# command sees WAYLAND_DISPLAY, XDG_RUNTIME_DIR, DBUS_SESSION_BUS_ADDRESS, DBUS_SYSTEM_BUS_ADDRESS,
# XDG_CURRENT_DESKTOP=GNOME, QT_QPA_PLATFORM=wayland, no DISPLAY, VISTREL_E2E_GNOME (helpers/gnome_desktop.py:
# the layout, the portal's picture, input), and a private HOME, XDG folders and TMPDIR under
# VISTREL_E2E_DIR, all writable by it. VISTREL_E2E_OUTPUT, when set, is replaced by a folder the command
# can write whose files are copied to the given one afterwards. Exit status 77 (ctest's skip) only when
# GNOME Shell is not installed.
set -uo pipefail

[ "${1:-}" = -- ] && shift
[ $# -gt 0 ] && [ "${1#-}" = "$1" ] || { echo "usage: run-in-gnome-session.sh -- COMMAND [ARGUMENT...]" >&2; exit 2; }

if ! command -v gnome-shell >/dev/null || [ ! -x /usr/libexec/xdg-desktop-portal-gnome ] ||
   [ ! -x /usr/libexec/gsd-media-keys ]; then
  echo "SKIP: GNOME Shell or its portal is not installed (scripts/setup.sh test installs them)" >&2
  exit 77
fi

source "$(dirname "$0")/session-lib.sh"
session_begin run-in-gnome-session.sh 20

session_user
session_wayland_home GNOME
export VISTREL_E2E_GNOME="$here/helpers/gnome_desktop.py"
unset DISPLAY WAYLAND_DISPLAY SWAYSOCK DBUS_SESSION_BUS_ADDRESS
gnome() { user /usr/bin/python3 "$VISTREL_E2E_GNOME" "$@"; }

# The wallpaper, made once and kept in the cache.
session_desk_cache
if [ ! -s "$cache/gnome-desk.png" ]; then
  /usr/bin/python3 "$mkdesk" 3200 1080 "$session/desk.png" && mv "$session/desk.png" "$cache/gnome-desk.png" ||
    fail "the wallpaper could not be made"
fi
user test -r "$cache/gnome-desk.png" || fail "the session's user cannot read $cache"

# The system bus GNOME Shell asks for logins, accounts and policy: nobody answers there, which it
# takes in its stride, but the bus itself must exist.
cat >"$session/system-bus.conf" <<CONF
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>system</type>
  <listen>unix:path=$XDG_RUNTIME_DIR/system-bus</listen>
  <policy context="default">
    <allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/><allow user="*"/>
  </policy>
</busconfig>
CONF
"${as_user[@]}" dbus-daemon --config-file="$session/system-bus.conf" --nofork >"$session/system-bus.log" 2>&1 &
pids+=($!)
wait_for test -S "$XDG_RUNTIME_DIR/system-bus" || fail "the system bus did not start: $(cat "$session/system-bus.log")"
export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$XDG_RUNTIME_DIR/system-bus"

# The session bus starts the portals and GNOME's services on demand, with this environment: without the
# display at first, as GNOME Shell starts the portal while it starts itself, and a portal backend that
# waited on the display then would wait on GNOME Shell, which waits on the portal.
session_user_bus
export WAYLAND_DISPLAY=wayland-vistrel

for setting in "org.gnome.desktop.background picture-uri file://$cache/gnome-desk.png" \
               "org.gnome.desktop.background picture-options spanned" \
               "org.gnome.desktop.interface enable-animations false" \
               "org.gnome.desktop.session idle-delay 0"; do
  user gsettings set $setting || fail "gsettings set $setting failed"
done
# The answer GNOME's one-time "Allow Applications to Take Screenshots?" dialog keeps, for everyone
# without an application id.
user gdbus call --session --dest org.freedesktop.impl.portal.PermissionStore \
  --object-path /org/freedesktop/impl/portal/PermissionStore \
  --method org.freedesktop.impl.portal.PermissionStore.SetPermission screenshot true screenshot '' "['yes']" \
  >/dev/null || fail "the screenshot permission could not be stored"

"${as_user[@]}" gnome-shell --wayland --headless --no-x11 --wayland-display "$WAYLAND_DISPLAY" \
  --virtual-monitor 1280x720 --virtual-monitor 1920x1080 >"$session/gnome-shell.log" 2>&1 &
pids+=($!)
wait_for test -S "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY" && wait_for has_name org.gnome.Shell.Screenshot ||
  fail "GNOME Shell did not start: $(tail -n 30 "$session/gnome-shell.log")"
# PipeWire once the portal it asks about real-time threads is there.
"${as_user[@]}" pipewire >"$session/pipewire.log" 2>&1 &
pids+=($!)
wait_for test -S "$XDG_RUNTIME_DIR/pipewire-0" || fail "PipeWire did not start: $(tail -n 5 "$session/pipewire.log")"

# Now the display is there: a portal started from here on has GNOME's backend, as in a GNOME session.
user gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
  --method org.freedesktop.DBus.UpdateActivationEnvironment "{'WAYLAND_DISPLAY': '$WAYLAND_DISPLAY'}" >/dev/null
for name in org.freedesktop.portal.Desktop org.freedesktop.impl.portal.desktop.gnome org.freedesktop.impl.portal.desktop.gtk; do
  pid=$(user gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
          --method org.freedesktop.DBus.GetConnectionUnixProcessID "$name" 2>/dev/null | grep -o '[0-9]\+' | tail -n 1)
  [ -z "$pid" ] || kill "$pid"
done
portal_gone() { ! has_name org.freedesktop.portal.Desktop; }
wait_for portal_gone || fail "the portal started without the display does not go"
gnome layout Meta-0:0,0,1 Meta-1:1280,0,2 || fail "Mutter refused the layout"
# GNOME Shell starts in the overview; Escape leaves it for the desktop.
gnome key Escape || fail "Mutter's remote desktop does not take keys"

shows_desk() {
  gnome screenshot "$TMPDIR/shown.png" && /usr/bin/python3 -c 'import sys; from PIL import Image
shown = Image.open(sys.argv[1]).convert("RGB")
# Below the top bar, in the middle of Meta-1: the wallpaper, not the overview or a black screen.
sys.exit(shown.size != (3200, 1080) or len(shown.crop((1600, 300, 2800, 900)).getcolors(1 << 16) or "x" * 99) < 8)' \
    "$TMPDIR/shown.png"
}
wait_for shows_desk || fail "the desktop shows no wallpaper: $(tail -n 5 "$session/gnome-shell.log")"
rm -f "$TMPDIR/shown.png"

# GNOME's settings daemon for keys, which runs the custom shortcuts' commands.
"${as_user[@]}" /usr/libexec/gsd-media-keys >"$session/gsd-media-keys.log" 2>&1 &
pids+=($!)
wait_for has_name org.gnome.SettingsDaemon.MediaKeys ||
  fail "gsd-media-keys did not start: $(tail -n 5 "$session/gsd-media-keys.log")"

# GNOME Shell's own notification server serves org.freedesktop.Notifications.
user gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
  --method org.freedesktop.DBus.StartServiceByName org.gnome.Shell.Notifications 0 >/dev/null
wait_for has_name org.freedesktop.Notifications || fail "GNOME Shell serves no notifications"

session_run "$@"
