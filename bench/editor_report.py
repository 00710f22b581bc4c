#!/usr/bin/python3
"""The markdown table of editor_bench.py's JSON: per screen size, medians and 95th percentiles of
Vistrel and of ksnip, and their ratio (Vistrel / ksnip; below 1, Vistrel is faster or smaller).

usage: editor_report.py EDITOR.json"""
import json
import math
import statistics
import sys


def p95(values):
    ordered = sorted(values)
    return ordered[max(0, math.ceil(0.95 * len(ordered)) - 1)]


def summary(values):
    """(median, p95) or None."""
    values = [v for v in values if v is not None]
    return (statistics.median(values), p95(values)) if values else None


def cell(figures, digits=1):
    if figures is None:
        return "–", "–"
    return f"{figures[0]:.{digits}f}", f"{figures[1]:.{digits}f}"


def ratio(ours, theirs):
    if ours is None or theirs is None or theirs[0] == 0:
        return "–"
    return f"{ours[0] / theirs[0]:.2f}"


def row(what, ours, theirs, note="", digits=1):
    return f"| {what} | {' | '.join(cell(ours, digits))} | {' | '.join(cell(theirs, digits))} | " \
           f"{ratio(ours, theirs)} | {note} |"


def missed_note(*entries):
    missed = sum(entry.get("missed", 0) for entry in entries if entry)
    return f"{missed} not seen" if missed else ""


def size_table(size, result):
    lines = [f"### {size} (load average {result['load']})", "",
             "| Measure | Vistrel median | Vistrel p95 | ksnip median | ksnip p95 | ratio | note |",
             "|---|---|---|---|---|---|---|"]
    opens = result["open"]
    ksnip_open = opens.get("ksnip cold")
    theirs = summary(ksnip_open["ms"]) if ksnip_open else None
    for name in ("Vistrel warm", "Vistrel cold"):
        entry = opens.get(name)
        if entry:
            lines.append(row(f"Open, ms ({name.split()[1]}; ksnip cold)", summary(entry["ms"]), theirs,
                             missed_note(entry, ksnip_open)))
    ours_drawing, their_drawing = result["drawing"]["Vistrel"], result["drawing"].get("ksnip", {})
    for name, ours in ours_drawing.items():
        theirs_entry = their_drawing.get(name)
        lines.append(row(f"Drawing, motion → pixels, ms ({name})", summary(ours["ms"]),
                         summary(theirs_entry["ms"]) if theirs_entry else None,
                         missed_note(ours, theirs_entry), digits=2))
    for name, ours in ours_drawing.items():
        theirs_entry = their_drawing.get(name)
        for field, label in (("scheduled_ms", "editor CPU"), ("cpu_ms", "editor CPU, stat ticks"),
                             ("server_ms", "X server CPU")):
            # One figure over all the motions: no percentile.
            ours_value = f"{ours[field] / ours['motions']:.3f}"
            theirs_value = f"{theirs_entry[field] / theirs_entry['motions']:.3f}" if theirs_entry else "–"
            share = "–" if not theirs_entry or not theirs_entry[field] else \
                f"{ours[field] / ours['motions'] / (theirs_entry[field] / theirs_entry['motions']):.2f}"
            lines.append(f"| {label} per motion, ms ({name}) | {ours_value} | – | {theirs_value} | – | {share} | "
                         f"over {ours['motions']} motions |")
    ours_save, their_save = result["save"].get("Vistrel"), result["save"].get("ksnip")
    if ours_save:
        lines.append(row("Save key → PNG on disk, ms (20 annotations)", summary(ours_save["ms"]),
                         summary(their_save["ms"]) if their_save else None, missed_note(ours_save, their_save)))
        lines.append(row("Saved file, MB", summary([b / 1e6 for b in ours_save["bytes"]]),
                         summary([b / 1e6 for b in their_save["bytes"]]) if their_save else None, "", digits=2))
    memory = result["memory"]
    for state in memory["Vistrel"]:
        for field in ("VmRSS", "RssAnon"):
            ours = summary([m[field] for m in memory["Vistrel"][state]])
            their_states = memory.get("ksnip", {}).get(state)
            theirs = summary([m[field] for m in their_states]) if their_states else None
            note = "ksnip has quit" if state == "editor closed" else ""
            lines.append(row(f"{field}, MiB ({state})", ours, theirs, note))
    return lines


def main():
    with open(sys.argv[1]) as source:
        report = json.load(source)
    lines = ["## Editor: Vistrel against ksnip 1.10", ""]
    for size, result in report.items():
        lines += size_table(size, result) + [""]
    print("\n".join(lines))


if __name__ == "__main__":
    main()
