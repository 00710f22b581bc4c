#!/usr/bin/python3
"""Whole-process capture to PNG on sway, `vistrel capture` against grim, inside the headless session of
tests/e2e/run-in-wayland-session.sh (HEADLESS-1 1280x720 at scale 1, HEADLESS-2 1920x1080 pixels at
scale 2, each showing the desk image): the whole scale-2 output and the 1280x720 region of the first.

Runs are interleaved (the order turning from round to round) after a warm-up. Every pair of outputs of
a round is decoded and compared pixel for pixel, and both with the wallpaper the compositor shows.
Reported per case: each tool's median time, file size and peak resident memory (ru_maxrss), the ratio
of the medians and the median of the per-round ratios, and the ratio of the file sizes.

  tests/e2e/run-in-wayland-session.sh -- bench/wayland_capture.py VISTREL [--rounds N] [--warmup N]
                                                                          [--json FILE]
The JSON goes to standard output (and to FILE); a summary to standard error."""
import argparse
import os
import shutil
import statistics
import sys

from PIL import Image

from benchsession import differs, load_average, publish
from capture_tools import timed

# (case, vistrel's arguments, grim's arguments, the wallpaper the picture should show, its crop)
CASES = [
    ("1920x1080 output at scale 2", ["--display", "1"], ["-o", "HEADLESS-2"], "HEADLESS_2", None),
    ("1280x720 region", ["--region", "0,0,1280,720"], ["-g", "0,0 1280x720"], "HEADLESS_1", (0, 0, 1280, 720)),
]


def tools(vistrel, vistrel_arguments, grim_arguments, out):
    return {"vistrel": [vistrel, "capture", *vistrel_arguments, "-o", out["vistrel"]],
            "grim": ["grim", *grim_arguments, out["grim"]]}


def measure(vistrel, folder, case, rounds, warmup):
    label, vistrel_arguments, grim_arguments, wallpaper, crop = case
    expected = Image.open(os.environ["VISTREL_E2E_BACKGROUND_" + wallpaper]).convert("RGB")
    if crop:
        expected = expected.crop(crop)
    out = {name: os.path.join(folder, f"{name}.png") for name in ["vistrel", "grim"]}
    commands = tools(vistrel, vistrel_arguments, grim_arguments, out)
    names = list(commands)
    results = {name: {"times": [], "rss": [], "sizes": []} for name in names}
    ratios, problems = [], []
    for round_index in range(warmup + rounds):
        order = names if round_index % 2 == 0 else names[::-1]
        times = {}
        for name in order:
            if os.path.exists(out[name]):
                os.remove(out[name])
            elapsed, rss, status, stderr = timed(commands[name], os.environ, folder)
            times[name] = elapsed
            if status:
                problems.append(f"{name} exit status {status}: {stderr.strip()[-200:]}")
            elif round_index >= warmup:
                results[name]["times"].append(elapsed)
                results[name]["rss"].append(rss)
                results[name]["sizes"].append(os.path.getsize(out[name]))
        if round_index < warmup or not all(os.path.exists(path) for path in out.values()):
            continue
        ratios.append(times["vistrel"] / times["grim"])
        with Image.open(out["grim"]) as theirs:
            pair = differs(theirs.convert("RGB"), out["vistrel"])
        for problem in [pair and f"vistrel differs from grim: {pair}", differs(expected, out["grim"])]:
            if problem:
                problems.append(problem)
    rows = {name: {"median_ms": round(statistics.median(entry["times"]), 1),
                   "bytes": int(statistics.median(entry["sizes"])),
                   "peak_rss_kib": max(entry["rss"]), "runs": len(entry["times"])}
            for name, entry in results.items() if entry["times"]}
    summary = {"tools": rows, "mismatches": len(problems), "first_mismatch": problems[0] if problems else None}
    if len(rows) == 2:
        summary["ratio_of_medians"] = round(rows["vistrel"]["median_ms"] / rows["grim"]["median_ms"], 3)
        summary["median_paired_ratio"] = round(statistics.median(ratios), 3) if ratios else None
        summary["size_ratio"] = round(rows["vistrel"]["bytes"] / rows["grim"]["bytes"], 3)
    return label, summary


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("vistrel")
    parser.add_argument("--rounds", type=int, default=30)
    parser.add_argument("--warmup", type=int, default=3)
    parser.add_argument("--json")
    arguments = parser.parse_args()
    if not shutil.which("grim") or "WAYLAND_DISPLAY" not in os.environ:
        sys.exit("wayland_capture.py: run it inside tests/e2e/run-in-wayland-session.sh, with grim installed")
    folder = os.environ.get("VISTREL_E2E_DIR", os.environ.get("TMPDIR", "/tmp"))
    report = {}
    for case in CASES:
        load_before = load_average()
        label, summary = measure(arguments.vistrel, folder, case, arguments.rounds, arguments.warmup)
        summary["load"] = f"{load_before}..{load_average()}"
        report[label] = summary
        print(f"{label}: {summary}", file=sys.stderr)
    publish(report, arguments.json)
    sys.exit(1 if any(entry["mismatches"] for entry in report.values()) else 0)


if __name__ == "__main__":
    main()
