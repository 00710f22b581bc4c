"""Helpers of the Wayland end-to-end tests, inside the headless sway of run-in-wayland-session.sh:
the pointer through wl_pointer, keys through wtype, the screen through grim, the clipboard through
wl-paste, outputs and windows through swaymsg. Everything else (Vistrel, check, the diagnostics log,
saved files, picture comparison) comes from vistrel_e2e, re-exported here.

Every test script is run as   SCRIPT VISTREL WL_POINTER   and exits 0 when every check passed."""
import json
import os
import subprocess
import sys
import time
from collections import namedtuple

from PIL import Image

from vistrel_e2e import *  # noqa: F401,F403 - re-exported for the tests
from vistrel_e2e import SESSION, check, log_lines, run, wait_for_line, wait_until

WL_POINTER = sys.argv[2]

Output = namedtuple("Output", "name x y width height scale pixel_width pixel_height")


class Pointer:
    """The seat's pointer, which exists only while this wl_pointer process (or, on KWin, kwin_pointer)
    runs. Positions are in layout coordinates (logical pixels); buttons are "left", "middle" or "right"."""

    def __init__(self, program=WL_POINTER):
        self.process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        ready = self.process.stdout.readline()
        if not ready.startswith("ready"):
            raise RuntimeError(f"{os.path.basename(program)} did not start: {ready!r}")

    def send(self, command):
        """Sends one command and returns once the compositor has handled it."""
        self.process.stdin.write(command + "\n")
        self.process.stdin.flush()
        reply = self.process.stdout.readline().strip()
        if reply != "ok":
            raise RuntimeError(f"pointer {command!r}: {reply or 'no reply'}")

    def move(self, x, y):
        self.send(f"move {x} {y}")

    def down(self, button="left"):
        self.send(f"down {button}")

    def up(self, button="left"):
        self.send(f"up {button}")

    def drag(self, start, end, steps=5, during=None):
        """Presses at `start`, moves in steps to `end` and releases; `during` runs before the release. The
        compositor has handled each step before the next is sent, as a hand would pace them."""
        self.move(*start)
        self.down()
        for step in range(1, steps + 1):
            self.move(start[0] + (end[0] - start[0]) * step // steps, start[1] + (end[1] - start[1]) * step // steps)
        if during:
            during()
        self.up()

    def close(self):
        self.process.stdin.close()
        self.process.wait(timeout=5)


_pointer = None


def pointer():
    """The pointer shared by move() and drag(), made on first use."""
    global _pointer
    if _pointer is None:
        _pointer = Pointer()
    return _pointer


def move(x, y):
    pointer().move(x, y)


def drag(start, end, during=None, steps=5):
    pointer().drag(start, end, steps, during)


MODIFIERS = {"shift": "shift", "ctrl": "ctrl", "control": "ctrl", "alt": "alt", "super": "logo", "logo": "logo",
             "win": "logo"}


def key(keys):
    """Presses a combination in xdotool's spelling ("shift+super+s", "Escape") with wtype. Each wtype
    call brings its own keyboard and keymap, and the first key after a keymap change is often lost, so
    a Shift_L goes first."""
    *modifiers, name = keys.split("+")
    held = [MODIFIERS[m.lower()] for m in modifiers]
    arguments = ["wtype", "-k", "Shift_L"]
    for modifier in held:
        arguments += ["-M", modifier]
    arguments += ["-k", name]
    for modifier in reversed(held):
        arguments += ["-m", modifier]
    result = run(*arguments)
    check(result.returncode == 0, f"wtype {keys}: {result.stderr.strip()}")


def grim(*arguments):
    """What grim captures with these arguments, as an RGB image (the cursor included)."""
    path = os.path.join(SESSION, "grim.png")
    result = run("grim", *arguments, path)
    if not check(result.returncode == 0, f"grim {' '.join(arguments)}: {result.stderr.strip()}"):
        return None
    return Image.open(path).convert("RGB")


def screen(output=None):
    """One output at its own pixels, or with no name the whole layout at the highest scale."""
    return grim("-o", output) if output else grim()


def screen_region(x, y, width, height):
    """A rectangle of the layout in logical pixels, at the highest scale of the outputs it covers."""
    return grim("-g", f"{x},{y} {width}x{height}")


def background(output="HEADLESS-1"):
    """The wallpaper an output shows, at that output's pixels."""
    return Image.open(os.environ["VISTREL_E2E_BACKGROUND_" + output.replace("-", "_")]).convert("RGB")


def wallpaper_region(x, y, width, height):
    """What the desktop shows in a rectangle of one output (layout coordinates, logical pixels), at that
    output's pixels: the part of its wallpaper a capture of the rectangle should equal."""
    for output in outputs():
        if output.x <= x and output.y <= y and x + width <= output.x + output.width \
                and y + height <= output.y + output.height:
            scale = output.pixel_width / output.width
            box = (x - output.x, y - output.y, x - output.x + width, y - output.y + height)
            return background(output.name).crop(tuple(round(v * scale) for v in box))
    return None


def clipboard_png():
    path = os.path.join(SESSION, "clipboard.png")
    with open(path, "wb") as out:
        subprocess.run(["wl-paste", "--no-newline", "-t", "image/png"], stdout=out, timeout=10)
    try:
        return Image.open(path)
    except Exception as error:  # noqa: BLE001 - whatever wl-paste gave is reported
        check(False, f"the clipboard's image/png is not a PNG: {error}")
        return None


def swaymsg(*arguments):
    """Runs a sway command or query; the parsed JSON reply."""
    return json.loads(run("swaymsg", "-r", *arguments).stdout or "null")


def outputs():
    """The active outputs: layout rectangle in logical pixels, scale and mode in pixels."""
    return [Output(o["name"], o["rect"]["x"], o["rect"]["y"], o["rect"]["width"], o["rect"]["height"], o["scale"],
                   o["current_mode"]["width"], o["current_mode"]["height"])
            for o in swaymsg("-t", "get_outputs") if o.get("active")]


def windows():
    """Every window sway shows or hides, with its output: con_id "id", "app_id", "name", "pid", "rect"
    (x, y, width, height in layout coordinates), "output", "visible", "focused", "floating"."""
    found = []

    def walk(node, output, floating):
        if node.get("type") == "output":
            output = node["name"]
        if node.get("pid") is not None:
            rect = node["rect"]
            found.append({"id": node["id"], "app_id": node.get("app_id"), "name": node.get("name"),
                          "pid": node["pid"], "rect": (rect["x"], rect["y"], rect["width"], rect["height"]),
                          "output": output, "visible": node.get("visible"), "focused": node.get("focused"),
                          "floating": floating})
        for child in node.get("nodes", []):
            walk(child, output, floating)
        for child in node.get("floating_nodes", []):
            walk(child, output, True)

    walk(swaymsg("-t", "get_tree"), None, False)
    return found


def overlays():
    """Vistrel's overlay windows that sway shows."""
    return [w for w in windows() if w["app_id"] == "vistrel" and w["visible"]]


def select_by_binding(keys="shift+super+s"):
    """Presses a sway binding of `vistrel select` and waits for an overlay on each of the two outputs;
    whether they showed."""
    before = len(log_lines())
    key(keys)
    shown = wait_for_line("showSelectionWindow screens=", before, timeout=4)
    if not shown:
        # wtype brings a new keyboard with each call, and sway now and then drops its first press.
        key(keys)
        shown = wait_for_line("showSelectionWindow screens=", before)
    if not check(shown, f"{keys} did not show the overlay through the sway binding"):
        return False
    check(wait_until(lambda: len(overlays()) == 2, 5), f"expected an overlay on each output, found {overlays()}")
    # The compositor maps both windows and draws them; then the pointer enters the one under it.
    time.sleep(0.4)
    return True


def close_windows():
    """Asks every window to close, one by one (sway 1.7 has no criterion for all of them)."""
    for window in windows():
        swaymsg(f"[con_id={window['id']}]", "kill")


def bindsym(keys, command):
    """Binds a combination in sway's spelling ("ctrl+shift+4") to run a shell command, as a user would
    in the sway configuration."""
    reply = swaymsg("bindsym", keys, "exec", command)
    check(reply and reply[0].get("success"), f"sway refused bindsym {keys}: {reply}")
