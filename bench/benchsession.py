"""A private X session for the whole-process benchmarks: Xvfb (-noreset) at a given size with the
desk image (mkdesk.py) on the root window, a private D-Bus session bus, optionally openbox and an
XEmbed tray, private HOME and XDG folders. Everything it starts, and everything those start (D-Bus
activated services), is stopped when the session ends: the process is made a subreaper so orphans
come back to it."""
import argparse
import ctypes
import json
import os
import platform
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from PIL import Image, ImageChops

HERE = os.path.dirname(os.path.abspath(__file__))
PR_SET_CHILD_SUBREAPER = 36


def now_ms():
    return time.perf_counter() * 1000.0


def wait_until(condition, timeout=10.0, interval=0.02):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        value = condition()
        if value:
            return value
        time.sleep(interval)
    return condition()


def publish(report, json_path=None):
    """Prints the report as JSON, and writes it to json_path too when given."""
    text = json.dumps(report, indent=1)
    if json_path:
        with open(json_path, "w") as out:
            out.write(text)
    print(text)


def application_arguments(rounds):
    """The arguments every benchmark of the running application takes; the caller adds its own."""
    parser = argparse.ArgumentParser()
    parser.add_argument("vistrel")
    parser.add_argument("probe")
    parser.add_argument("cache")
    parser.add_argument("--rounds", type=int, default=rounds)
    parser.add_argument("--smoke", action="store_true")
    parser.add_argument("--json")
    return parser


def require_tools(script, tools):
    """Exits as skipped (77) when any of the tools is missing."""
    missing = [tool for tool in tools if not shutil.which(tool)]
    if missing:
        print(f"{script}: missing {', '.join(missing)} (scripts/setup.sh bench installs them)", file=sys.stderr)
        sys.exit(77)


def finish(script, report, json_path, problems):
    """Publishes the report and exits, failing when a smoke run found problems."""
    publish(report, json_path)
    for problem in problems:
        print(f"{script}: {problem}", file=sys.stderr)
    sys.exit(1 if problems else 0)


def machine_description():
    model = "unknown CPU"
    with open("/proc/cpuinfo") as cpuinfo:
        for line in cpuinfo:
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
                break
    with open("/proc/meminfo") as meminfo:
        memory_kib = int(meminfo.readline().split()[1])
    return f"{os.cpu_count()} cores ({model}), {memory_kib / 1048576:.0f} GiB, Linux {platform.release()}"


def load_average():
    with open("/proc/loadavg") as loadavg:
        return loadavg.read().split()[0]


def desk_image(width, height, cache):
    """The desk picture at this size, made once and kept in `cache`."""
    os.makedirs(cache, exist_ok=True)
    path = os.path.join(cache, f"desk-{width}x{height}.png")
    if not os.path.exists(path):
        subprocess.run(["/usr/bin/python3", os.path.join(HERE, "mkdesk.py"), str(width), str(height), path + ".tmp.png"],
                       check=True)
        os.replace(path + ".tmp.png", path)
    return path


def differs(expected, path):
    """None when the PNG at `path` shows `expected` pixel for pixel, else a description."""
    try:
        actual = Image.open(path)
        actual.load()
    except Exception as error:  # noqa: BLE001 - whatever the file holds is reported
        return f"unreadable: {error}"
    if actual.size != expected.size:
        return f"size {actual.size}, expected {expected.size}"
    box = ImageChops.difference(expected, actual.convert("RGB")).getbbox()
    return f"pixels differ in {box}" if box else None


class Session:
    def __init__(self, width, height, cache, monitors=1, desktop=False):
        """`monitors` side by side, each width x height; `desktop` adds openbox, a tray and a notification
        server that shows nothing (quiet_notifications.py)."""
        libc = ctypes.CDLL(None, use_errno=True)
        libc.prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
        self.processes = []
        self.folder = tempfile.mkdtemp(prefix="vistrel-bench.")
        self.width, self.height, self.monitors = width, height, monitors
        self.background = desk_image(width * monitors, height, cache)
        self.image = Image.open(self.background).convert("RGB")
        home = os.path.join(self.folder, "home")
        self.env = dict(os.environ, HOME=home, XDG_CONFIG_HOME=os.path.join(home, ".config"),
                        XDG_STATE_HOME=os.path.join(home, ".local/state"),
                        XDG_DATA_HOME=os.path.join(home, ".local/share"), XDG_CACHE_HOME=os.path.join(home, ".cache"),
                        XDG_RUNTIME_DIR=os.path.join(self.folder, "runtime"), XDG_SESSION_TYPE="x11")
        self.env.pop("WAYLAND_DISPLAY", None)
        for variable in ["XDG_CONFIG_HOME", "XDG_STATE_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR"]:
            os.makedirs(self.env[variable], mode=0o700, exist_ok=True)
        self.desktop_folder = os.path.join(home, "Desktop")
        os.makedirs(self.desktop_folder)
        try:
            self._start_x(width * monitors, height)
            self._start_bus()
            if monitors > 1:
                for index in range(monitors):
                    self.run("xrandr", "--setmonitor", f"BENCH{index}",
                             f"{width}/600x{height}/340+{index * width}+0", "none")
            if desktop:
                self._start_desktop()
                quiet = self._start(["/usr/bin/python3", os.path.join(HERE, "quiet_notifications.py")],
                                    stdout=subprocess.PIPE, text=True)
                quiet.stdout.readline()
            self.show_background()
        except Exception:
            self.close()
            raise

    def _start(self, arguments, **options):
        process = subprocess.Popen(arguments, env=self.env, **options)
        self.processes.append(process)
        return process

    def _start_x(self, width, height):
        read, write = os.pipe()
        self._start(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{width}x{height}x24", "-nolisten", "tcp",
                     "-noreset"], pass_fds=(write,), stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as display:
            number = display.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.env["DISPLAY"] = f":{number}"

    def _start_bus(self):
        # A session bus that starts no services on demand: a notification server or a key daemon
        # activated by some tool would put its windows into the next tool's capture.
        config = os.path.join(self.folder, "bus.conf")
        with open(config, "w") as out:
            out.write("<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
                      "<policy context=\"default\"><allow send_destination=\"*\" eavesdrop=\"true\"/>"
                      "<allow eavesdrop=\"true\"/><allow own=\"*\"/></policy></busconfig>")
        read, write = os.pipe()
        self._start(["dbus-daemon", f"--config-file={config}", "--nofork", f"--print-address={write}"],
                    pass_fds=(write,), stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as address:
            self.env["DBUS_SESSION_BUS_ADDRESS"] = address.readline().strip()

    def _start_desktop(self):
        self._start(["openbox", "--sm-disable"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_until(lambda: "window id" in self.run("xprop", "-root", "_NET_SUPPORTING_WM_CHECK").stdout)
        self._start(["trayer", "--edge", "bottom", "--align", "right", "--height", "32", "--widthtype", "pixel",
                     "--width", "200", "--transparent", "false"], stdout=subprocess.DEVNULL,
                    stderr=subprocess.DEVNULL)
        wait_until(lambda: "_NET_SYSTEM_TRAY_S0" in self.run("xprop", "-root").stdout or self.tray_window(), 5)

    def tray_window(self):
        """Geometry (x, y, w, h) of the tray's window, or None."""
        found = self.run("xdotool", "search", "--class", "trayer").stdout.split()
        for window in found:
            geometry = self.run("xdotool", "getwindowgeometry", "--shell", window).stdout
            values = dict(line.split("=", 1) for line in geometry.split() if "=" in line)
            if int(values.get("WIDTH", 0)) > 10:
                return int(values["X"]), int(values["Y"]), int(values["WIDTH"]), int(values["HEIGHT"])
        return None

    def show_background(self):
        self.run("display", "-window", "root", self.background)

    def run(self, *arguments, **options):
        return subprocess.run(list(arguments), env=self.env, capture_output=True, text=True, **options)

    def close(self):
        # Our own children first, newest first; then whatever was left to us (activated services).
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()
        for process in reversed(self.processes):
            try:
                process.wait(timeout=5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        for pid in _children(os.getpid()):
            try:
                os.kill(pid, signal.SIGTERM)
            except ProcessLookupError:
                pass
        deadline = time.monotonic() + 5
        while time.monotonic() < deadline:
            try:
                pid, _ = os.waitpid(-1, os.WNOHANG)
            except ChildProcessError:
                break
            if pid == 0:
                time.sleep(0.05)
        shutil.rmtree(self.folder, ignore_errors=True)


def _children(parent):
    found = []
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open(f"/proc/{entry}/stat") as stat:
                fields = stat.read().rsplit(")", 1)[1].split()
        except OSError:
            continue
        if int(fields[1]) == parent:
            found.append(int(entry))
    return found
