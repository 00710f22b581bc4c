#!/usr/bin/python3
"""The tables of scripts/bench-capture.sh, in Markdown, from the JSON of capture_tools.py and
app_latency.py.

usage: capture_report.py TOOLS_JSON APP_JSON"""
import datetime
import json
import subprocess
import sys

from benchsession import machine_description

COMMANDS = {
    "vistrel": "`vistrel capture -o`", "scrot": "`scrot -o`", "maim": "`maim -u`",
    "import": "`import -window root`", "flameshot": "`flameshot full -p`", "spectacle": "`spectacle -b -n -f -o`",
}
REGION_OPTIONS = {
    "vistrel": "`--region X,Y,W,H`", "scrot": "`-a X,Y,W,H`", "maim": "`-g WxH+X+Y`",
    "import": "`-crop WxH+X+Y`", "flameshot": "`--region WxH+X+Y`",
    "spectacle": "no region option outside its interactive selection",
}
PACKAGES = ["scrot", "maim", "imagemagick", "flameshot", "kde-spectacle", "xvfb"]


def versions():
    found = []
    for package in PACKAGES:
        result = subprocess.run(["dpkg-query", "-W", "-f", "${Version}", package], capture_output=True, text=True)
        found.append(f"{package} {result.stdout.strip() or '?'}")
    return ", ".join(found)


def ms(value):
    return "—" if value is None else f"{value:.0f} ms" if value >= 20 else f"{value:.1f} ms"


def tools_table(key, entry, region):
    lines = [f"**{key}** (load {entry['load']})", "",
             "| tool | median | ratio to scrot (paired) | file | peak memory | runs, mismatches |",
             "|---|---:|---:|---:|---:|---|"]
    for name, row in entry["tools"].items():
        label = COMMANDS[name] + (" " + REGION_OPTIONS[name] if region and name in REGION_OPTIONS else "")
        if row is None:
            lines.append(f"| {COMMANDS[name]} | {REGION_OPTIONS[name]} | | | | |")
            continue
        mismatch = f", {row['mismatches']} ({row['first_mismatch']})" if row["mismatches"] else ", 0"
        lines.append(f"| {label} | {ms(row['median_ms'])} | {row['ratio_to_scrot']:.2f} | "
                     f"{row['bytes'] / 1e6:.2f} MB | {row['peak_rss_kib'] / 1024:.1f} MiB | {row['runs']}{mismatch} |")
    return lines + [""]


def latency_table(app):
    lines = ["| configuration | way in | trigger → map | trigger → pixels (range) | first trigger → map / pixels |",
             "|---|---|---:|---:|---:|"]
    for key, entry in app.items():
        if key.startswith("memory"):
            continue
        for name in ["vistrel", "flameshot tray", "spectacle D-Bus"]:
            if name not in entry:
                continue
            warm, first = entry[name], entry.get(f"{name} first", {})
            low, high = warm["pixels_range"]
            spread = f" ({low:.0f}–{high:.0f})" if warm["pixels_ms"] is not None else ""
            missed = f", {warm['missed']} missed" if warm["missed"] else ""
            lines.append(f"| {key} (load {entry['load']}) | {name} | {ms(warm['map_ms'])} | "
                         f"{ms(warm['pixels_ms'])}{spread}{missed} | {ms(first.get('map_ms'))} / "
                         f"{ms(first.get('pixels_ms'))} |")
        save = entry.get("vistrel mouse-up to PNG")
        if save:
            lines.append(f"| {key} | vistrel, mouse-up → PNG on disk | | {ms(save['save_ms'])} | |")
    return lines + [""]


def memory_table(memory):
    lines = ["| process, capture | state | RSS | anonymous | shared memory | file-backed | GL stack |",
             "|---|---|---:|---:|---:|---:|---|"]
    for key, value in memory.items():
        name, _, state = key.partition(" ")
        lines.append(f"| {name} | {state} | {value['VmRSS']:.1f} MiB | {value['RssAnon']:.1f} MiB | "
                     f"{value['RssShmem']:.1f} MiB | {value['RssFile']:.1f} MiB | "
                     f"{'loaded' if value['gl_stack'] else 'no'} |")
    return lines + [""]


def main():
    tools = json.load(open(sys.argv[1]))
    app = json.load(open(sys.argv[2]))
    lines = [f"Measured {datetime.date.today().isoformat()} on {machine_description()}, Xvfb; {versions()}.", "",
             "### Whole process: capture to PNG", "",
             "Interleaved runs after a warm-up, every output compared pixel for pixel with the root image; the "
             "ratio is the median of each round's time over scrot's in that round; peak memory is ru_maxrss.", ""]
    for key, entry in tools.items():
        lines += tools_table(key, entry, key.endswith("region"))
    lines += ["### In the running application", "",
              "From outside (latency_probe): t0 just before the trigger is sent, MapNotify of the overlay and the "
              "first change of the pixels under it polled every millisecond; warm figures are medians.", ""]
    lines += latency_table(app)
    for key, memory in app.items():
        if key.startswith("memory"):
            lines += [f"### Resident memory at {key[len('memory at '):]} (/proc/PID/status)", ""]
            lines += memory_table(memory)
    print("\n".join(lines))


if __name__ == "__main__":
    main()
