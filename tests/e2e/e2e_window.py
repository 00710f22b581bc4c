#!/usr/bin/python3
"""Space over a window captures exactly that window with its frame, as the screen showed it."""
import os
import subprocess

from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

picture = os.path.join(SESSION, "probe.png")
Image.new("RGB", (400, 300), (200, 40, 90)).save(picture)
viewer = subprocess.Popen(["display", "-title", "probe-window", "-geometry", "+300+200", picture])
window_id = wait_until(lambda: run("xdotool", "search", "--onlyvisible", "--name", "^probe-window$").stdout.split())
check(window_id, "the test window did not appear")
app = Vistrel()

if window_id:
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
        resolved = wait_for_line("window selection resolved owner=", before)
        # WM_CLASS(STRING) = "instance", "Class"
        window_class = run("xprop", "-id", window_id, "WM_CLASS").stdout.split('"')[3]
        check(resolved and resolved.startswith(f"window selection resolved owner={window_class} id={int(window_id)} "),
              f"the window was not resolved by its class {window_class}: {resolved}")
        path = wait_for_save(before)
        if check(path, "Space saved nothing"):
            problem = differs(expected, Image.open(path))
            check(problem is None, f"the capture is not the window's frame {frame}: {problem}")

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
finish("window under the cursor")
