#!/usr/bin/python3
"""A capture on a 2x display opens in the editor at its size on screen: at 100 % every pixel of the
capture is one pixel of the screen, as it was on the desktop, not doubled and smoothed."""
from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests


def find(shot, picture):
    """Whether `picture` appears pixel for pixel somewhere in `shot`."""
    width, height = picture.size
    stride = shot.size[0] * 3
    data, rows = shot.tobytes(), [picture.crop((0, y, width, y + 1)).tobytes() for y in range(height)]
    for top in range(shot.size[1] - height + 1):
        start = data.find(rows[0], top * stride, (top + 1) * stride)
        while start >= 0:
            if (start - top * stride) % 3 == 0 and all(
                    data[start + y * stride:start + y * stride + width * 3] == rows[y] for y in range(height)):
                return True
            start = data.find(rows[0], start + 1, (top + 1) * stride)
    return False


app = Vistrel({"QT_SCALE_FACTOR": "2"}, tag="2x")
before = len(log_lines())
if start_selection():
    # 200 × 150 points of the screen are 400 × 300 of its pixels.
    drag((600, 400), (1000, 700))
    path = wait_for_save(before)
    if check(path, "the capture saved nothing"):
        capture = Image.open(path).convert("RGB")
        check(capture.size == (400, 300), f"the capture has {capture.size} pixels")
        check(wait_until(lambda: notifications_shown() == 1), "dunst shows no edit notification")
        run("dunstctl", "action", "0")
        windows = wait_until(editor_windows)
        if check(windows, "invoking the notification did not open the editor"):
            time.sleep(1.5)  # framed, fitted and centred on the picture
            geometry = run("xdotool", "getwindowgeometry", "--shell", windows[0]).stdout
            box = dict(line.split("=") for line in geometry.split())
            x, y, width, height = (int(box[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))
            shot = screen().crop((x, y, x + width, y + height))
            shot.save(os.path.join(SESSION, "editor-2x.png"))
            check(find(shot, capture), "the editor does not show the capture at its on-screen size "
                                       f"(window {width}x{height}+{x}+{y})")
app.quit()
finish("HiDPI capture in the editor")
