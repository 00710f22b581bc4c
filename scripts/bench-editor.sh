#!/usr/bin/env bash
# The editor side by side with ksnip's, measured from outside in private X sessions at 1920x1080 and
# 3840x2160: opening a 4K picture, drawing (motion -> pixels, processor time per motion), saving and
# memory (bench/editor_bench.py). Writes build/bench/editor-results/table.md. Hold the shared lock for
# the whole run, so no build runs beside it:
#
#   flock /tmp/vistrel-build.lock bash scripts/bench-editor.sh [--rounds N] [--motions N] [--sizes WxH,...]
set -euo pipefail
cd "$(dirname "$0")/.."

options=()
while [ $# -gt 0 ]; do
  case "$1" in
    --rounds|--motions|--sizes) options+=("$1" "$2"); shift 2 ;;
    *) echo "bench-editor.sh: unknown option $1" >&2; exit 2 ;;
  esac
done

source scripts/bench-build.sh
bench_build bench vistrel latency_probe

results="$build/editor-results"
mkdir -p "$results"
echo "bench-editor.sh: load average before: $(cut -d' ' -f1-3 /proc/loadavg)" >&2
/usr/bin/python3 bench/editor_bench.py "$build/src/app/vistrel" "$build/bench/latency_probe" "$build/bench-desks" \
    "${options[@]}" --json "$results/editor.json" >/dev/null
/usr/bin/python3 bench/editor_report.py "$results/editor.json" >"$results/table.md"
cat "$results/table.md"
