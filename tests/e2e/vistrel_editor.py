"""Helpers of the editor's end-to-end tests: pictures that can be found on the screen, the canvas
mapping from image points to the screen, and the in-process replay of an editor session."""
import json

from PIL import ImageDraw

import vistrel_a11y as a11y
from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

HELPERS = os.path.dirname(PROBE)
OUTPUT = os.environ.get("VISTREL_E2E_OUTPUT", SESSION)
os.makedirs(OUTPUT, exist_ok=True)
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


def compare(actual, expected, what):
    if actual is None or expected is None:
        return
    problem = differs(expected, actual)
    check(problem is None, f"{what}: {problem}")
