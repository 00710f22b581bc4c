#!/usr/bin/python3
"""The empty editor takes its picture from the clipboard or from a file dragged onto it, on a real X
server with the real pointer (xdotool):
- Ctrl+V with nothing on the clipboard shows the alert; with a PNG on it (xclip) opens the editor;
- a file dragged with the real pointer from another application (drag_source, over XDND) tints the
  panel while it hovers and opens in the editor when dropped;
- a damaged file gets the alert, and Vistrel goes on."""
import subprocess

import vistrel_a11y as a11y
from vistrel_editor import *  # noqa: F401,F403 - the helpers of the editor tests


def launcher():
    run(VISTREL, "edit", timeout=20)
    window = a11y.window("Vistrel 編集")
    if check(window, "'vistrel edit' showed no editor window"):
        check(a11y.find(window, "画像をドラッグ＆ドロップ"), "the empty editor shows no drop target")
        time.sleep(1.0)
    return window


def alert_texts():
    """The texts of the alert on screen, which is then dismissed with Return."""
    alert = a11y.window("Vistrel", timeout=5)
    if not check(alert, "no alert appeared"):
        return []
    texts = [node.get_name() for node in a11y.descendants(alert) if node.get_role_name() == "label"]
    key("Return")
    check(wait_until(lambda: not a11y.window("Vistrel", timeout=0.2), 5), "the alert stayed")
    return texts


def panel_pixel(window):
    """A pixel of the drop target's rounded panel, inside its corner."""
    x, y, width, height = a11y.extents(window)
    return screen().getpixel((x + 40, y + 40))


app = Vistrel(a11y.ENVIRONMENT)

# The clipboard, empty and then with a picture.
window = launcher()
if window:
    x, y, width, height = a11y.extents(window)
    screen().crop((x, y, x + width, y + height)).save(os.path.join(OUTPUT, "drop-target.png"))
    key("ctrl+v")
    texts = alert_texts()
    check(texts[:2] == ["クリップボードに画像がありません", "画像をコピーしてから、もう一度貼り付けてください。"],
          f"the empty-clipboard alert reads {texts}")
    pasted = make_picture("Pasted.png", 320, 180)
    owner = subprocess.Popen(["xclip", "-selection", "clipboard", "-t", "image/png", "-i", pasted])
    time.sleep(0.5)
    key("ctrl+v")
    time.sleep(1.0)
    editor = a11y.window("Vistrel 編集")
    check(editor and a11y.find(editor, "決定"), "pasting a picture did not open the editor")
    if editor:
        locate(editor, (320, 180), 1)
        press(editor, "キャンセル")
    check(wait_until(lambda: not editor_windows()), "キャンセル left the editor open")
    owner.kill()

# A file dragged from another application.
window = launcher()
if window:
    dropped = make_picture("Dropped.png", 360, 240)
    source = subprocess.Popen([os.path.join(HELPERS, "drag_source"), dropped], stdout=subprocess.PIPE, text=True)
    check(source.stdout.readline().strip() == "ready", "the drag source did not start")
    source_window = wait_until(lambda: run("xdotool", "search", "--onlyvisible", "--name", "^drag source$").stdout.split())
    time.sleep(0.5)
    resting = panel_pixel(window)
    geometry = run("xdotool", "getwindowgeometry", "--shell", source_window[0]).stdout if source_window else ""
    values = dict(line.split("=", 1) for line in geometry.split())
    start = (int(values.get("X", 0)) + 100, int(values.get("Y", 0)) + 60)
    wx, wy, wwidth, wheight = a11y.extents(window)
    end = (wx + wwidth // 2, wy + wheight // 3)
    hovering = []
    drag(start, end, during=lambda: (time.sleep(0.4), hovering.append(panel_pixel(window))))
    check(hovering and hovering[0] != resting, f"the panel was not tinted while the file hovered ({resting})")
    check(source.stdout.readline().strip() == "drag ended: copied", "the drop target did not take the file")
    # The source serves the file's URL until the target has read it.
    time.sleep(1.0)
    editor = a11y.window("Vistrel 編集")
    check(editor and a11y.find(editor, "決定"), "the dropped file did not open in the editor")
    if editor:
        locate(editor, (360, 240), 1)
    source.kill()

# A damaged file.
damaged = os.path.join(PICTURES, "Damaged.png")
with open(damaged, "wb") as file:
    file.write(b"\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\x10\0")
run(VISTREL, "edit", damaged, timeout=20)
texts = alert_texts()
check(texts[:2] == ["画像を開けませんでした", "対応している画像ファイルを選択してください。"],
      f"the damaged-file alert reads {texts}")
check(app.process.poll() is None, "Vistrel ended after the damaged file")

app.quit()
finish("editor sources")
