#!/usr/bin/python3
"""Whole-process capture to PNG, vistrel capture against its peers, in a private Xvfb with the desk
image on the root: the whole display and a 1280x720 region, at 3840x2160 and at 1920x1080.

Runs are interleaved (every tool once per round, the order turning from round to round), the first
rounds are a warm-up, and every output is decoded and compared pixel for pixel with the root image.
Reported per tool: the median time, the median of the per-round ratio to scrot, the file size, and
the peak resident memory of the process (ru_maxrss).

usage: capture_tools.py VISTREL CACHE_FOLDER [--rounds N] [--warmup N] [--json FILE]"""
import argparse
import os
import tempfile
import shutil
import statistics
import subprocess
import sys

from benchsession import Session, differs, load_average, now_ms, publish

REGION_SIZE = (1280, 720)


def tools(vistrel, out, region):
    """(name, arguments) for each tool; None where a tool has no way to do it."""
    if region is None:
        return [
            ("vistrel", [vistrel, "capture", "-o", out]),
            ("scrot", ["scrot", "-o", out]),
            ("maim", ["maim", "-u", out]),
            ("import", ["import", "-window", "root", out]),
            ("flameshot", ["flameshot", "full", "-p", out]),
            ("spectacle", ["spectacle", "-b", "-n", "-f", "-o", out]),
        ]
    x, y, w, h = region
    return [
        ("vistrel", [vistrel, "capture", "--region", f"{x},{y},{w},{h}", "-o", out]),
        ("scrot", ["scrot", "-a", f"{x},{y},{w},{h}", "-o", out]),
        ("maim", ["maim", "-u", "-g", f"{w}x{h}+{x}+{y}", out]),
        ("import", ["import", "-window", "root", "-crop", f"{w}x{h}+{x}+{y}", out]),
        ("flameshot", ["flameshot", "full", "--region", f"{w}x{h}+{x}+{y}", "-p", out]),
        ("spectacle", None),
    ]


def timed(arguments, env, folder):
    """Wall time in ms, peak RSS in KiB, exit status, standard error. The tool runs under
    /usr/bin/time, whose own few pages are all a tool's peak inherits from before its exec (a child
    of this Python process would inherit Python's)."""
    peak = os.path.join(folder, "peak")
    with tempfile.TemporaryFile() as stderr:
        start = now_ms()
        status = subprocess.run(["/usr/bin/time", "-f", "%M", "-o", peak] + arguments, env=env,
                                stdout=subprocess.DEVNULL, stderr=stderr).returncode
        elapsed = now_ms() - start
        stderr.seek(0)
        with open(peak) as text:
            lines = text.read().split()
        return elapsed, int(lines[-1]) if lines else 0, status, stderr.read().decode(errors="replace")


def configure_peers(session):
    # flameshot: no desktop notification (its fallback popup would show in the next tool's capture).
    folder = os.path.join(session.env["XDG_CONFIG_HOME"], "flameshot")
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "flameshot.ini"), "w") as config:
        config.write("[General]\nshowDesktopNotification=false\nshowStartupLaunchMessage=false\n"
                     "disabledTrayIcon=true\n")


def measure(session, vistrel, region, rounds, warmup):
    out_folder = os.path.join(session.folder, "out")
    os.makedirs(out_folder, exist_ok=True)
    expected = session.image if region is None else \
        session.image.crop((region[0], region[1], region[0] + region[2], region[1] + region[3]))
    entries = tools(vistrel, "{out}", region)
    names = [name for name, arguments in entries if arguments]
    results = {name: {"times": [], "rss": [], "sizes": [], "bad": [], "ratios": []} for name in names}
    results.update({name: None for name, arguments in entries if not arguments})
    for round_index in range(warmup + rounds):
        order = names[round_index % len(names):] + names[:round_index % len(names)]
        times = {}
        for name in order:
            arguments = next(a for n, a in entries if n == name)
            out = os.path.join(out_folder, f"{name}.png")
            if os.path.exists(out):
                os.remove(out)
            arguments = [a.replace("{out}", out) for a in arguments]
            elapsed, rss, status, stderr = timed(arguments, session.env, session.folder)
            problem = f"exit status {status}: {stderr.strip()[-200:]}" if status else differs(expected, out)
            if round_index < warmup:
                continue
            entry = results[name]
            times[name] = elapsed
            entry["times"].append(elapsed)
            entry["rss"].append(rss)
            entry["sizes"].append(os.path.getsize(out) if os.path.exists(out) else 0)
            if problem:
                entry["bad"].append(problem)
        if "scrot" in times:
            for name, elapsed in times.items():
                results[name]["ratios"].append(elapsed / times["scrot"])
    return results


def summary(results):
    rows = {}
    for name, entry in results.items():
        if entry is None:
            rows[name] = None
            continue
        rows[name] = {
            "median_ms": statistics.median(entry["times"]),
            "ratio_to_scrot": statistics.median(entry["ratios"]) if entry["ratios"] else None,
            "bytes": statistics.median(entry["sizes"]),
            "peak_rss_kib": max(entry["rss"]),
            "runs": len(entry["times"]),
            "mismatches": len(entry["bad"]),
            "first_mismatch": entry["bad"][0] if entry["bad"] else None,
        }
    return rows


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("vistrel")
    parser.add_argument("cache")
    parser.add_argument("--rounds", type=int, default=11)
    parser.add_argument("--warmup", type=int, default=2)
    parser.add_argument("--json")
    parser.add_argument("--sizes", default="3840x2160,1920x1080")
    arguments = parser.parse_args()
    missing = [tool for tool in ["scrot", "maim", "import", "flameshot", "spectacle", "Xvfb", "dbus-daemon"]
               if not shutil.which(tool)]
    if missing:
        sys.exit(f"capture_tools.py: missing {', '.join(missing)} (scripts/setup.sh bench installs them)")
    report = {}
    for width, height in [tuple(int(v) for v in size.split("x")) for size in arguments.sizes.split(",")]:
        session = Session(width, height, arguments.cache)
        try:
            configure_peers(session)
            region = ((width - REGION_SIZE[0]) // 2, (height - REGION_SIZE[1]) // 2) + REGION_SIZE
            for label, region in [("full", None), ("region", region)]:
                key = f"{width}x{height} {label}"
                load_before = load_average()
                results = measure(session, arguments.vistrel, region, arguments.rounds, arguments.warmup)
                report[key] = {"load": f"{load_before}..{load_average()}", "tools": summary(results)}
                print(f"{key}: load {report[key]['load']}", file=sys.stderr)
                for name, row in report[key]["tools"].items():
                    print(f"  {name:10} {row}", file=sys.stderr)
        finally:
            session.close()
    publish(report, arguments.json)


if __name__ == "__main__":
    main()
