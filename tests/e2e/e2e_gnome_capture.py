#!/usr/bin/python3
"""Captures on GNOME, in the headless GNOME Shell of run-in-gnome-session.sh, whose layout is in pixels
(GNOME's default): Meta-0 at scale 1 and Meta-1 at scale 2, which Qt 6.4 reports in mixed units there.
Input goes through Mutter's RemoteDesktop; the pixel oracle is the Screenshot portal's own picture of the
layout. A selection on each monitor is saved at that monitor's native pixels, pixel for pixel as the
portal shows it. Space beeps and says why (GNOME gives applications no window rectangles), and the
selection stays open. A monitor switched off while the overlay is up leaves the capture on the other
one. The capture is on the clipboard too (wl-paste). With the screenshot permission refused, the system
log says so and nothing shows or is saved. One click in the settings binds the shortcuts in GNOME, whose
settings daemon then starts a selection on Shift+Super+S.

Run as   SCRIPT VISTREL GNOME_DESKTOP"""
import io
import os
import re
import subprocess
import sys
import time

from PIL import Image

import vistrel_a11y as a11y
from vistrel_e2e import (SESSION, Vistrel, check, differs, finish, log_lines, run, saved_as, saved_files,
                         select_by_command, wait_for_line, wait_for_save, wait_until)

sys.path.insert(0, os.path.dirname(sys.argv[2]))
import gnome_desktop  # noqa: E402

BOTH = [("Meta-0", 0, 0, 1), ("Meta-1", 1280, 0, 2)]
KEYS = "org.gnome.settings-daemon.plugins.media-keys"
ENTRY = KEYS + ".custom-keybinding:"
PARKED = ("Meta-0", 1270, 710)  # out of every selection below


def permission(answer):
    """What GNOME's one-time screenshot dialog would have kept for applications without an id."""
    run("gdbus", "call", "--session", "--timeout", "10", "--dest", "org.freedesktop.impl.portal.PermissionStore",
        "--object-path", "/org/freedesktop/impl/portal/PermissionStore",
        "--method", "org.freedesktop.impl.portal.PermissionStore.SetPermission",
        "screenshot", "true", "screenshot", "", f"['{answer}']", timeout=15)


def clipboard_png():
    """The clipboard's image/png through wl-paste, which GNOME serves it while wl-paste has the keyboard."""
    pasted = subprocess.run(["wl-paste", "--no-newline", "--type", "image/png"], capture_output=True, timeout=10)
    try:
        return Image.open(io.BytesIO(pasted.stdout)) if pasted.returncode == 0 else None
    except OSError:
        return None


pointer = gnome_desktop.Input(["Meta-0", "Meta-1"])
pointer.move(*PARKED)
layout_picture = Image.open(gnome_desktop.screenshot(os.path.join(SESSION, "layout.png"))).convert("RGB")
check(layout_picture.size == (3200, 1080), f"the portal's picture is {layout_picture.size}, not 3200x1080")

app = Vistrel(a11y.ENVIRONMENT)
check("Vistrel: wayland capture via the Screenshot portal" in app.system_log(),
      f"the system log does not name the portal: {app.system_log()}")

# Drags in each monitor's pixels; Meta-1's 300x200 pixels are 150x100 points at scale 2.
for label, monitor, start, end, box in [
        ("Meta-0 at scale 1", "Meta-0", (100, 100), (400, 300), (100, 100, 400, 300)),
        ("Meta-1 at scale 2", "Meta-1", (100, 100), (400, 300), (1380, 100, 1680, 300))]:
    before = select_by_command(label)
    if before is None:
        continue
    check(wait_for_line("selection window display=2 frame={{1280, 180}, {960, 540}} frozen=1920x1080", before),
          f"{label}: Meta-1 is not 960x540 points of 1920x1080 pixels")
    if monitor == "Meta-1":
        pointer.move(monitor, 600, 600)
        pointer.key("space")
        check(wait_for_line("window list unavailable: this compositor gives applications no window", before),
              f"{label}: Space did not say why it finds no window")
    pointer.drag(monitor, start, end)
    saved_as(wait_for_save(before), layout_picture.crop(box), label, f"the portal's picture of {box}")
    # GNOME takes a clipboard only from the focused window: the capture is there all the same.
    pasted = wait_until(clipboard_png, 5)
    check(pasted and differs(layout_picture.crop(box), pasted) is None,
          f"{label}: the clipboard does not hold the capture: {pasted and differs(layout_picture.crop(box), pasted)}")
    pointer.move(*PARKED)
    time.sleep(1.1)  # file names carry seconds

# Meta-1 switched off while the overlay is up: the overlay there goes, Meta-0's still captures.
before = select_by_command("monitor switched off")
if before is not None:
    gnome_desktop.set_layout(BOTH[:1])
    check(wait_until(lambda: len(gnome_desktop.monitors()) == 1, 10), "Mutter kept Meta-1 on")
    time.sleep(0.5)
    pointer.drag("Meta-0", (500, 200), (700, 400))
    box = (500, 200, 700, 400)
    saved_as(wait_for_save(before), layout_picture.crop(box), "monitor switched off", f"the portal's picture of {box}")
    gnome_desktop.set_layout(BOTH)
    check(wait_until(lambda: len(gnome_desktop.monitors()) == 2, 10), "Mutter did not turn Meta-1 on again")
    time.sleep(1.1)

# Refused: no overlay, no file, and the system log says what to allow.
permission("no")
files = saved_files()
before = len(log_lines())
run(sys.argv[1], "select", timeout=20)
check(wait_until(lambda: "Vistrel: 画面収録の許可が必要です。" in app.system_log(), 30),
      f"the refusal did not end the session as a refused permission: {app.system_log()}")
check(not wait_for_line("showSelectionWindow screens=", before, timeout=0.5), "an overlay showed after the refusal")
check(saved_files() == files, "a refused capture saved a file")
permission("yes")

# One click in the settings binds both commands as GNOME custom shortcuts; GNOME's own key handling then
# starts a selection.
run(sys.argv[1], "settings", timeout=20)
window = a11y.window("Vistrel 設定")
button = window and a11y.find(window, "GNOME に登録")
if check(button, "the settings window offers no GNOME binding") and button.get_action_iface().do_action(0):
    def commands():
        listed = run("gsettings", "get", KEYS, "custom-keybindings", timeout=10).stdout
        return {run("gsettings", "get", ENTRY + path, "command", timeout=10).stdout.strip()
                for path in re.findall(r"'([^']*)'", listed)}
    wanted = {f"'{os.path.realpath(sys.argv[1])} select'", f"'{os.path.realpath(sys.argv[1])} repeat'"}
    check(wait_until(lambda: commands() == wanted, 10), f"GNOME's custom shortcuts run {commands()}, not {wanted}")
    before = len(log_lines())

    def shortcut_selects():
        # gsd-media-keys grabs a new accelerator a moment after the settings change.
        pointer.key("Shift_L+Super_L+s")
        return wait_for_line("showSelectionWindow screens=2", before, timeout=2)
    check(wait_until(shortcut_selects, 20), "Shift+Super+S started no selection")
    time.sleep(0.5)
    pointer.key("Escape")

app.quit()
finish("gnome capture")
