#!/usr/bin/python3
"""The capture flow on one display: the repeat shortcut before any capture, a dragged capture saved,
copied and traced, Escape and a plain click cancelling with the cursor given back, and the repeat
shortcut capturing the same region again."""
import os
import shutil
import time

from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

app = Vistrel()
desk = background()

# Repeat with nothing to repeat: refused with a beep (the display bell) and its trace.
bells = BellCounter()
before = len(log_lines())
key("shift+super+r")
check(wait_for_line("hotkey captured kind=repeat", before), "the repeat shortcut was not taken")
check(wait_for_line("repeat capture skipped: no previous selection", before),
      "repeat without a region did not log its refusal")
check(wait_until(lambda: bells.count() == 1, 5), f"repeat without a region rang the bell {bells.count()} times")
bells.stop()
check(saved_files() == [], "repeat without a region saved something")

# A dragged capture.
move(700, 500)
before = len(log_lines())
if start_selection():
    check(not cursor_blank(), "the cursor is hidden before the drag began")
    check(len(overlay_windows()) == 1 and overlay_windows()[0] == "1920x1080+0+0",
          f"expected one overlay over the display, found {overlay_windows()}")

    def while_dragging():
        check(cursor_blank(), "the cursor shows during the drag")
        shot = screen()
        output = os.environ.get("VISTREL_E2E_OUTPUT")
        if output:
            os.makedirs(output, exist_ok=True)
            shot.save(os.path.join(output, "overlay.png"))
        # The overlay dims the frozen desktop: a quarter of black over every pixel outside the drag.
        pixel, shown = desk.getpixel((1500, 900)), shot.getpixel((1500, 900))
        check(all(abs(s - round(p * 0.75)) <= 1 for p, s in zip(pixel, shown)),
              f"the overlay does not dim the desktop: {pixel} shown as {shown}")

    drag((600, 300), (1100, 650), during=while_dragging)
    path = wait_for_save(before)
    if check(path, "the drag saved nothing"):
        name = os.path.basename(path)
        check(os.path.dirname(path) == SAVE_FOLDER, f"saved into {os.path.dirname(path)}, not the Desktop")
        check(NAME_PATTERN.match(name), f"{name} is not named by prefix and date")
        saved = Image.open(path)
        problem = differs(desk.crop((600, 300, 1100, 650)), saved)
        check(problem is None, f"the saved capture differs from the desktop: {problem}")
        clip = clipboard_png()
        if clip is not None:
            problem = differs(saved, clip)
            check(problem is None, f"the clipboard's image/png differs from the saved file: {problem}")
        first_capture = path
    for line in ["hotkey captured kind=selection", "startSelection accepted",
                 "frozen displays captured count=1 via ScreenCaptureKit",
                 "selection window display=", "capture begin rect={{600, 430}, {500, 350}}",
                 "capture localRect={{600, 430}, {500, 350}} appKitScreenRect={{600, 430}, {500, 350}} "
                 "cgGlobalRect={{600, 300}, {500, 350}} screenFrame={{0, 0}, {1920, 1080}} displayID=",
                 "saveImage success path=", "capture saved and scheduleEditNotification"]:
        check(wait_for_line(line, before), f"the trace lacks: {line}")

# Escape cancels: nothing saved, the overlay gone, and the cursor back in the next session.
files = saved_files()
if start_selection():
    check(not cursor_blank(), "the cursor is still hidden from the previous capture")
    key("Escape")
    check(wait_until(lambda: overlay_windows() == [], 5), "Escape left the overlay up")
    time.sleep(0.3)
    check(saved_files() == files, "Escape saved a file")

# A click without a drag cancels too.
if start_selection():
    move(400, 400)
    run("xdotool", "mousedown", "1")
    time.sleep(0.1)
    check(cursor_blank(), "the cursor shows while the button is down")
    run("xdotool", "mouseup", "1")
    check(wait_until(lambda: overlay_windows() == [], 5), "a click left the overlay up")
    time.sleep(0.3)
    check(saved_files() == files, "a click without a drag saved a file")
if start_selection():
    check(not cursor_blank(), "the cursor stayed hidden after the click")
    key("Escape")
    wait_until(lambda: overlay_windows() == [], 5)

# The repeat shortcut captures the same region again, in the next second (names carry seconds).
time.sleep(1.1)
before = len(log_lines())
key("shift+super+r")
check(wait_for_line("repeat capture begin display=", before), "the repeat capture did not begin")
path = wait_for_save(before)
if check(path, "the repeat capture saved nothing"):
    check(len(saved_files()) == len(files) + 1, f"expected a new file, found {saved_files()}")
    problem = differs(desk.crop((600, 300, 1100, 650)), Image.open(path))
    check(problem is None, f"the repeat capture differs from the desktop: {problem}")

app.quit()
finish("capture flow")
