#!/usr/bin/python3
"""The editor as a user works in it, with the real pointer and keyboard (xdotool) on a real X server:

1. A PNG opened through the running instance ("vistrel edit FILE") gets a rectangle, an arrow, a
   freehand stroke, a mosaic and a text box typed in Latin and Japanese letters; "決定" writes
   NAME_edited.png beside it, equal pixel for pixel to the same document flattened in-process from
   the known input, and puts it on the clipboard.
2. A box is selected, moved and resized by its handle in edit mode; undo and redo from the keyboard;
   then at 200% a circle is drawn; Return saves. The result holds every step where it belongs.
The Japanese text is typed by xdotool as Unicode characters (there is no input-method server in the
test desktop); composition through an input method is covered by the widget tests."""
import vistrel_a11y as a11y
from vistrel_editor import *  # noqa: F401,F403 - the helpers of the editor tests

app = Vistrel(a11y.ENVIRONMENT)

# 1. Every tool, then "決定".
first = make_picture("Shot.png", 640, 400)
window = open_editor(first)
if window:
    canvas = Canvas(window, (640, 400))
    steps = []

    def draw(tool, path):
        if tool:
            press(window, tool)
            steps.append({"tool": tool})
        canvas.drag(path)
        steps.append({"drag": path})

    draw(None, [(40, 360), (120, 320), (200, 260)])
    draw("矢印", [(250, 350), (320, 300), (400, 250)])
    draw("フリーハンド", [(60, 200), (80, 224), (100, 196), (120, 226), (140, 194), (160, 222), (180, 200)])
    draw("モザイク", [(420, 380), (520, 330), (600, 280)])
    draw("文字入力", [(300, 150)])
    field = wait_until(lambda: [node for node in a11y.descendants(window)
                                if node.get_role_name() == "text" and a11y.is_focused(node)], 5)
    check(field, "the new text box did not take the keyboard")
    run("xdotool", "type", "--delay", "40", "Hello ")
    run("xdotool", "type", "--delay", "80", "日本語")
    time.sleep(0.4)
    typed = a11y.text(field[0]) if field else ""
    check(typed == "Hello 日本語", f"the text box holds {typed!r}")
    steps.append({"text": "Hello 日本語"})
    x, y, width, height = a11y.extents(window)
    screen().crop((x, y, x + width, y + height)).save(os.path.join(OUTPUT, "editor.png"))

    press(window, "決定")
    saved = saved_beside(first)
    compare(saved, expected_picture(first, steps, "first"), "the edited picture")
    check(wait_until(lambda: not editor_windows()), "the editor stayed open after saving")
    clipboard = clipboard_png()
    compare(clipboard, saved, "the clipboard's picture")

# 2. Select, move, resize, undo and redo; then draw at 200%.
second = make_picture("Second.png", 300, 200)
window = open_editor(second)
if window:
    canvas = Canvas(window, (300, 200))
    canvas.drag([(40, 170), (120, 110), (190, 50)])
    press(window, "編集モード")
    canvas.drag([(115, 110), (125, 102), (145, 90)])
    canvas.drag([(220, 30), (240, 22), (260, 15)])
    key("ctrl+z")
    key("ctrl+z")
    key("ctrl+shift+z")
    time.sleep(0.3)
    press(window, "200%")
    press(window, "描画モード")
    press(window, "丸枠")
    canvas = Canvas(window, (300, 200), zoom=2)
    canvas.drag([(20, 190), (70, 150), (120, 110)])
    key("Return")
    saved = saved_beside(second)
    compare(saved, expected_picture(second, [
        {"drag": [(40, 170), (120, 110), (190, 50)]}, {"mode": "edit"},
        {"drag": [(115, 110), (125, 102), (145, 90)]}, {"drag": [(220, 30), (240, 22), (260, 15)]},
        {"undo": 1}, {"undo": 1}, {"redo": 1},
        {"zoom": 2}, {"mode": "draw"}, {"tool": "丸枠"}, {"drag": [(20, 190), (70, 150), (120, 110)]},
    ], "second"), "the picture edited in edit mode and at 200%")

app.quit()
finish("editor")
