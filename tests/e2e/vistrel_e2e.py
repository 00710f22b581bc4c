"""Helpers of the end-to-end tests: start and stop Vistrel inside the private desktop of
run-in-session.sh, drive it with xdotool, read back the diagnostics log, the saved files, the
clipboard (xclip) and the screen, and compare pictures pixel for pixel.

Every test script is run as   SCRIPT VISTREL X11_PROBE   and exits 0 when every check passed."""
import json
import os
import re
import subprocess
import sys
import time

from PIL import Image, ImageChops

VISTREL = sys.argv[1]
PROBE = sys.argv[2]
SESSION = os.environ["VISTREL_E2E_DIR"]
HOME = os.environ["HOME"]
LOG = os.path.join(os.environ["XDG_STATE_HOME"], "Vistrel", "diagnostics.log")
SETTINGS = os.path.join(os.environ["XDG_CONFIG_HOME"], "Vistrel", "settings.json")
SAVE_FOLDER = os.path.join(HOME, "Desktop")
NAME_PATTERN = re.compile(r"^Vistrel_\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d\.png$")

failures = []


def check(condition, message):
    if not condition:
        failures.append(message)
        print("FAIL:", message, flush=True)
    return condition


def finish(name):
    print(f"{name}:", "failed" if failures else "passed", flush=True)
    if failures:
        print("--- diagnostics log ---")
        print("\n".join(log_lines()))
    sys.exit(1 if failures else 0)


def run(*arguments, **options):
    return subprocess.run(list(arguments), capture_output=True, text=True, **options)


def wait_until(condition, timeout=10.0, interval=0.05):
    deadline = time.monotonic() + timeout
    while time.monotonic() < deadline:
        value = condition()
        if value:
            return value
        time.sleep(interval)
    return condition()


def log_lines():
    try:
        with open(LOG, encoding="utf-8") as log:
            return [line.rstrip("\n").split("] ", 1)[-1] for line in log]
    except FileNotFoundError:
        return []


def wait_for_line(text, after=0, timeout=10.0):
    """The first diagnostics line from index `after` on that starts with `text`, or None."""
    def find():
        for line in log_lines()[after:]:
            if line.startswith(text):
                return line
        return None
    return wait_until(find, timeout)


class Vistrel:
    """One running vistrel process, with its standard error (the system log) kept in a file."""

    def __init__(self, extra_environment=None, tag="vistrel", tray_notice=False):
        # These sessions run no tray: unless a test looks at it, the notice about that counts as given.
        if not tray_notice:
            remember_setting("VistrelTraylessGuidanceShown", True)
        self.stderr_path = os.path.join(SESSION, f"{tag}.stderr")
        self.environment = dict(os.environ, **(extra_environment or {}))
        before = len(log_lines())
        self.process = subprocess.Popen([VISTREL], stdout=subprocess.DEVNULL,
                                        stderr=open(self.stderr_path, "w"), env=self.environment)
        self.started = wait_for_line("applicationDidFinishLaunching completed", before) is not None
        check(self.started, "vistrel did not finish launching")

    def system_log(self):
        with open(self.stderr_path, encoding="utf-8", errors="replace") as stderr:
            return stderr.read()

    def quit(self):
        """Asks the running instance to quit, as a second start would, and waits for it to end."""
        asked = run(VISTREL, "quit", timeout=20, env=self.environment)
        try:
            self.process.wait(timeout=10)
        except subprocess.TimeoutExpired:
            self.process.kill()
            check(False, f"vistrel did not quit when asked ({asked.returncode}: {asked.stderr.strip()}); "
                         f"its system log: {self.system_log()}")


def key(keys):
    run("xdotool", "key", keys)


def move(x, y):
    run("xdotool", "mousemove", str(x), str(y))


def drag(start, end, during=None):
    """Presses at `start`, moves in steps to `end` and releases; `during` runs before the release."""
    move(*start)
    time.sleep(0.05)
    run("xdotool", "mousedown", "1")
    for step in range(1, 6):
        move(start[0] + (end[0] - start[0]) * step // 5, start[1] + (end[1] - start[1]) * step // 5)
        time.sleep(0.02)
    if during:
        during()
    run("xdotool", "mouseup", "1")


def start_selection(shortcut="shift+super+s", environment=None):
    """Presses the capture shortcut, or without one asks the running instance ("vistrel select"), and
    waits until every overlay window is up."""
    before = len(log_lines())
    if shortcut:
        key(shortcut)
    else:
        run(VISTREL, "select", timeout=20, env=environment)
    shown = wait_for_line("showSelectionWindow screens=", before)
    if not check(shown, f"{shortcut or 'vistrel select'} did not show the overlay"):
        return False
    count = int(shown.split("screens=")[1].split()[0])
    wait_until(lambda: len([l for l in log_lines()[before:] if l.startswith("selection window display=")]) >= count)
    wait_until(lambda: len(overlay_windows()) >= count, timeout=5)
    time.sleep(0.2)
    return True


def select_by_command(label, screens=2):
    """Starts a selection with `vistrel select`, as a desktop's own shortcut would, and waits for the
    overlay on `screens` displays, and a moment for the compositor to map and draw it; the diagnostics
    line count before it, or None."""
    before = len(log_lines())
    started = run(VISTREL, "select", timeout=20)
    shown = wait_for_line(f"showSelectionWindow screens={screens}", before, timeout=15)
    if not check(started.returncode == 0 and shown, f"{label}: no overlay on {screens} displays: {started.stderr}"):
        return None
    time.sleep(0.5)
    return before


def overlay_windows(mapped=True):
    """Geometry ("WxH+X+Y") of each mapped (or, `mapped` false, unmapped) override-redirect window of
    vistrel."""
    tree = run("xwininfo", "-root", "-children").stdout
    windows = []
    for line in tree.splitlines():
        match = re.match(r"\s+(0x[0-9a-f]+) .*\(\"vistrel\" \"Vistrel\"\)\s+(\d+x\d+\+-?\d+\+-?\d+)", line)
        if not match:
            continue
        info = run("xwininfo", "-id", match.group(1)).stdout
        if ("Map State: IsViewable" in info) == mapped and "Override Redirect State: yes" in info:
            windows.append(match.group(2))
    return windows


def saved_files():
    try:
        return sorted(name for name in os.listdir(SAVE_FOLDER) if name.endswith(".png"))
    except FileNotFoundError:
        return []


def wait_for_save(after):
    line = wait_for_line("saveImage success path=", after)
    return line.split("path=", 1)[1] if line else None


def saved_beside(source, timeout=10):
    """The edited picture the editor saved beside `source` (NAME_edited.png), once written; None when not."""
    edited = source[:-len(".png")] + "_edited.png"
    check(wait_until(lambda: os.path.exists(edited), timeout), f"{os.path.basename(edited)} was not written")
    time.sleep(0.3)
    return Image.open(edited) if os.path.exists(edited) else None


def background():
    return Image.open(os.environ["VISTREL_E2E_BACKGROUND"]).convert("RGB")


def screen():
    path = os.path.join(SESSION, "screen.png")
    run("import", "-window", "root", path)
    return Image.open(path).convert("RGB")


def differs(expected, actual):
    """None when both pictures are the same pixel for pixel, else a description."""
    if expected.size != actual.size:
        return f"size {actual.size}, expected {expected.size}"
    box = ImageChops.difference(expected.convert("RGB"), actual.convert("RGB")).getbbox()
    return f"pixels differ in {box}" if box else None


def saved_as(path, expected, label, what="the desktop"):
    """Checks that a capture was saved at `path` (or is the open file `path`) and equals `expected` pixel
    for pixel; false when nothing was saved."""
    if not check(path, f"{label}: nothing saved"):
        return False
    problem = differs(expected, Image.open(path))
    check(problem is None, f"{label}: the capture differs from {what}: {problem}")
    return True


def shows_desktop(path, crop, label):
    """saved_as() against the desktop's `crop` (x1, y1, x2, y2)."""
    return saved_as(path, background().crop(crop), label)


def window_saved(before, owner, expected, label):
    """After Space over a window (from log line `before` on): the window is resolved as `owner`'s (its
    class or app id, and what follows) and saved equal to `expected`."""
    resolved = wait_for_line("window selection resolved owner=", before)
    check(resolved and resolved.startswith(f"window selection resolved owner={owner} "),
          f"{label}: the window was not resolved as {owner}'s: {resolved}")
    saved_as(wait_for_save(before), expected, label, "the window")


def clipboard_bytes():
    return subprocess.run(["xclip", "-selection", "clipboard", "-t", "image/png", "-o"], capture_output=True,
                          timeout=10).stdout


def clipboard_png():
    path = os.path.join(SESSION, "clipboard.png")
    with open(path, "wb") as out:
        out.write(clipboard_bytes())
    try:
        return Image.open(path)
    except Exception as error:  # noqa: BLE001 - whatever xclip gave is reported
        check(False, f"the clipboard's image/png is not a PNG: {error}")
        return None


def cursor_blank():
    return run(PROBE, "cursor-blank").stdout.strip() == "1"


def settings():
    with open(SETTINGS, encoding="utf-8") as file:
        return json.load(file)


def remember_setting(key, value):
    """Stores one preference before Vistrel starts, as an earlier start would have."""
    values = settings() if os.path.exists(SETTINGS) else {}
    values[key] = value
    os.makedirs(os.path.dirname(SETTINGS), exist_ok=True)
    with open(SETTINGS, "w", encoding="utf-8") as file:
        json.dump(values, file)


def notification_texts():
    """(title, body) of each notification dunst has shown, once closed into its history."""
    run("dunstctl", "close-all")
    entries = wait_until(lambda: json.loads(run("dunstctl", "history").stdout or "{}").get("data", [[]])[0])
    return [(entry["summary"]["data"], entry["body"]["data"]) for entry in entries or []]


def notifications_shown():
    return int(run("dunstctl", "count", "displayed").stdout.strip() or 0)


def editor_windows():
    return run("xdotool", "search", "--onlyvisible", "--name", "^Vistrel 編集$").stdout.split()


class BellCounter:
    """Counts rings of the display bell (the system beep) from its start on."""

    def __init__(self):
        self.path = os.path.join(SESSION, "bells")
        self.process = subprocess.Popen([PROBE, "count-bells"], stdout=open(self.path, "w"))
        check(wait_until(lambda: "watching" in open(self.path).read(), 5), "the bell watcher did not start")

    def count(self):
        return open(self.path).read().count("bell")

    def stop(self):
        self.process.kill()
        self.process.wait()
