#!/usr/bin/python3
"""The editor measured from outside, against ksnip's editor, in private desktops (Xvfb, openbox, a
tray, a private session bus whose notification server shows nothing), one per screen size, the two
editors taking turns:

- open: `vistrel edit FILE` -> the picture's pixels on screen, with Vistrel running (warm) and not
  (cold), against `ksnip -e FILE` (cold);
- drawing: each pointer motion of a drag -> the canvas changes between the last point and the new
  one, with the rectangle and the freehand tool, on the picture alone and with 50 rectangles on it;
  and the editor's processor time per motion (/proc/PID/stat) and the X server's;
- save: the save key -> the PNG complete on disk (closed after writing, or renamed into place), with
  20 rectangles on the picture;
- memory: RSS and anonymous memory of the editor's process with the picture open, and of Vistrel once
  its editor window is closed.

The picture is the 4K desk of mkdesk.py crossed by magenta stripes. --smoke runs Vistrel alone at
1920x1080, briefly, and fails unless every open and every motion was seen and, once the editor closed,
Vistrel's anonymous memory came back to within 10 MiB of idle (the picture alone is 32 MiB).

usage: editor_bench.py VISTREL LATENCY_PROBE CACHE_FOLDER [--rounds N] [--motions N] [--sizes WxH,...]
                       [--smoke] [--json FILE]"""
import os
import sys
import time

from PIL import Image, ImageDraw

from benchsession import Session, application_arguments, desk_image, differs, finish, load_average, require_tools
from editor_apps import Ksnip, Vistrel, fresh_copy, process_cpu_ms, status_memory

TOOLS = ("rectangle", "freehand")


def picture(cache):
    """The 4K desk crossed by 16-pixel magenta stripes every 48 rows, made once."""
    path = os.path.join(cache, "editor-picture-3840x2160.png")
    if not os.path.exists(path):
        image = Image.open(desk_image(3840, 2160, cache)).convert("RGB")
        draw = ImageDraw.Draw(image)
        for y in range(0, image.height, 48):
            draw.rectangle([0, y, image.width - 1, y + 15], fill=(255, 0, 255))
        image.save(path + ".tmp.png")
        os.replace(path + ".tmp.png", path)
    return path


class Layout:
    """Where the drags go, in screen points: a box that both editors' canvases cover, the measured
    path in its right part and the grid of added rectangles in its left part, so they never meet."""

    def __init__(self, width, height):
        self.x0, self.y0, self.x1, self.y1 = int(width * 0.15), int(height * 0.2), int(width * 0.9), int(height * 0.9)
        self.step = (8, 5)

    def stroke_start(self):
        return f"{self.x0 + (self.x1 - self.x0) * 35 // 100},{self.y0 + (self.y1 - self.y0) * 5 // 100}"

    def rectangles(self, count):
        columns = 5
        rows = (count + columns - 1) // columns
        cell_w, cell_h = (self.x1 - self.x0) * 30 // 100 // columns, (self.y1 - self.y0) // rows
        for index in range(count):
            x, y = self.x0 + index % columns * cell_w, self.y0 + index // columns * cell_h
            yield f"{x + 8},{y + 8},{x + cell_w - 8},{y + cell_h - 8}"


class Run:
    def __init__(self, session, vistrel, probe, motions, annotations):
        self.session, self.probe, self.motions, self.annotations = session, probe, motions, annotations
        self.vistrel_program = vistrel
        self.layout = Layout(session.width, session.height)
        self.server_pid = session.processes[0].pid
        self.folder = os.path.join(session.folder, "pictures")
        self.count = 0

    def copy(self, source):
        self.count += 1
        return fresh_copy(source, os.path.join(self.folder, str(self.count)))

    def add_rectangles(self, editor, count):
        editor.select_tool("rectangle")
        for box in self.layout.rectangles(count):
            editor.run_probe("drag", box)
        time.sleep(0.5)

    def strokes(self, editor, samples, label):
        """One measured drag per tool, each taken back with undo; into samples[label + tool]."""
        for tool in TOOLS:
            editor.select_tool(tool)
            server_before = process_cpu_ms(self.server_pid)
            values = editor.run_probe("stroke", self.layout.stroke_start(), "--step", "{},{}".format(*self.layout.step),
                                      "--motions", str(self.motions), "--pid", str(editor.pid), "--timeout-ms", "5000")
            server_ms = process_cpu_ms(self.server_pid) - server_before
            entry = samples.setdefault(f"{label} {tool}", {"ms": [], "missed": 0, "cpu_ms": 0.0, "scheduled_ms": 0.0,
                                                          "server_ms": 0.0, "motions": 0})
            entry["ms"] += values.get("stroke_ms", [])
            missed = values.get("missed")
            entry["missed"] += self.motions if missed is None else int(missed)
            entry["cpu_ms"] += values.get("cpu_ms") or 0.0
            entry["scheduled_ms"] += values.get("scheduled_ms") or 0.0
            entry["server_ms"] += server_ms
            entry["motions"] += self.motions
            time.sleep(0.3)
            editor.keys("ctrl+z")
            time.sleep(0.5)

    def drawing(self, editor, open_editor, source, samples, memory):
        """The editor open on a fresh copy: strokes on the bare picture, then with 50 rectangles."""
        open_editor(self.copy(source))
        memory.setdefault("picture open", []).append(editor.memory())
        self.strokes(editor, samples, "0 annotations,")
        if self.annotations:
            self.add_rectangles(editor, self.annotations)
            self.strokes(editor, samples, f"{self.annotations} annotations,")
            memory.setdefault(f"picture open, {self.annotations} annotations drawn", []).append(editor.memory())
        editor.close()

    def save(self, editor, open_editor, source, saves):
        path = self.copy(source)
        open_editor(path)
        self.add_rectangles(editor, 20)
        values = editor.run_probe("keys", editor.save_key, "--watch", os.path.dirname(path), "--timeout-ms", "30000")
        saved = editor.saved_file(path)
        time.sleep(0.5)
        entry = saves.setdefault(editor.name, {"ms": [], "missed": 0, "bytes": []})
        # A file that shows the bare picture was not the save of the annotations.
        if values.get("save_ms") is None or differs(Image.open(source).convert("RGB"), saved) is None:
            entry["missed"] += 1
        else:
            entry["ms"].append(values["save_ms"])
            entry["bytes"].append(os.path.getsize(saved))
        editor.close()


def measure_size(session, vistrel_program, probe, source, rounds, motions, with_peers):
    run = Run(session, vistrel_program, probe, motions, 50 if with_peers else 0)
    vistrel = Vistrel(session, probe, vistrel_program)
    ksnip = Ksnip(session, probe) if with_peers else None
    result = {"load": load_average(), "open": {}, "drawing": {"Vistrel": {}, "ksnip": {}}, "save": {},
              "memory": {"Vistrel": {}, "ksnip": {}}}
    opens = result["open"]

    def opened(name, values):
        opens.setdefault(name, {"ms": [], "missed": 0})
        if values.get("pixels_ms") is None:
            opens[name]["missed"] += 1
        else:
            opens[name]["ms"].append(values["pixels_ms"])

    # Keys sent through XTEST come from a device of their own; the first makes X switch keyboards.
    session.run(probe, "keys", "shift")
    for _ in range(rounds):
        opened("Vistrel cold", vistrel.open_cold(run.copy(source)))
        vistrel.close()
        time.sleep(0.5)
        opened("Vistrel warm", vistrel.open_warm(run.copy(source)))
        vistrel.close()
        vistrel.quit()
        if ksnip:
            opened("ksnip cold", ksnip.open_cold(run.copy(source)))
            ksnip.close()
        time.sleep(0.5)

    vistrel.start()
    time.sleep(1.5)
    result["memory"]["Vistrel"]["idle, no editor opened yet"] = [status_memory(vistrel.resident.pid)]
    blocks = 2 if with_peers else 1
    for _ in range(blocks):
        run.drawing(vistrel, vistrel.open_warm, source, result["drawing"]["Vistrel"], result["memory"]["Vistrel"])
        if ksnip:
            run.drawing(ksnip, ksnip.open_cold, source, result["drawing"]["ksnip"], result["memory"]["ksnip"])
    time.sleep(2)
    result["memory"]["Vistrel"]["editor closed"] = [vistrel.memory()]
    if with_peers:
        for _ in range(max(2, rounds // 2)):
            run.save(vistrel, vistrel.open_warm, source, result["save"])
            run.save(ksnip, ksnip.open_cold, source, result["save"])
    vistrel.quit()
    result["load"] += f"..{load_average()}"
    return result


def complete(report):
    """Problems that make a smoke run fail: an open or a motion that was never seen, memory the closed
    editor kept."""
    problems = []
    for key, result in report.items():
        for name, entry in result["open"].items():
            if entry["missed"] or not entry["ms"] or min(entry["ms"]) <= 0:
                problems.append(f"{key}: {name}: the picture did not show in {entry['missed']} opens")
        for name, samples in result["drawing"]["Vistrel"].items():
            if samples["missed"] or not samples["ms"] or min(samples["ms"]) <= 0:
                problems.append(f"{key}: Vistrel {name}: {samples['missed']} of {samples['motions']} motions unseen")
        if not result["drawing"]["Vistrel"]:
            problems.append(f"{key}: no drawing was measured")
        memory = result["memory"]["Vistrel"]
        kept = memory["editor closed"][-1]["RssAnon"] - memory["idle, no editor opened yet"][0]["RssAnon"]
        if kept > 10:
            problems.append(f"{key}: the closed editor kept {kept:.1f} MiB of anonymous memory over idle")
    return problems


def main():
    parser = application_arguments(rounds=9)
    parser.add_argument("--motions", type=int, default=100)
    parser.add_argument("--sizes", default="1920x1080,3840x2160")
    arguments = parser.parse_args()
    if arguments.smoke:
        arguments.rounds, arguments.motions, arguments.sizes = 1, 8, "1920x1080"
    require_tools("editor_bench.py", ["Xvfb", "openbox", "trayer", "xdotool", "xwininfo", "xprop"]
                  + ([] if arguments.smoke else ["ksnip"]))
    source = picture(arguments.cache)
    report = {}
    for size in arguments.sizes.split(","):
        width, height = (int(v) for v in size.split("x"))
        session = Session(width, height, arguments.cache, desktop=True)
        try:
            report[size] = measure_size(session, arguments.vistrel, arguments.probe, source, arguments.rounds,
                                        arguments.motions, not arguments.smoke)
        finally:
            session.close()
        print(size, "done", file=sys.stderr)
    finish("editor_bench.py", report, arguments.json, complete(report))


if __name__ == "__main__":
    main()
