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
import json

from PIL import ImageDraw

import vistrel_a11y as a11y
from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

HELPERS = os.path.dirname(PROBE)
OUTPUT = os.environ.get("VISTREL_E2E_OUTPUT", SESSION)
BORDER = (1, 254, 3)
PICTURES = os.path.join(HOME, "Pictures")


def make_picture(name, width, height):
    """A picture framed by 4 pixels of a colour found nowhere else, so it can be found on screen."""
    picture = Image.new("RGB", (width, height), BORDER)
    draw = ImageDraw.Draw(picture)
    draw.rectangle([4, 4, width - 5, height - 5], fill=(236, 231, 220))
    for x in range(8, width - 8, 24):
        draw.rectangle([x, 8, x + 11, height - 9], fill=(40 + x % 180, 90, 200 - x % 150))
    draw.ellipse([width // 3, height // 4, width // 3 + height // 2, height // 4 + height // 2], fill=(250, 200, 40))
    os.makedirs(PICTURES, exist_ok=True)
    path = os.path.join(PICTURES, name)
    picture.save(path)
    return path


def locate(window, size, zoom):
    """Where the picture's top-left pixel is on the screen, found by its frame in a screenshot."""
    x, y, width, height = a11y.extents(window)
    shot = screen().crop((x, y, x + width, y + height))
    masks = [band.point(lambda value, wanted=wanted: 255 if value == wanted else 0)
             for band, wanted in zip(shot.split(), BORDER)]
    box = ImageChops.multiply(ImageChops.multiply(masks[0], masks[1]), masks[2]).getbbox()
    if not check(box, "the picture is not on the screen"):
        return None
    found = (box[2] - box[0], box[3] - box[1])
    check(found == (size[0] * zoom, size[1] * zoom), f"the picture shows at {found}, not {size} × {zoom}")
    return x + box[0], y + box[1]


class Canvas:
    """The editor's canvas as the user sees it: image points (origin bottom-left, y up) to screen."""

    def __init__(self, window, size, zoom=1):
        self.size, self.zoom = size, zoom
        self.origin = locate(window, size, zoom) or (0, 0)

    def screen_point(self, point):
        return (self.origin[0] + round(point[0] * self.zoom),
                self.origin[1] + round((self.size[1] - point[1]) * self.zoom))

    def drag(self, path):
        """A press at the first point, a pause at each of the others, a release at the last."""
        move(*self.screen_point(path[0]))
        time.sleep(0.05)
        run("xdotool", "mousedown", "1")
        for point in path[1:]:
            time.sleep(0.04)
            move(*self.screen_point(point))
        time.sleep(0.05)
        run("xdotool", "mouseup", "1")
        time.sleep(0.2)


def expected_picture(source, steps, name):
    """The document flattened in-process from the same input."""
    script = os.path.join(SESSION, f"{name}.json")
    output = os.path.join(SESSION, f"{name}-expected.png")
    with open(script, "w", encoding="utf-8") as file:
        json.dump({"source": source, "output": output, "steps": steps}, file, ensure_ascii=False)
    replay = run(os.path.join(HELPERS, "replay_editor"), script)
    check(replay.returncode == 0, f"the replay failed: {replay.stderr}")
    print(f"{name}: replayed, {replay.stdout.strip()}", flush=True)
    if replay.returncode == 0:
        Image.open(output).save(os.path.join(OUTPUT, f"{name}-expected.png"))
    return Image.open(output) if replay.returncode == 0 else None


def open_editor(path):
    run(VISTREL, "edit", path, timeout=20)
    window = a11y.window("Vistrel 編集")
    if check(window, f"'vistrel edit {path}' opened no editor window"):
        # The window is fitted to the screen once framed, and the canvas centred.
        time.sleep(1.2)
    return window


def press(window, name):
    button = a11y.find(window, name)
    if check(button, f"no control named {name}"):
        a11y.click(button)


def saved_beside(source, timeout=10):
    edited = source[:-len(".png")] + "_edited.png"
    check(wait_until(lambda: os.path.exists(edited), timeout), f"{os.path.basename(edited)} was not written")
    time.sleep(0.3)
    return Image.open(edited) if os.path.exists(edited) else None


def compare(actual, expected, what):
    if actual is None or expected is None:
        return
    problem = differs(expected, actual)
    check(problem is None, f"{what}: {problem}")


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
