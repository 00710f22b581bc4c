#!/usr/bin/python3
"""The command line on a screen of two displays (RandR monitors): captures of the whole screen, of a
display and of a region, pixel for pixel against the desktop, to a file and to standard output; wrong
regions, unwritable files and commands that need a running Vistrel fail with one line and a non-zero
status; a capture without -o is saved as captures are and reaches the clipboard through the running
instance, which also opens a file named by a relative path in the editor."""
import io
import os

from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

run("xrandr", "--setmonitor", "LEFT", "1920/500x1080/280+0+0", "none")
run("xrandr", "--setmonitor", "RIGHT", "1920/500x1080/280+1920+0", "none")
OUT = os.path.join(SESSION, "out")
os.makedirs(OUT)


def vistrel(*arguments, **options):
    return run(VISTREL, *arguments, timeout=60, **options)


def expect_failure(arguments, status, message, label):
    result = vistrel(*arguments)
    check(result.returncode == status, f"{label}: status {result.returncode}, expected {status}")
    check(result.stderr == f"vistrel: {message}\n", f"{label}: said {result.stderr!r}, expected {message!r}")
    return result


def expect_capture(arguments, crop, label):
    path = os.path.join(OUT, label.replace(" ", "-") + ".png")
    result = vistrel("capture", *arguments, "-o", path)
    if check(result.returncode == 0, f"{label}: status {result.returncode}: {result.stderr.strip()}"):
        check(result.stdout == "" and result.stderr == "", f"{label}: printed {result.stdout!r} {result.stderr!r}")
        shows_desktop(path, crop, label)


# What the X server says about its monitors is the numbering --display follows.
monitors = run("xrandr", "--listmonitors").stdout
left = [line.split(":")[0].strip() for line in monitors.splitlines() if "LEFT" in line]
right = [line.split(":")[0].strip() for line in monitors.splitlines() if "RIGHT" in line]

expect_capture([], (0, 0, 3840, 1080), "whole screen")
if check(left and right, f"xrandr lists no LEFT and RIGHT monitors: {monitors}"):
    expect_capture(["--display", left[0]], (0, 0, 1920, 1080), "left display")
    expect_capture(["--display", right[0]], (1920, 0, 3840, 1080), "right display")
expect_capture(["--region", "1800,100,300,200"], (1800, 100, 2100, 300), "region across both displays")
expect_capture(["--region=0,0,1,1"], (0, 0, 1, 1), "one pixel")

piped = subprocess.run([VISTREL, "capture", "--region", "10,20,640,480", "-o", "-"], capture_output=True, timeout=60)
if check(piped.returncode == 0, f"standard output: status {piped.returncode}: {piped.stderr!r}"):
    shows_desktop(io.BytesIO(piped.stdout), (10, 20, 650, 500), "standard output")

# Failures: a reason on one line, no file left behind.
expect_failure(["capture", "--region", "3000,500,1000,100", "-o", os.path.join(OUT, "beyond.png")], 1,
               "region 3000,500 1000x100 is not within the screen (3840x1080)", "region beyond the screen")
expect_failure(["capture", "--region", "0,0,0,5"], 2,
               "bad region '0,0,0,5': --region takes X,Y,W,H in screen pixels, W and H above 0 (see vistrel --help)",
               "empty region")
missing = vistrel("capture", "--display", "7", "-o", os.path.join(OUT, "none.png"))
check(missing.returncode == 1 and missing.stderr.startswith("vistrel: there is no display 7; the displays are: "),
      f"missing display: {missing.returncode} {missing.stderr!r}")
expect_failure(["capture", "-o", os.path.join(OUT, "no", "such", "folder.png")], 1,
               f"cannot write {os.path.join(OUT, 'no', 'such', 'folder.png')}: No such file or directory",
               "file in a missing folder")
expect_failure(["capture", "-o", OUT], 1, f"cannot write {OUT}: Is a directory", "a folder as the file")
check(not os.path.exists(os.path.join(OUT, "beyond.png")) and not os.path.exists(os.path.join(OUT, "none.png")),
      f"failed captures left files: {os.listdir(OUT)}")
without_display = run(VISTREL, "capture", "-o", os.path.join(OUT, "x.png"),
                      env=dict(os.environ, DISPLAY="", WAYLAND_DISPLAY="", XDG_SESSION_TYPE="x11"))
check(without_display.returncode == 1 and without_display.stderr.startswith("vistrel: Neither DISPLAY nor WAYLAND_DISPLAY is set"),
      f"without a display: {without_display.returncode} {without_display.stderr!r}")

# Commands for the running instance, with none running.
for command in ["select", "repeat", "quit"]:
    expect_failure([command], 1, "Vistrel is not running (start it with: vistrel)", f"{command} without Vistrel")
expect_failure(["edit", os.path.join(OUT, "missing.png")], 1,
               f"cannot open {os.path.join(OUT, 'missing.png')}: there is no such file", "edit of a missing file")
check(saved_files() == [], f"commands without Vistrel saved {saved_files()}")

# Saved as captures are, without an instance: named and placed by the settings, the clipboard left alone.
result = vistrel("capture", "--region", "100,100,400,300")
path = result.stdout.strip()
if check(result.returncode == 0 and path, f"capture without -o: {result.returncode} {result.stderr!r}"):
    check(os.path.dirname(path) == SAVE_FOLDER and NAME_PATTERN.match(os.path.basename(path)),
          f"capture without -o saved as {path}")
    shows_desktop(path, (100, 100, 500, 400), "capture without -o")
    check(result.stderr == "vistrel: the capture was not put on the clipboard: Vistrel is not running "
                           "(start it with: vistrel)\n", f"capture without an instance said {result.stderr!r}")

# With the instance running: the clipboard and the editor.
app = Vistrel()
os.remove(path)
result = vistrel("capture", "--display", right[0] if right else "0")
path = result.stdout.strip()
if check(result.returncode == 0 and path and result.stderr == "",
         f"capture with Vistrel running: {result.returncode} {result.stderr!r}"):
    shows_desktop(path, (1920, 0, 3840, 1080), "capture with Vistrel running")
    clip = wait_until(lambda: "image/png" in run("xclip", "-selection", "clipboard", "-t", "TARGETS", "-o").stdout)
    if check(clip, "the running instance did not put the capture on the clipboard"):
        image = clipboard_png()
        check(image is not None and differs(Image.open(path), image) is None,
              "the clipboard holds another picture than the saved capture")

result = vistrel("edit", os.path.relpath(path))
check(result.returncode == 0, f"edit with Vistrel running: {result.returncode} {result.stderr!r}")
check(wait_until(editor_windows), "edit did not open the editor window")

app.quit()
finish("command line")
