#!/usr/bin/env bash
# Capture speed and footprint side by side with the other tools, in private X sessions: whole-process
# captures to PNG (vistrel capture, scrot, maim, import, flameshot, spectacle) and, in the running
# applications, trigger -> overlay, mouse-up -> file and resident memory (Vistrel, flameshot's daemon,
# spectacle). Writes build/bench/capture-results/table.md. Hold the shared lock for the whole run, so
# no build runs beside it:
#
#   flock /tmp/vistrel-build.lock bash scripts/bench-capture.sh [--rounds N]
set -euo pipefail
cd "$(dirname "$0")/.."

rounds=11
while [ $# -gt 0 ]; do
  case "$1" in
    --rounds) rounds=$2; shift 2 ;;
    *) echo "bench-capture.sh: unknown option $1" >&2; exit 2 ;;
  esac
done

source scripts/bench-build.sh
bench_build bench vistrel latency_probe

results="$build/capture-results"
mkdir -p "$results"
echo "bench-capture.sh: load average before: $(cut -d' ' -f1-3 /proc/loadavg)" >&2
/usr/bin/python3 bench/capture_tools.py "$build/src/app/vistrel" "$build/bench-desks" --rounds "$rounds" \
    --json "$results/tools.json" >/dev/null
/usr/bin/python3 bench/app_latency.py "$build/src/app/vistrel" "$build/bench/latency_probe" "$build/bench-desks" \
    --rounds "$rounds" --json "$results/app.json" >/dev/null
/usr/bin/python3 bench/capture_report.py "$results/tools.json" "$results/app.json" >"$results/table.md"
cat "$results/table.md"
