#!/usr/bin/python3
"""Trigger -> overlay on sway, measured from outside, inside the headless session of
tests/e2e/run-in-wayland-session.sh (HEADLESS-1 1280x720 at scale 1, HEADLESS-2 1920x1080 pixels at
scale 2). Vistrel runs; sway binds Shift+Super+S to `vistrel select`, as users bind it.

wl_overlay_probe reads a 16x16 square of each output through wlr-screencopy, starts the trigger, and
reports the first frame whose copy differs on each output (the overlay's dimming), with the frame's
own time: the resolution is one frame of the outputs (60 Hz here, 16.7 ms). Two ways in, interleaved:

- "binding": wtype presses the key, sway runs `vistrel select`, which hands the request to the running
  instance; the probe's command time is wtype's run.
- "select": the probe starts `vistrel select` itself; its command time is that process's run, from
  start to exit after handing the request over.

The difference of the two is wtype and sway's binding; "select" less its command time is about what
the running instance takes from the request to both outputs' pixels. Escape ends each overlay. The
first trigger after start is reported on its own; then medians and 90th percentiles.

  tests/e2e/run-in-wayland-session.sh -- bench/wayland_latency.py VISTREL WL_OVERLAY_PROBE [--rounds N]
                                                                                          [--json FILE]"""
import argparse
import os
import statistics
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
from benchsession import load_average, publish  # noqa: E402
from vistrel_wayland import VISTREL, Vistrel, bindsym, check, failures, key, windows  # noqa: E402

BINDING = ["wtype", "-k", "Shift_L", "-M", "shift", "-M", "logo", "-k", "s", "-m", "logo", "-m", "shift"]


def figures(output):
    values = {}
    for part in output.split():
        name, _, value = part.partition("=")
        values[name] = None if value == "none" else float(value)
    return values


def overlays():
    return [w for w in windows() if w["app_id"] == "vistrel" and w["visible"]]


def trigger(probe, command):
    """One trigger: the probe's figures, once the overlay it brought is gone again."""
    result = subprocess.run([probe, "--timeout-ms", "4000", "--", *command], capture_output=True, text=True,
                            timeout=30)
    values = figures(result.stdout)
    check(overlays() or values.get("pixels_ms") is None, "the probe saw a change but no overlay is up")
    # sway gives the keyboard to the overlay once it has mapped it, a little after its first pixels.
    time.sleep(0.3)
    key("Escape")
    gone = check(_wait(lambda: not overlays(), 5), f"Escape left overlays up: {overlays()}")
    # The compositor draws the desktop again before the next baseline is read.
    time.sleep(0.3 if gone else 1.0)
    return values


def _wait(condition, timeout):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        if condition():
            return True
        time.sleep(0.02)
    return condition()


def percentile(values, fraction):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, round(fraction * (len(ordered) - 1)))]


def summary(samples):
    row = {"runs": len(samples), "missed": sum(1 for s in samples if s.get("pixels_ms") is None)}
    for name in sorted({name for s in samples for name in s}):
        values = [s[name] for s in samples if s.get(name) is not None]
        if values:
            row[name] = {"median": round(statistics.median(values), 1), "p90": round(percentile(values, 0.9), 1)}
    return row


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("vistrel")
    parser.add_argument("probe")
    parser.add_argument("--rounds", type=int, default=20)
    parser.add_argument("--json")
    arguments = parser.parse_args()
    ways = {"binding": BINDING, "select": [VISTREL, "select"]}
    report = {"load": load_average()}
    app = Vistrel()
    try:
        bindsym("shift+mod4+s", f"{VISTREL} select")
        time.sleep(1.0)
        for name, command in ways.items():
            report[f"{name} first"] = trigger(arguments.probe, command)
        samples = {name: [] for name in ways}
        for round_index in range(arguments.rounds):
            order = list(ways) if round_index % 2 == 0 else list(ways)[::-1]
            for name in order:
                samples[name].append(trigger(arguments.probe, ways[name]))
        for name, values in samples.items():
            report[name] = summary(values)
    finally:
        app.quit()
    report["load"] += f"..{load_average()}"
    for name in ways:
        print(f"{name}: first {report[f'{name} first']}, then {report[name]}", file=sys.stderr)
    publish(report, arguments.json)
    missed = sum(report[name]["missed"] for name in ways)
    sys.exit(1 if missed or failures else 0)


if __name__ == "__main__":
    main()
