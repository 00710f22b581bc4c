#!/usr/bin/python3
"""Two displays on one X screen (RandR monitors): one overlay per display, and captures on either
display equal to the desktop, first with both at 1x, then with the left one at 2x. A user-defined
monitor with the left display's rectangle is that display again, not a third one. Displays unplugged
or narrowed while the overlay is up: captures on what remains, and refusals for what is gone."""
from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

run("xrandr", "--setmonitor", "LEFT", "1920/500x1080/280+0+0", "none")
run("xrandr", "--setmonitor", "RIGHT", "1920/500x1080/280+1920+0", "none")
run("xrandr", "--setmonitor", "LEFT-AGAIN", "1920/500x1080/280+0+0", "none")


def capture(start, end, crop, label):
    before = len(log_lines())
    if not start_selection():
        return
    windows = sorted(overlay_windows())
    check(windows == ["1920x1080+0+0", "1920x1080+1920+0"], f"{label}: overlays {windows}, one per display expected")
    drag(start, end)
    shows_desktop(wait_for_save(before), crop, label)


app = Vistrel({"QT_SCREEN_SCALE_FACTORS": "LEFT=1;RIGHT=1"}, tag="1x")
capture((2100, 100), (2300, 250), (2100, 100, 2300, 250), "second display at 1x")
check(wait_for_line("showSelectionWindow screens=2 layout=[id="), "the layout line lists no two displays")
app.quit()

before = len(log_lines())
app = Vistrel({"QT_SCREEN_SCALE_FACTORS": "LEFT=2;RIGHT=1"}, tag="2x")
# 100 x 75 points on the 2x display are 200 x 150 pixels of the screen.
capture((100, 100), (300, 250), (100, 100, 300, 250), "the 2x display")
capture((2100, 100), (2300, 250), (2100, 100, 2300, 250), "second display beside a 2x one")
layout = wait_for_line("showSelectionWindow screens=2", before)
check(layout and "frame={{0, 0}, {960, 540}} scale=2]" in layout and "frame={{1920, -540}, {1920, 1080}} scale=1]"
      in layout, f"mixed-scale layout: {layout}")

# Unplugging the display of the last region: the change reaches the capture controller, which forgets
# the region, so the repeat shortcut has nothing to repeat.
right_id = layout.split("[id=")[2].split()[0] if layout else "?"
before = len(log_lines())
run("xrandr", "--delmonitor", "RIGHT")
check(wait_for_line("screen parameters changed: [id=", before), "the display change was not reported")
check(wait_for_line(f"repeat region discarded: display={right_id} disconnected", before),
      "the region of the unplugged display was kept")
key("shift+super+r")
check(wait_for_line("repeat capture skipped: no previous selection", before), "repeat still had a region")
app.quit()

# Displays that change while the overlay is up, both at 1x: label, the change, made before the drag or
# during it, the drag, and the desktop rectangle the capture shows (None: the capture is refused, nothing
# is read from outside what is left of the display, and the overlay stays up until Escape).
unplug = [("xrandr", "--delmonitor", "RIGHT")]
# A monitor given a new rectangle under its old name goes unnoticed by Qt: it is taken away first.
shrink = unplug + [("xrandr", "--setmonitor", "RIGHT", "1280/330x1080/280+1920+0", "none")]
replug = unplug + [("xrandr", "--setmonitor", "RIGHT", "1920/500x1080/280+1920+0", "none")]


def make(change):
    for command in change:
        run(*command)

CHANGES = [
    ("other display unplugged", unplug, False, ((100, 100), (300, 250)), (100, 100, 300, 250)),
    ("own display unplugged during the drag", unplug, True, ((2100, 100), (2300, 250)), None),
    ("own display narrowed, drag inside", shrink, False, ((2000, 100), (2200, 250)), (2000, 100, 2200, 250)),
    ("own display narrowed, drag past its new edge", shrink, False, ((3400, 100), (3600, 250)), None),
]
app = Vistrel({"QT_SCREEN_SCALE_FACTORS": "LEFT=1;RIGHT=1"}, tag="changes")
for label, change, during, (start, end), crop in CHANGES:
    make(replug)
    time.sleep(0.5)
    before = len(log_lines())
    if not start_selection():
        continue
    if not during:
        make(change)
        check(wait_for_line("screen parameters changed: ", before), f"{label}: the change was not reported")
    drag(start, end, during=(lambda: (make(change), time.sleep(0.5))) if during else None)
    if crop:
        shows_desktop(wait_for_save(before), crop, label)
    else:
        check(wait_for_line("capture aborted invalid clampedLocalRect", before), f"{label}: the capture was not refused")
        check(not wait_for_line("saveImage success", before, timeout=1), f"{label}: a capture was saved")
        check(overlay_windows(), f"{label}: the refused capture took the overlay down")
        key("Escape")
    check(wait_until(lambda: overlay_windows() == [], 5), f"{label}: the overlay stayed up")
app.quit()
finish("two displays")
