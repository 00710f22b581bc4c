# Shared by the run-in-*-session.sh scripts (sourced, not run): the session folder and its teardown,
# the processes to stop, failing with the script's name, and waiting for a condition.
#
#   session_begin NAME [SECONDS]   makes $session, arms the teardown; wait_for then waits SECONDS (10)

session_begin() {
  script_name=$1
  wait_seconds=${2:-10}
  here=$(cd "$(dirname "$0")" && pwd)
  repo=$(cd "$here/../.." && pwd)
  session=$(mktemp -d "${TMPDIR:-/tmp}/vistrel-${script_name%.sh}.XXXXXX")
  chmod 755 "$session"
  pids=()
  as_user=()
  trap session_teardown EXIT
  trap 'exit 130' INT TERM
}

# Stops every process started, newest first, and removes the session folder; the exit status stays. A
# process still there five seconds after being asked (a compositor stuck on its way out) is killed.
session_teardown() {
  local i tries
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
    kill "${pids[i]}" 2>/dev/null
  done
  for ((tries = 0; tries < 100; tries++)); do
    session_any_running || break
    sleep 0.05
  done
  for ((i = 0; i < ${#pids[@]}; i++)); do
    kill -KILL "${pids[i]}" 2>/dev/null
  done
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
    wait "${pids[i]}" 2>/dev/null
  done
  rm -rf "$session"
}

session_any_running() {
  local pid
  for pid in "${pids[@]}"; do
    kill -0 "$pid" 2>/dev/null && return 0
  done
  return 1
}

# The desk image maker ($mkdesk, VISTREL_MKDESK or bench/mkdesk.py) and the folder its pictures are kept
# in across sessions ($cache, VISTREL_E2E_CACHE, else the session's own folder).
session_desk_cache() {
  local candidate
  mkdesk=
  for candidate in "${VISTREL_MKDESK:-}" "$repo/bench/mkdesk.py"; do
    if [ -n "$candidate" ] && [ -f "$candidate" ]; then mkdesk=$candidate; break; fi
  done
  [ -n "$mkdesk" ] || fail "mkdesk.py not found (set VISTREL_MKDESK)"
  cache=${VISTREL_E2E_CACHE:-$session}
  mkdir -p "$cache" && cache=$(cd "$cache" && pwd)
}

fail() { echo "$script_name: $*" >&2; exit 1; }

# Waits up to the session's seconds for a condition (a command) to hold.
wait_for() {
  local tries=0
  until "$@" >/dev/null 2>&1; do
    tries=$((tries + 1))
    [ $tries -lt $((wait_seconds * 20)) ] || return 1
    sleep 0.05
  done
}

# The session's user for Wayland compositors, which refuse root: nobody when started as root, else
# whoever runs this. Logs and configurations stay in $session; what the user writes lives in $user_dir.
session_user() {
  as_user=()
  user_dir="$session/user"
  mkdir -p "$user_dir"
  if [ "$(id -u)" = 0 ]; then
    as_user=(setpriv --reuid=65534 --regid=65534 --clear-groups)
    chown 65534:65534 "$user_dir"
  fi
}

user() { "${as_user[@]}" "$@"; }

# The user's own home, XDG folders, runtime folder and TMPDIR under $user_dir, exported for a Wayland
# desktop of that name; the folders named after it are made under the home too.
session_wayland_home() {
  local desktop=$1 folder
  shift
  local folders=("$user_dir/home/Desktop" "$user_dir/home/.config" "$user_dir/home/.local/state"
                 "$user_dir/home/.local/share" "$user_dir/home/.cache" "$user_dir/runtime" "$user_dir/tmp"
                 "$user_dir/output")
  for folder in "$@"; do folders+=("$user_dir/home/$folder"); done
  user mkdir -p "${folders[@]}" || fail "the session's user cannot write $user_dir"
  chmod 700 "$user_dir/runtime"
  export HOME="$user_dir/home" XDG_CONFIG_HOME="$user_dir/home/.config" XDG_STATE_HOME="$user_dir/home/.local/state" \
         XDG_DATA_HOME="$user_dir/home/.local/share" XDG_CACHE_HOME="$user_dir/home/.cache" \
         XDG_RUNTIME_DIR="$user_dir/runtime" TMPDIR="$user_dir/tmp" XDG_SESSION_TYPE=wayland \
         XDG_CURRENT_DESKTOP="$desktop" VISTREL_E2E_DIR="$user_dir"
}

# Whether the session bus has a service of that name. Asked of the bus, not of the service: a call to
# the service would have the bus start a second one.
has_name() {
  user dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus \
    org.freedesktop.DBus.NameHasOwner "string:$1" | grep -q "boolean true"
}

# The user's session bus, at $XDG_RUNTIME_DIR/bus. Servers start through setpriv, which execs them, not
# through user(): the process ids kept for the teardown are then the servers' own.
session_user_bus() {
  "${as_user[@]}" dbus-daemon --session --nofork --address="unix:path=$XDG_RUNTIME_DIR/bus" --print-address=5 \
    5>"$session/bus" 2>"$session/dbus.log" &
  pids+=($!)
  wait_for test -s "$session/bus" || fail "dbus-daemon did not start: $(cat "$session/dbus.log")"
  export DBUS_SESSION_BUS_ADDRESS=$(head -n 1 "$session/bus")
  session_output=${VISTREL_E2E_OUTPUT:-}
  export VISTREL_E2E_OUTPUT="$user_dir/output" QT_QPA_PLATFORM=wayland PYTHONDONTWRITEBYTECODE=1
}

# The notification server (dunst), then session_run.
session_run_with_notifications() {
  "${as_user[@]}" dunst >"$session/dunst.log" 2>&1 &
  pids+=($!)
  wait_for has_name org.freedesktop.Notifications || fail "dunst did not start: $(cat "$session/dunst.log")"
  session_run "$@"
}

# The command as the user; its output folder is copied to the one the caller named, and its exit status
# is the script's.
session_run() {
  user "$@"
  local status=$?
  if [ -n "$session_output" ] && [ -n "$(ls -A "$VISTREL_E2E_OUTPUT")" ]; then
    mkdir -p "$session_output" && cp -r "$VISTREL_E2E_OUTPUT"/. "$session_output"/
  fi
  exit $status
}
