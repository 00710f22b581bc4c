#!/usr/bin/python3
"""The capture flow on one display: a start that makes its overlay out of sight, the repeat shortcut
before any capture, a dragged capture saved, copied and traced, Escape and a plain click cancelling
with the cursor given back, the repeat shortcut capturing the same region again, and Space over a
window capturing exactly that window with its frame, as the screen showed it."""
from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

desk = background()
focus = run("xdotool", "getwindowfocus").stdout
app = Vistrel()

# Once started, the overlay is made ahead but out of sight: nothing but the desktop on the screen, and
# the focus where it was.
check(wait_until(lambda: overlay_windows(mapped=False), 5), "no overlay window was made ahead")
check(overlay_windows() == [], f"windows showed at start: {overlay_windows()}")
problem = differs(desk, screen())
check(problem is None, f"the screen changed at start: {problem}")
check(run("xdotool", "getwindowfocus").stdout == focus, "starting took the focus")

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
        # The overlay dims the frozen desktop: a quarter of black over every pixel away from the drag's
        # box, label and crosshair; inside the box a quarter of the selection's blue goes over that.
        def expected(point):
            dimmed = [p * 0.75 for p in desk.getpixel(point)]
            inside = 610 <= point[0] <= 1090 and 310 <= point[1] <= 640
            return [d * 0.75 + f * 0.25 for d, f in zip(dimmed, (0, 122, 255))] if inside else dimmed
        grid = [(x, y) for x in range(7, 1920, 61) for y in range(5, 1080, 53)
                if abs(x - 1100) > 6 and abs(y - 650) > 6
                and not (560 <= x <= 1140 and 260 <= y <= 720 and not (610 <= x <= 1090 and 310 <= y <= 640))]
        wrong = [(point, shot.getpixel(point)) for point in grid
                 if any(abs(s - e) > 2 for s, e in zip(shot.getpixel(point), expected(point)))]
        check(not wrong, f"the overlay shows {len(wrong)} of {len(grid)} points wrong, first {wrong[:3]}")

    drag((600, 300), (1100, 650), during=while_dragging)
    path = wait_for_save(before)
    if shows_desktop(path, (600, 300, 1100, 650), "the dragged capture"):
        name = os.path.basename(path)
        check(os.path.dirname(path) == SAVE_FOLDER, f"saved into {os.path.dirname(path)}, not the Desktop")
        check(NAME_PATTERN.match(name), f"{name} is not named by prefix and date")
        saved = Image.open(path)
        clip = clipboard_png()
        if clip is not None:
            problem = differs(saved, clip)
            check(problem is None, f"the clipboard's image/png differs from the saved file: {problem}")
        with open(path, "rb") as written:
            file_bytes = written.read()
        check(wait_until(lambda: clipboard_bytes() == file_bytes, 5),
              "once saved, the clipboard does not serve the saved file's bytes")
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
if shows_desktop(wait_for_save(before), (600, 300, 1100, 650), "the repeat capture"):
    check(len(saved_files()) == len(files) + 1, f"expected a new file, found {saved_files()}")

# Space over a window: the window with its frame, as the screen showed it (named in a later second).
time.sleep(1.1)
picture = os.path.join(SESSION, "probe.png")
Image.new("RGB", (400, 300), (200, 40, 90)).save(picture)
viewer = subprocess.Popen(["display", "-title", "probe-window", "-geometry", "+300+200", picture])
window_id = wait_until(lambda: run("xdotool", "search", "--onlyvisible", "--name", "^probe-window$").stdout.split())
if check(window_id, "the test window did not appear"):
    window_id = window_id[0]
    info = run("xwininfo", "-id", window_id).stdout
    x = int(info.split("Absolute upper-left X:")[1].split()[0])
    y = int(info.split("Absolute upper-left Y:")[1].split()[0])
    width = int(info.split("Width:")[1].split()[0])
    height = int(info.split("Height:")[1].split()[0])
    extents = run("xprop", "-id", window_id, "_NET_FRAME_EXTENTS").stdout
    left, right, top, bottom = (int(v) for v in extents.split("=")[1].split(","))
    check(top > 0, f"openbox gave the window no frame: {extents.strip()}")
    frame = (x - left, y - top, x + width + right, y + height + bottom)
    expected = screen().crop(frame)

    move(x + width // 2, y + height // 2)
    before = len(log_lines())
    if start_selection():
        key("space")
        # WM_CLASS(STRING) = "instance", "Class"
        window_class = run("xprop", "-id", window_id, "WM_CLASS").stdout.split('"')[3]
        window_saved(before, f"{window_class} id={int(window_id)}", expected, f"Space over the frame {frame}")

    # Over the bare desktop Space finds nothing: the overlay stays for another try.
    move(1700, 100)
    before = len(log_lines())
    if start_selection():
        key("space")
        check(wait_for_line("window selection skipped: no target window under cursor", before),
              "Space over the desktop did not report that no window is there")
        check(len(overlay_windows()) == 1, "the overlay left after Space found no window")
        key("Escape")
viewer.kill()

app.quit()
finish("capture flow")
