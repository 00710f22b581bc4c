"""The two editors of editor_bench.py as a user drives them, from outside, in a Session: how each
opens a picture, where its tool buttons are, which key saves and where the file lands, and how it
closes. Every timed step goes through latency_probe; the untimed ones (clicks on tool buttons, window
look-ups) through xdotool and xwininfo."""
import os
import re
import shutil
import subprocess
import time

from benchsession import wait_until

# The picture shows stripes of this colour, found nowhere on the desk: the open is timed to the
# first probe that shows one, so a blank window or a toolbar does not count as the picture.
MARK = "ff00ff"
WINDOW_LINE = re.compile(r'^\s*(0x[0-9a-f]+) "(.*)": \("([^"]*)" "([^"]*)"\)\s+(\d+)x(\d+)\+\S+\s+\+(-?\d+)\+(-?\d+)')


def figures(output):
    values = {}
    for part in output.split():
        name, _, value = part.partition("=")
        if name == "stroke_ms":
            values[name] = [float(v) for v in value.split(",") if v]
        else:
            values[name] = None if value == "none" else float(value)
    return values


def status_memory(pid):
    """RSS and anonymous resident memory of the process in MiB."""
    values = {}
    with open(f"/proc/{pid}/status") as status:
        for line in status:
            name, _, value = line.partition(":")
            if name in ("VmRSS", "RssAnon"):
                values[name] = round(int(value.split()[0]) / 1024, 1)
    return values


class Editor:
    """What both editors share: the session, the probe, the editor window and its process."""
    name = ""
    tool_offsets = {}  # tool -> button centre from the window's top-left
    save_key = ""

    def __init__(self, session, probe):
        self.session, self.probe = session, probe
        self.window = None  # (id, x, y, width, height)
        self.pid = None

    def run_probe(self, *arguments, timeout=120):
        result = self.session.run(self.probe, *arguments, timeout=timeout)
        return figures(result.stdout.strip())

    def start_probe(self, *arguments):
        """A probe whose --exec child stays running: its figures, and the probe to wait for later."""
        process = subprocess.Popen([self.probe, *arguments], env=self.session.env, stdout=subprocess.PIPE, text=True)
        return figures(process.stdout.readline().strip()), process

    def open_probes(self):
        w, h = self.session.width, self.session.height
        options = ["--area", "4,64", "--color", MARK, "--timeout-ms", "20000"]
        for fx, fy in [(0.5, 0.5), (0.4, 0.6), (0.6, 0.4), (0.45, 0.45)]:
            options += ["--probe", f"{int(w * fx)},{int(h * fy)}"]
        return options

    def find_window(self):
        for line in self.session.run("xwininfo", "-root", "-tree").stdout.splitlines():
            match = WINDOW_LINE.match(line)
            if match and self.is_editor_window(match.group(2), match.group(3)) and int(match.group(5)) > 200:
                return (match.group(1), int(match.group(7)), int(match.group(8)), int(match.group(5)),
                        int(match.group(6)))
        return None

    def wait_for_window(self, settle=1.5):
        self.window = wait_until(self.find_window, 20)
        if not self.window:
            raise RuntimeError(f"{self.name}: no editor window")
        pid = self.session.run("xprop", "-id", self.window[0], "_NET_WM_PID").stdout.split("=")[-1].strip()
        self.pid = int(pid)
        # Fitted to the screen, the canvas centred, the first frames painted.
        time.sleep(settle)
        self.window = self.find_window()
        self.session.run("xdotool", "windowactivate", "--sync", str(int(self.window[0], 16)))

    def select_tool(self, tool):
        dx, dy = self.tool_offsets[tool]
        self.session.run("xdotool", "mousemove", str(self.window[1] + dx), str(self.window[2] + dy), "click", "1")
        time.sleep(0.3)

    def keys(self, combination):
        self.session.run(self.probe, "keys", combination)

    def memory(self):
        return status_memory(self.pid)

    def cpu_ms(self):
        return process_cpu_ms(self.pid)


def process_cpu_ms(pid):
    with open(f"/proc/{pid}/stat") as stat:
        fields = stat.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) * 1000.0 / os.sysconf("SC_CLK_TCK")


class Vistrel(Editor):
    name = "Vistrel"
    tool_offsets = {"rectangle": (36, 21), "freehand": (205, 21)}
    save_key = "return"

    def __init__(self, session, probe, program):
        super().__init__(session, probe)
        self.program = program
        self.resident = None  # the probe or process that runs the instance

    def is_editor_window(self, title, instance):
        return instance == "vistrel" and title == "Vistrel 編集"

    def start(self):
        log = os.path.join(self.session.env["XDG_STATE_HOME"], "Vistrel", "diagnostics.log")
        self.resident = subprocess.Popen([self.program], env=self.session.env, stdout=subprocess.DEVNULL,
                                         stderr=subprocess.DEVNULL)
        if not wait_until(lambda: os.path.exists(log) and "applicationDidFinishLaunching completed"
                          in open(log, encoding="utf-8", errors="replace").read(), 20):
            raise RuntimeError("vistrel did not start")
        time.sleep(0.5)

    def open_warm(self, picture):
        values = self.run_probe("trigger", "--exec", self.program, "edit", picture, "--", *self.open_probes())
        self.wait_for_window()
        return values

    def open_cold(self, picture):
        values, self.resident = self.start_probe("trigger", "--exec", self.program, "edit", picture, "--",
                                                 *self.open_probes())
        self.wait_for_window()
        return values

    def saved_file(self, picture):
        return picture[:-len(".png")] + "_edited.png"

    def close(self):
        """Closes the editor window; the instance stays."""
        if self.find_window():
            self.keys("ctrl+q")
        if wait_until(lambda: self.find_window() is None, 10) is False:
            raise RuntimeError("the Vistrel editor did not close")
        self.window = None

    def quit(self):
        self.session.run(self.program, "quit", timeout=20)
        if self.resident:
            self.resident.wait(timeout=20)
            self.resident = None


class Ksnip(Editor):
    name = "ksnip"
    tool_offsets = {"rectangle": (27, 395), "freehand": (27, 231)}
    save_key = "ctrl+s"

    def __init__(self, session, probe):
        super().__init__(session, probe)
        self.process = None

    def is_editor_window(self, title, instance):
        return instance == "ksnip" and "[" in title

    def open_cold(self, picture):
        values, self.process = self.start_probe("trigger", "--exec", "ksnip", "-e", picture, "--",
                                                *self.open_probes())
        self.wait_for_window()
        return values

    def saved_file(self, picture):
        # ksnip saves an opened file in place.
        return picture

    def close(self):
        # Ended, not closed: with unsaved annotations ksnip would ask whether to discard them.
        if self.pid:
            try:
                os.kill(self.pid, 15)
            except ProcessLookupError:
                pass
        if self.process:
            self.process.wait(timeout=20)
            self.process = None
        wait_until(lambda: self.find_window() is None, 10)
        self.window, self.pid = None, None

    def quit(self):
        self.close()


def fresh_copy(picture, folder):
    """A copy of the picture alone in a new folder, so a save lands in a folder of its own."""
    os.makedirs(folder)
    path = os.path.join(folder, os.path.basename(picture))
    shutil.copyfile(picture, path)
    return path
