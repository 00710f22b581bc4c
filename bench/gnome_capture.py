#!/usr/bin/python3
"""Capture on GNOME, inside the headless GNOME Shell of tests/e2e/run-in-gnome-session.sh (Meta-0
1280x720 at scale 1, Meta-1 1920x1080 pixels at scale 2, GNOME's pixel layout). GNOME lets
applications read the screen only through the Screenshot portal, so the portal's own round trip is the
floor every tool there pays (flameshot and ksnip use it as it is); beside it, interleaved, Vistrel:

- "portal": a client's Screenshot call until its PNG of the whole layout (3200x1080) is read and decoded;
- "select": `vistrel select` until the running instance logs the overlay shown, every monitor frozen
  (the diagnostics log is polled every millisecond);
- "save": the pointer released (Mutter's RemoteDesktop) until the capture of a 600x400-pixel region on
  Meta-1 is complete on disk (its "saveImage success" line).

Each selection is checked against the portal's picture, pixel for pixel. Medians and 90th percentiles.

  tests/e2e/run-in-gnome-session.sh -- bench/gnome_capture.py VISTREL [--rounds N] [--json FILE]"""
import argparse
import os
import statistics
import sys
import time

from PIL import Image

HERE = os.path.dirname(os.path.abspath(__file__))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e"))
sys.path.insert(0, os.path.join(HERE, "..", "tests", "e2e", "helpers"))
parser = argparse.ArgumentParser()
parser.add_argument("vistrel")
parser.add_argument("--rounds", type=int, default=11)
parser.add_argument("--json")
options = parser.parse_args()
sys.argv[1:] = [options.vistrel, "-"]  # vistrel_e2e reads its executable from here

import gnome_desktop  # noqa: E402
from benchsession import load_average, publish  # noqa: E402
from vistrel_e2e import SESSION, Vistrel, check, differs, failures, log_lines, run  # noqa: E402


def until_line(text, after, timeout=15):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        if any(line.startswith(text) for line in log_lines()[after:]):
            return time.monotonic()
        time.sleep(0.001)
    return None


def summary(values):
    values = sorted(values)
    return {"median_ms": round(statistics.median(values) * 1000, 1),
            "p90_ms": round(values[min(len(values) - 1, int(len(values) * 0.9))] * 1000, 1), "runs": len(values)}


pointer = gnome_desktop.Input(["Meta-0", "Meta-1"])
pointer.move("Meta-0", 1270, 710)
app = Vistrel()
times = {"portal": [], "select": [], "save": []}
for round_number in range(options.rounds + 1):
    started = time.monotonic()
    path = gnome_desktop.screenshot(os.path.join(SESSION, "portal.png"))
    shown = Image.open(path).convert("RGB") if path else None
    portal_time = time.monotonic() - started
    if not check(shown is not None and shown.size == (3200, 1080), "the portal gave no picture of the layout"):
        break

    before = len(log_lines())
    started = time.monotonic()
    run(options.vistrel, "select", timeout=20)
    frozen = until_line("showSelectionWindow screens=2", before)
    if not check(frozen, "no overlay on both monitors"):
        break
    time.sleep(0.5)
    pointer.drag("Meta-1", (200, 200), (800, 600), steps=3)
    released = time.monotonic()
    saved = until_line("saveImage success path=", before)
    if not check(saved, "nothing saved"):
        break
    file = next(line for line in log_lines()[before:] if line.startswith("saveImage success")).split("path=", 1)[1]
    problem = differs(shown.crop((1480, 200, 2080, 600)), Image.open(file))
    check(problem is None, f"round {round_number}: the capture differs from the portal's picture: {problem}")
    os.remove(file)
    pointer.move("Meta-0", 1270, 710)
    if round_number > 0:  # the first round warms both up
        times["portal"].append(portal_time)
        times["select"].append(frozen - started)
        times["save"].append(saved - released)
    time.sleep(1.1)  # file names carry seconds
app.quit()

report = {"session": "GNOME Shell 43 headless, Meta-0 1280x720 @1 + Meta-1 1920x1080 @2 (pixel layout)",
          "load_average": load_average(), "failures": failures,
          **{name: summary(values) for name, values in times.items() if values}}
publish(report, options.json)
sys.exit(1 if failures else 0)
