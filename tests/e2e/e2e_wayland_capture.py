#!/usr/bin/python3
"""The capture flow on sway, two outputs at scales 1 and 2: the user's sway binding of `vistrel select`
reaching the running instance, a drag on each output saved and served on
the clipboard with that output's own pixels, a drag crossing to the other output kept on the output
where it began, Escape, repeat, Space over a window on the scale-2 output, `vistrel capture` against grim, and a scale
change taken at the next freeze."""
from vistrel_wayland import *  # noqa: F401,F403 - the helpers of these tests

app = Vistrel()
wait_until(lambda: outputs(), 5)


def captured(before, rect, label):
    """The file saved after log line `before` shows the desktop in `rect` (layout coordinates) at that
    output's pixels, and the clipboard serves the same picture as image/png."""
    path = wait_for_save(before)
    if not saved_as(path, wallpaper_region(*rect), label, f"the desktop at {rect}"):
        return None
    clip = clipboard_png()
    if clip is not None:
        problem = differs(Image.open(path), clip)
        check(problem is None, f"{label}: the clipboard's image/png differs from the file: {problem}")
    return path


# The binding Vistrel tells sway users to add, pressed with wtype.
bindsym("shift+mod4+s", f"{VISTREL} select")
bindsym("shift+mod4+r", f"{VISTREL} repeat")

# A drag on each output: a scale-1 region and a scale-2 region, each with its own pixels.
for label, start, end in [("scale 1", (200, 150), (520, 390)), ("scale 2", (1400, 100), (1750, 330))]:
    move(start[0] - 40, start[1] - 40)
    before = len(log_lines())
    if select_by_binding():
        drag(start, end)
        rect = (start[0], start[1], end[0] - start[0], end[1] - start[1])
        path = captured(before, rect, label)
        if path and label == "scale 2":
            check(Image.open(path).size == (700, 460), f"the scale-2 capture is {Image.open(path).size}, not 700x460")
    time.sleep(1.1)  # file names carry seconds

# A drag that starts on the first output and ends on the second stays on the first, up to its edge.
# (This compositor draws the pointer into its copies: it stays off every region that is compared.)
move(900, 250)
before = len(log_lines())
if select_by_binding():
    drag((1000, 300), (1500, 450))
    captured(before, (1000, 300, 280, 150), "drag across outputs")
    time.sleep(1.1)

# Escape cancels: nothing saved and no overlay left.
files = saved_files()
if select_by_binding():
    key("Escape")
    check(wait_until(lambda: overlays() == [], 5), f"Escape left overlays up: {overlays()}")
    time.sleep(0.3)
    check(saved_files() == files, "Escape saved a file")

# The repeat binding captures the last region again, live.
before = len(log_lines())
key("shift+super+r")
check(wait_for_line("repeat capture begin display=", before), "the repeat capture did not begin")
captured(before, (1000, 300, 280, 150), "repeat")
time.sleep(1.1)

# Space over a window: the window as sway lays it out, on the scale-2 output.
swaymsg("for_window", '[app_id="drag_source"]', "floating enable")
probe = os.path.join(SESSION, "probe.png")
Image.new("RGB", (40, 40), (200, 40, 90)).save(probe)
source = subprocess.Popen([os.path.join(os.path.dirname(WL_POINTER), "drag_source"), probe])
wait_until(lambda: [w for w in windows() if w["app_id"] == "drag_source"], 10)
swaymsg('[app_id="drag_source"]', "move", "absolute", "position", "1500", "200")
window = wait_until(lambda: [w for w in windows() if w["app_id"] == "drag_source" and w["rect"][0] >= 1280], 10)
if check(window, f"the test window did not appear on the second output: {windows()}"):
    x, y, width, height = window[0]["rect"]
    time.sleep(0.5)
    move(200, 600)
    expected = screen_region(x, y, width, height)
    before = len(log_lines())
    if select_by_binding():
        move(x + width // 2, y + height // 2)
        key("space")
        window_saved(before, "drag_source", expected, f"Space over the window at {(x, y, width, height)}")
source.kill()

# The command line, beside grim: a whole output and a region, pixel for pixel.
move(10, 10)
for arguments, grim_arguments in [(["--display", "1"], ["-o", "HEADLESS-2"]),
                                  (["--region", "100,120,640,360"], ["-g", "100,120 640x360"])]:
    mine = os.path.join(SESSION, "mine.png")
    result = run(VISTREL, "capture", *arguments, "-o", mine, timeout=20)
    theirs = grim(*grim_arguments)
    if check(result.returncode == 0, f"vistrel capture {arguments}: {result.stderr.strip()}") and theirs:
        problem = differs(theirs, Image.open(mine))
        check(problem is None, f"vistrel capture {arguments} differs from grim: {problem}")

# A scale changed while Vistrel runs is taken at the next freeze: the second output at scale 1. The
# capture's notification then opens the editor, an ordinary window here, whose Return saves the edited
# picture beside it and serves it on the clipboard.
run("dunstctl", "close-all")
before = len(log_lines())
swaymsg("output", "HEADLESS-2", "scale", "1")
if check(wait_for_line("screen parameters changed: ", before), "the scale change was not noticed"):
    move(1300, 40)
    before = len(log_lines())
    if select_by_binding():
        drag((1600, 300), (1900, 500))
        path = captured(before, (1600, 300, 300, 200), "after the scale change")
        check(not path or Image.open(path).size == (300, 200), "the capture after the scale change is not at scale 1")
        if path and check(wait_until(lambda: notifications_shown() == 1), "dunst shows no edit notification"):
            run("dunstctl", "action", "0")
            editor = wait_until(lambda: [w for w in windows() if w["name"] == "Vistrel 編集" and w["focused"]], 10)
            if check(editor, f"the notification did not open a focused editor: {windows()}"):
                time.sleep(0.5)
                key("Return")
                edited = saved_beside(path)
                if edited:
                    problem = differs(Image.open(path), edited)
                    check(problem is None, f"the edited picture without overlays differs from the capture: {problem}")
                    clip = clipboard_png()
                    check(clip is None or differs(edited, clip) is None,
                          "the clipboard does not serve the edited picture")
swaymsg("output", "HEADLESS-2", "scale", "2")

app.quit()
finish("wayland capture flow")
