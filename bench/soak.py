#!/usr/bin/python3
"""Soak run: many capture -> edit -> save cycles of one resident Vistrel in the end-to-end desktop
(Xvfb, openbox, D-Bus, dunst), watching its resources for growth. Each cycle drags a region on the
overlay, waits for the PNG, opens the editor through the notification, draws a rectangle, saves
NAME_edited.png with Return and waits for the editor to close.

After the warm-up cycles, and then every --every cycles, it samples the process: resident memory
(VmRSS), anonymous memory (RssAnon), open file descriptors (/proc/PID/fd) and the X resources the
server holds for it (xrestop). The report (JSON) gives the first and last sample, their growth in per
cent and every sample between, so a trend shows even when the run is cut short by --minutes.

  tests/e2e/run-in-session.sh -- bench/soak.py VISTREL X11_PROBE [--cycles N] [--warm-up N]
                                               [--every N] [--minutes M] [--json FILE]
Build first (cmake --build build/test --target vistrel x11_probe); ctest runs five cycles as e2e_soak_smoke."""
import argparse
import json
import os
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "tests", "e2e"))
from vistrel_e2e import (Vistrel, drag, editor_windows, key, log_lines, move, notifications_shown, run,  # noqa: E402
                         start_selection, wait_until)

options = argparse.ArgumentParser()
options.add_argument("vistrel")
options.add_argument("probe")
options.add_argument("--cycles", type=int, default=500)
options.add_argument("--warm-up", type=int, default=5)
options.add_argument("--every", type=int, default=50)
options.add_argument("--minutes", type=float, default=0, help="stop after this long, whatever the count")
options.add_argument("--json")
arguments = options.parse_args()
GROWTH_LIMIT = 5.0


class Log:
    """The diagnostics log read on from where the last look ended, so long runs stay cheap."""

    def __init__(self):
        self.seen = len(log_lines())

    def wait_for(self, text, timeout=15.0):
        def find():
            lines = log_lines()
            for index in range(self.seen, len(lines)):
                if lines[index].startswith(text):
                    self.seen = index + 1
                    return lines[index]
            return None
        return wait_until(find, timeout)


def x_clients():
    """Each X client as xrestop lists it: header ("N - NAME ( PID: P ):") and its counters."""
    batch = run("xrestop", "-b", "-m", "1")
    clients = []
    for line in batch.stdout.splitlines() if batch.returncode == 0 else []:
        if not line.startswith("\t"):
            clients.append({"header": line})
            continue
        name, _, value = line.strip().partition(":")
        value = value.strip().lstrip("~")
        clients[-1][name.strip()] = value if name.strip() in ("res_base", "res_mask") else int(value)
    return clients


X_CLIENT = {}


def x_resources(pid):
    """What the X server holds for Vistrel's connection, or None when xrestop is missing. The client is
    found by its PID or name once, then followed by its resource base, which lasts as long as it."""
    clients = x_clients()
    if "res_base" not in X_CLIENT:
        for client in clients:
            if f"PID: {pid} " in client["header"] or "vistrel" in client["header"].lower():
                X_CLIENT["res_base"] = client["res_base"]
    for client in clients:
        if client.get("res_base") == X_CLIENT.get("res_base"):
            return dict({name: value for name, value in client.items() if isinstance(value, int)}, client=client["header"])
    return None


def sample(pid, cycle):
    values = {"cycle": cycle}
    with open(f"/proc/{pid}/status") as status:
        for line in status:
            name, _, value = line.partition(":")
            if name in ("VmRSS", "RssAnon"):
                values[name + "_kib"] = int(value.split()[0])
    values["fds"] = len(os.listdir(f"/proc/{pid}/fd"))
    resources = x_resources(pid)
    if resources is not None:
        values["x"] = resources
    print(json.dumps(values), flush=True)
    return values


def cycle(number, log):
    """One capture -> edit -> save; the failed step, or None."""
    offset = (number % 7) * 20
    if not start_selection():
        return "overlay"
    drag((500 + offset, 300), (1000 + offset, 640 - offset))
    saved = log.wait_for("saveImage success path=")
    if not saved:
        return "capture saved nothing"
    path = saved.split("path=", 1)[1]
    if not wait_until(lambda: notifications_shown() >= 1, 10):
        return "no notification"
    run("dunstctl", "action", "0")
    if not wait_until(editor_windows, 10):
        return "editor did not open"
    time.sleep(0.3)
    drag((930, 520), (990, 560))
    key("Return")
    edited = path[:-len(".png")] + "_edited.png"
    if not wait_until(lambda: os.path.exists(edited), 10):
        return "no _edited.png"
    if not wait_until(lambda: not editor_windows(), 10):
        return "editor stayed open"
    run("dunstctl", "close-all")
    if number % 50 == 0:
        run("dunstctl", "history-clear")
    return None


def x_count(values):
    """Windows, GCs, pixmaps, pictures, glyph sets, cursors and other resources together."""
    held = values.get("x")
    return sum(held[name] for name in ("windows", "GCs", "fonts", "pixmaps", "pictures", "glyphsets", "colormaps",
                                       "passive grabs", "cursors", "unknowns") if name in held) if held else None


def growth(first, last, read):
    before, after = read(first), read(last)
    if before is None or after is None or before == 0:
        return None
    return round(100.0 * (after - before) / before, 1)


app = Vistrel(tag="soak")
pid = app.process.pid
log = Log()
move(1500, 900)
started = time.monotonic()
samples, failures, done = [], [], 0
for number in range(1, arguments.cycles + 1):
    if arguments.minutes and time.monotonic() - started > arguments.minutes * 60:
        break
    problem = cycle(number, log)
    done = number
    if problem:
        failures.append({"cycle": number, "step": problem})
        print(f"cycle {number}: {problem}", flush=True)
        key("Escape")
        for window in editor_windows():
            run("xdotool", "key", "--window", window, "Escape")
        run("dunstctl", "close-all")
        time.sleep(1)
    if number == arguments.warm_up or (number > arguments.warm_up and number % arguments.every == 0):
        samples.append(sample(pid, number))
if not samples or samples[-1]["cycle"] != done:
    samples.append(sample(pid, done))
elapsed = time.monotonic() - started
app.quit()

first, last = samples[0], samples[-1]
report = {
    "cycles": done, "failed_cycles": failures, "seconds": round(elapsed), "seconds_per_cycle": round(elapsed / max(done, 1), 2),
    "first": first, "last": last,
    "growth_percent": {
        "VmRSS": growth(first, last, lambda s: s.get("VmRSS_kib")),
        "RssAnon": growth(first, last, lambda s: s.get("RssAnon_kib")),
        "fds": growth(first, last, lambda s: s.get("fds")),
        "x_resources": growth(first, last, x_count),
        "x_pixmap_bytes": growth(first, last, lambda s: s.get("x", {}).get("pixmap bytes")),
    },
    "samples": samples,
}
text = json.dumps(report, indent=1)
if arguments.json:
    with open(arguments.json, "w") as out:
        out.write(text)
print(text)
over = {name: value for name, value in report["growth_percent"].items() if value is not None and value > GROWTH_LIMIT}
print("soak:", f"{done} cycles, {len(failures)} failed;",
      f"growth over {GROWTH_LIMIT:g} %: {over}" if over else f"no growth over {GROWTH_LIMIT:g} %")
sys.exit(1 if failures or over else 0)
