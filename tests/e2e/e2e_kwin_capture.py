#!/usr/bin/python3
"""Captures on KDE Plasma through KWin's ScreenShot2, in the headless KWin of run-in-kwin-session.sh, with
KWin's permission check in force. Vistrel's launcher entry is installed as an install step would put it
(Exec with the executable's full path), so KWin grants Vistrel by its own entry. A selection on each
output, started with `vistrel select` and dragged through KWin's fake input, is saved pixel for pixel as
KWin's own CaptureScreen shows that output at its native pixels. Without the entry, KWin refuses and the
system log says why and what grants it. `vistrel capture` reads a display and regions through KWin too,
Space over a window saves exactly its frame, and with no portal to bind the shortcuts KDE's own shortcut
service holds them.

Run as   SCRIPT VISTREL KWIN_POINTER"""
import os
import subprocess
import sys
import time

import dbus

from PIL import Image, ImageChops

from vistrel_e2e import (SESSION, VISTREL, Vistrel, check, differs, finish, run, saved_as, select_by_command,
                         wait_for_save, wait_until, window_saved)
from vistrel_wayland import Pointer

HERE = os.path.dirname(os.path.abspath(__file__))
POINTER = sys.argv[2]
APPLICATIONS = os.path.join(os.environ["XDG_DATA_HOME"], "applications")
ENTRY = os.path.join(APPLICATIONS, "vistrel.desktop")


def install_entry(path, lines):
    """A desktop entry in the session's data folder; KWin reads the folder again when it next checks."""
    os.makedirs(APPLICATIONS, exist_ok=True)
    with open(path, "w", encoding="utf-8") as entry:
        entry.write("\n".join(lines) + "\n")


def kwin_screen(name):
    """KWin's own picture of an output at its native pixels."""
    path = os.path.join(SESSION, f"kwin-{name}.png")
    taken = run(os.environ["VISTREL_E2E_KWIN_PYTHON"], os.path.join(HERE, "helpers", "kwin_screenshot.py"), name, path)
    return Image.open(path).convert("RGB") if check(taken.returncode == 0, f"KWin's {name}: {taken.stderr}") else None


# The launcher entry as installed, Exec naming this build's executable.
with open(os.path.join(HERE, "..", "..", "resources", "vistrel.desktop"), encoding="utf-8") as shipped:
    lines = shipped.read().splitlines()
first_exec = next(i for i, line in enumerate(lines) if line.startswith("Exec="))
lines[first_exec] = f"Exec={os.path.realpath(VISTREL)}"
check("X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2" in lines,
      "the launcher entry does not ask KWin for ScreenShot2")
install_entry(ENTRY, lines)
install_entry(os.path.join(APPLICATIONS, "vistrel-e2e-kwin-pointer.desktop"),
              ["[Desktop Entry]", "Type=Application", "Name=Test pointer", f"Exec={os.path.realpath(POINTER)}",
               "NoDisplay=true", "X-KDE-Wayland-Interfaces=org_kde_kwin_fake_input"])

def start_pointer():
    try:
        return Pointer(POINTER)
    except RuntimeError as error:
        print(error)
        return None


# KWin looks at the entries again once its last look is more than a moment old.
pointer = wait_until(start_pointer, timeout=10, interval=0.5)
if not check(pointer, "KWin never offered the test pointer its fake input"):
    finish("kwin capture")
pointer.move(1270, 710)  # out of every selection below

# The command line through KWin, granted by the same entry: display 1 at its native pixels, a region within
# it, and one across both outputs, which KWin draws at the higher scale (2) of the two.
shown = kwin_screen("Virtual-1")
for label, arguments, size, pixels, at in [
        ("display 1", ["--display", "1"], (1280, 720), (0, 0, 1280, 720), (0, 0)),
        ("region on Virtual-1", ["--region", "1380,60,320,240"], (640, 480), (200, 120, 840, 600), (0, 0)),
        ("region across both", ["--region", "1200,100,160,100"], (320, 200), (0, 200, 160, 400), (160, 0))]:
    path = os.path.join(SESSION, f"cli-{label.replace(' ', '-')}.png")
    taken = run(VISTREL, "capture", *arguments, "-o", path, timeout=20)
    if check(taken.returncode == 0, f"vistrel capture, {label}: {taken.stderr}") and shown:
        picture = Image.open(path)
        part = picture.crop((at[0], at[1], at[0] + pixels[2] - pixels[0], at[1] + pixels[3] - pixels[1]))
        problem = (f"size {picture.size}, expected {size}" if picture.size != size
                   else differs(shown.crop(pixels), part))
        check(problem is None, f"vistrel capture, {label}, against KWin's picture of Virtual-1: {problem}")

# KWin's pixels come through QtDBus alone: the command line still starts without Qt's GUI library.
linked = run("readelf", "--dynamic", VISTREL).stdout
check("libQt6Core" in linked and "libQt6Gui" not in linked, f"vistrel links other than QtCore and QtDBus: {linked}")

app = Vistrel()
check("Vistrel: wayland capture via KWin's ScreenShot2" in app.system_log(),
      f"the system log does not name KWin's ScreenShot2: {app.system_log()}")


def kde_shortcut(action):
    """The keys KDE's shortcut service (what System Settings › Shortcuts shows) holds for our action."""
    try:
        service = dbus.SessionBus().get_object("org.kde.kglobalaccel", "/kglobalaccel")
        return [int(key) for key in service.shortcut(["vistrel", action, "", ""], dbus_interface="org.kde.KGlobalAccel")]
    except dbus.DBusException:
        return []


# No portal binds keys here: KDE's own shortcut service holds both commands.
check(wait_until(lambda: kde_shortcut("select") and kde_shortcut("repeat"), timeout=10),
      f"KDE's shortcut service does not list Vistrel's commands: {app.system_log()}")

# Layout points and the output pixels they cover: Virtual-1 is at 1280,0 at scale 2.
for name, start, end, pixels in [("Virtual-0", (200, 150), (520, 390), (200, 150, 520, 390)),
                                 ("Virtual-1", (1380, 60), (1700, 300), (200, 120, 840, 600))]:
    # The last capture's notification goes first: it would be in this one's picture, and not in KWin's.
    run("dunstctl", "close-all")
    time.sleep(0.3)
    shown = kwin_screen(name)
    before = select_by_command(name)
    if before is None:
        continue
    pointer.drag(start, end)
    if shown:
        saved_as(wait_for_save(before), shown.crop(pixels), name, f"KWin's picture of {pixels}")
    time.sleep(1.1)  # file names carry seconds

# Space over a window: its frame, found where KWin's picture of Virtual-0 differs from the wallpaper.
probe = os.path.join(SESSION, "probe.png")
Image.new("RGB", (40, 40), (200, 40, 90)).save(probe)
pointer.move(100, 100)  # KWin places a new window on the output with the pointer
source = subprocess.Popen([os.path.join(os.path.dirname(POINTER), "drag_source"), probe])
run("dunstctl", "close-all")
wallpaper = Image.open(os.environ["VISTREL_E2E_BACKGROUND_VIRTUAL_0"]).convert("RGB")


def window_shown():
    shown = kwin_screen("Virtual-0")
    frame = ImageChops.difference(shown, wallpaper).getbbox() if shown else None
    return (shown, frame) if frame else None


found = wait_until(window_shown, timeout=10, interval=0.3)
if check(found, "the test window did not show on Virtual-0"):
    shown, frame = found
    before = select_by_command("Space")
    if before is not None:
        pointer.move((frame[0] + frame[2]) // 2, (frame[1] + frame[3]) // 2)
        pointer.send("key 57")  # Space
        window_saved(before, "drag_source", shown.crop(frame), f"Space over the frame {frame}")
source.kill()
app.quit()

# Without the entry KWin refuses; with no portal here either, no way to read the screen is left.
os.remove(ENTRY)
time.sleep(2)  # KWin looks at the entries again once its last look is more than a moment old
app = Vistrel(tag="refused")
refusal = "Vistrel: KWin refused screenshots (org.kde.KWin.ScreenShot2.Error.NoAuthorized"
check(refusal in app.system_log() and "X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2" in app.system_log(),
      f"the system log does not tell of KWin's refusal and its cure: {app.system_log()}")
check("via KWin's ScreenShot2" not in app.system_log(), f"KWin was chosen though it refused: {app.system_log()}")
app.quit()
pointer.close()
finish("kwin capture")
