#!/usr/bin/python3
"""Two displays on one X screen (RandR monitors): one overlay per display, and captures on either
display equal to the desktop, first with both at 1x, then with the left one at 2x. A user-defined
monitor with the left display's rectangle is that display again, not a third one."""
from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

run("xrandr", "--setmonitor", "LEFT", "1920/500x1080/280+0+0", "none")
run("xrandr", "--setmonitor", "RIGHT", "1920/500x1080/280+1920+0", "none")
run("xrandr", "--setmonitor", "LEFT-AGAIN", "1920/500x1080/280+0+0", "none")
desk = background()


def capture(start, end, crop, label):
    before = len(log_lines())
    if not start_selection():
        return
    windows = sorted(overlay_windows())
    check(windows == ["1920x1080+0+0", "1920x1080+1920+0"], f"{label}: overlays {windows}, one per display expected")
    drag(start, end)
    path = wait_for_save(before)
    if check(path, f"{label}: nothing saved"):
        problem = differs(desk.crop(crop), Image.open(path))
        check(problem is None, f"{label}: the capture differs from the desktop: {problem}")


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
finish("two displays")
