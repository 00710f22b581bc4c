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
  trap session_teardown EXIT
  trap 'exit 130' INT TERM
}

# Stops every process started, newest first, and removes the session folder; the exit status stays.
session_teardown() {
  local i
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
    kill "${pids[i]}" 2>/dev/null
  done
  for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
    wait "${pids[i]}" 2>/dev/null
  done
  rm -rf "$session"
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
