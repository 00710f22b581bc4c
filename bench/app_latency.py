#!/usr/bin/python3
"""The resident applications, measured from outside with latency_probe in a private desktop (Xvfb,
openbox, a tray, a private session bus with a notification server that shows nothing):

- trigger -> MapNotify of the overlay and trigger -> first change of the pixels under it, for
  Vistrel's capture shortcut, flameshot's daemon through a click on its tray icon, and spectacle in
  D-Bus mode through its RectangularRegion call, interleaved, the first trigger after start reported
  on its own;
- mouse-up -> PNG on disk, for Vistrel;
- resident memory (/proc/PID/status) of each, idle after start and after 1, 2 and 10 captures.

--smoke runs Vistrel alone at 1920x1080 for two rounds and two captures, and fails unless every trigger
mapped the overlay and changed the pixels and every mouse-up gave a PNG.

usage: app_latency.py VISTREL LATENCY_PROBE CACHE_FOLDER [--rounds N] [--configurations ...] [--smoke]
                      [--json FILE]"""
import json
import os
import statistics
import subprocess
import sys
import time

from benchsession import Session, application_arguments, finish, load_average, require_tools, wait_until

MEMORY_FIELDS = ("VmRSS", "RssAnon", "RssFile", "RssShmem")
GL_LIBRARIES = ("libGLX_mesa", "_dri.so", "libgallium", "libLLVM", "libEGL_mesa")


def memory(pid):
    values = {}
    with open(f"/proc/{pid}/status") as status:
        for line in status:
            name, _, value = line.partition(":")
            if name in MEMORY_FIELDS:
                values[name] = round(int(value.split()[0]) / 1024, 1)
    with open(f"/proc/{pid}/maps") as maps:
        values["gl_stack"] = any(library in line for line in maps for library in GL_LIBRARIES)
    return values


def figures(output):
    values = {}
    for part in output.split():
        name, _, value = part.partition("=")
        values[name] = None if value == "none" else float(value)
    return values


class Bench:
    def __init__(self, session, vistrel, probe):
        self.session, self.vistrel, self.probe = session, vistrel, probe
        width, height = session.width, session.height
        # Points on the first display, where the dimming changes what the desk shows.
        self.probes = [f"{int(width * fx)},{int(height * fy)}" for fx, fy in
                       [(0.3, 0.2), (0.7, 0.35), (0.5, 0.5), (0.2, 0.8), (0.85, 0.75)]]
        self.processes = {}

    def probe_run(self, *arguments):
        result = self.session.run(self.probe, *arguments, timeout=60)
        return figures(result.stdout.strip()) if result.stdout.strip() else {}

    def trigger(self, how):
        options = []
        for point in self.probes:
            options += ["--probe", point]
        values = self.probe_run("trigger", *how, *options, "--dismiss", "escape", "--timeout-ms", "4000")
        time.sleep(0.3)
        return values

    # The three ways in.
    def vistrel_trigger(self):
        return self.trigger(["--keys", "shift+super+s"])

    def flameshot_trigger(self):
        return self.trigger(["--click", self.flameshot_icon])

    def spectacle_trigger(self):
        # Spectacle in D-Bus mode quits when its selection is cancelled: it is started again, untimed.
        if self.processes["spectacle"].poll() is not None:
            self.start_spectacle()
            time.sleep(1)
        return self.trigger(["--exec", "dbus-send", "--session", "--dest=org.kde.Spectacle",
                             "--type=method_call", "/", "org.kde.Spectacle.RectangularRegion", "int32:0", "--"])

    def start_vistrel(self):
        log = os.path.join(self.session.env["XDG_STATE_HOME"], "Vistrel", "diagnostics.log")
        process = subprocess.Popen([self.vistrel], env=self.session.env, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        started = wait_until(lambda: os.path.exists(log) and "applicationDidFinishLaunching completed"
                             in open(log, encoding="utf-8", errors="replace").read(), 20)
        if not started:
            raise RuntimeError("vistrel did not start")
        self.processes["vistrel"] = process

    def start_flameshot(self):
        folder = os.path.join(self.session.env["XDG_CONFIG_HOME"], "flameshot")
        os.makedirs(folder, exist_ok=True)
        with open(os.path.join(folder, "flameshot.ini"), "w") as config:
            config.write("[General]\nshowDesktopNotification=false\nshowStartupLaunchMessage=false\n"
                         "showHelp=false\nshowSidePanelButton=false\n")
        self.processes["flameshot"] = subprocess.Popen(["flameshot"], env=self.session.env,
                                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.flameshot_icon = wait_until(self.find_flameshot_icon, 20)
        if not self.flameshot_icon:
            raise RuntimeError("flameshot's tray icon did not appear")

    def find_flameshot_icon(self):
        for line in self.session.run("xwininfo", "-root", "-tree").stdout.splitlines():
            if '("flameshot" "flameshot")' in line:
                size, absolute = line.split()[-2], line.split()[-1]
                w, h = (int(v) for v in size.split("+")[0].split("x"))
                x, y = (int(v) for v in absolute.split("+")[1:3])
                if 8 <= w <= 64:
                    return f"{x + w // 2},{y + h // 2}"
        return None

    def start_spectacle(self):
        if "spectacle" in self.processes:
            self.processes["spectacle"].wait()
        self.processes["spectacle"] = subprocess.Popen(["spectacle", "--dbus"], env=self.session.env,
                                                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        ready = wait_until(lambda: "org.kde.Spectacle" in self.session.run(
            "dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
            "org.freedesktop.DBus.ListNames").stdout, 20)
        if not ready:
            raise RuntimeError("spectacle did not take its bus name")

    def memory_of(self, name):
        return memory(self.processes[name].pid)

    def box(self, size=None):
        """A drag from corner to corner: `size` centred on the first display, or most of it."""
        w, h = self.session.width, self.session.height
        if size is None:
            return f"{w // 10},{h // 10},{w * 9 // 10},{h * 9 // 10}"
        x, y = (w - size[0]) // 2, (h - size[1]) // 2
        return f"{x},{y},{x + size[0]},{y + size[1]}"

    def capture_with_vistrel(self, size=None):
        """One capture (see box()); the milliseconds from mouse-up to the file."""
        if self.vistrel_trigger_only() is None:
            return None
        return self.probe_run("drag", self.box(size), "--watch", self.session.desktop_folder).get("save_ms")

    def vistrel_trigger_only(self):
        options = []
        for point in self.probes:
            options += ["--probe", point]
        values = self.probe_run("trigger", "--keys", "shift+super+s", *options, "--timeout-ms", "4000")
        time.sleep(0.2)
        return values.get("pixels_ms")

    def capture_with_flameshot(self, size=None):
        self.trigger_without_dismissal(["--click", self.flameshot_icon])
        self.probe_run("drag", self.box(size))
        # Enter takes the selection (to the clipboard) and closes the capture window.
        self.session.run(self.probe, "keys", "return")
        time.sleep(0.8)

    def trigger_without_dismissal(self, how):
        options = []
        for point in self.probes:
            options += ["--probe", point]
        self.probe_run("trigger", *how, *options, "--timeout-ms", "4000")
        time.sleep(0.2)

    def stop(self):
        for name, process in self.processes.items():
            if name == "vistrel":
                self.session.run(self.vistrel, "quit", timeout=20)
            else:
                process.terminate()
        for process in self.processes.values():
            try:
                process.wait(timeout=10)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()


def median(values):
    values = [v for v in values if v is not None]
    return round(statistics.median(values), 1) if values else None


def latency(session, vistrel, probe, rounds, saves, with_peers):
    bench = Bench(session, vistrel, probe)
    result = {"load": load_average()}
    try:
        bench.start_vistrel()
        ways = [("vistrel", bench.vistrel_trigger)]
        if with_peers:
            bench.start_flameshot()
            bench.start_spectacle()
            ways += [("flameshot tray", bench.flameshot_trigger), ("spectacle D-Bus", bench.spectacle_trigger)]
        time.sleep(1.5)
        samples = {name: [] for name, _ in ways}
        # Keys sent through XTEST come from a device of their own: the first of them makes X switch the
        # keyboard the clients see and Qt fetch its keymap again. A key nobody uses takes that cost
        # before the first timed trigger; real keystrokes come from the keyboard Qt already knows.
        session.run(probe, "keys", "shift")
        time.sleep(0.5)
        for name, trigger in ways:
            result[f"{name} first"] = trigger()
        for _ in range(rounds):
            for name, trigger in ways:
                samples[name].append(trigger())
        for name, values in samples.items():
            result[name] = {"map_ms": median([v.get("map_ms") for v in values]),
                            "map_missed": sum(1 for v in values if v.get("map_ms") is None),
                            "pixels_ms": median([v.get("pixels_ms") for v in values]),
                            "pixels_range": [min((v.get("pixels_ms") or 1e9) for v in values),
                                             max((v.get("pixels_ms") or 0) for v in values)],
                            "missed": sum(1 for v in values if v.get("pixels_ms") is None)}
        times = [bench.capture_with_vistrel() for _ in range(saves)]
        result["vistrel mouse-up to PNG"] = {"save_ms": median(times), "missed": times.count(None)}
    finally:
        bench.stop()
    result["load"] += f"..{load_average()}"
    return result


def footprint(session, vistrel, probe, size, with_peers):
    """Resident memory idle, and after 1, 2 and 10 captures of `size` (None: most of the display), of
    Vistrel and of flameshot's daemon; spectacle's idle."""
    bench = Bench(session, vistrel, probe)
    names = ["vistrel", "flameshot", "spectacle"] if with_peers else ["vistrel"]
    label = f"{size[0]}x{size[1]}" if size else "{}x{}".format(session.width * 4 // 5, session.height * 4 // 5)
    result = {}
    try:
        bench.start_vistrel()
        if with_peers:
            bench.start_flameshot()
            bench.start_spectacle()
        time.sleep(2)
        for name in names:
            result[f"{name} idle"] = bench.memory_of(name)
        done = 0
        for target in [1, 2, 10]:
            while done < target:
                bench.capture_with_vistrel(size)
                if with_peers:
                    bench.capture_with_flameshot(size)
                done += 1
            time.sleep(1.5)
            for name in names[:2]:
                result[f"{name} after {target} captures of {label}"] = bench.memory_of(name)
    finally:
        bench.stop()
    return result


def complete(report):
    """Problems that make a smoke run fail: a trigger whose overlay never mapped or never changed the
    pixels, a mouse-up that gave no PNG, a figure that is not a positive number."""
    def positive(value):
        return isinstance(value, (int, float)) and value > 0

    problems = []
    for key, result in report.items():
        if key.startswith("memory"):
            continue
        first = result.get("vistrel first") or {}
        if not positive(first.get("map_ms")) or not positive(first.get("pixels_ms")):
            problems.append(f"{key}: the first trigger gave {first}")
        triggers = result.get("vistrel") or {}
        if triggers.get("map_missed") != 0 or triggers.get("missed") != 0 \
                or not all(positive(triggers.get(name)) for name in ("map_ms", "pixels_ms")):
            problems.append(f"{key}: the triggers gave {triggers}")
        saves = result.get("vistrel mouse-up to PNG") or {}
        if saves.get("missed") != 0 or not positive(saves.get("save_ms")):
            problems.append(f"{key}: the mouse-ups gave {saves}")
    return problems


def main():
    parser = application_arguments(rounds=11)
    parser.add_argument("--configurations", default="3840x2160x1,3840x2160x2,1920x1080x1,1920x1080x2")
    arguments = parser.parse_args()
    saves = max(3, arguments.rounds // 2)
    if arguments.smoke:
        arguments.rounds, saves, arguments.configurations = 2, 2, "1920x1080x1"
    # The desk is put on the root with ImageMagick's display: on a black root the dimming changes nothing.
    require_tools("app_latency.py", ["openbox", "trayer", "xdotool", "xprop", "display", "Xvfb"]
                  + ([] if arguments.smoke else ["flameshot", "spectacle"]))
    report = {}
    for configuration in arguments.configurations.split(","):
        width, height, monitors = (int(v) for v in configuration.split("x"))
        key = f"{width}x{height}, {monitors} display{'s' if monitors > 1 else ''}"
        session = Session(width, height, arguments.cache, monitors=monitors, desktop=True)
        try:
            report[key] = latency(session, arguments.vistrel, arguments.probe, arguments.rounds, saves,
                                  not arguments.smoke)
            print(key, json.dumps(report[key]), file=sys.stderr)
            if width == 3840 and monitors == 1 and not arguments.smoke:
                for size, with_peers in [((1280, 720), True), (None, False)]:
                    key = "memory at 3840x2160" + (", large captures" if size is None else "")
                    report[key] = footprint(session, arguments.vistrel, arguments.probe, size, with_peers)
                    print(json.dumps(report[key]), file=sys.stderr)
        finally:
            session.close()
    finish("app_latency.py", report, arguments.json, complete(report) if arguments.smoke else [])


if __name__ == "__main__":
    main()
