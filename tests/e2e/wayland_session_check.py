#!/usr/bin/python3
"""Checks the Wayland end-to-end desktop itself: both outputs at their scales, each showing its
wallpaper pixel for pixel in grim's copy, the pointer drawn exactly where wl_pointer put it on either
output, a wtype combination reaching a sway binding, and the notification server on the private bus."""
import struct

import dbus

from vistrel_wayland import *  # noqa: F401,F403 - the helpers of these tests

LAYOUT = {"HEADLESS-1": Output("HEADLESS-1", 0, 0, 1280, 720, 1.0, 1280, 720),
          "HEADLESS-2": Output("HEADLESS-2", 1280, 0, 960, 540, 2.0, 1920, 1080)}
found = {output.name: output for output in outputs()}
check(found == LAYOUT, f"outputs {found}, expected {LAYOUT}")

# Before any pointer exists, so no cursor is drawn.
for name in LAYOUT:
    problem = differs(background(name), screen(name))
    check(problem is None, f"{name} does not show its wallpaper: {problem}")


def with_cursor(picture, x, y, scale):
    """The picture with the Adwaita arrow (sway's cursor here) drawn over it, read from the Xcursor file
    itself at the output's scale, its hot spot on the output-local logical point (x, y)."""
    data = open("/usr/share/icons/Adwaita/cursors/left_ptr", "rb").read()
    for entry in range(struct.unpack_from("<I", data, 12)[0]):
        _, size, position = struct.unpack_from("<III", data, 16 + 12 * entry)
        if size == 24 * scale:
            width, height, hot_x, hot_y = struct.unpack_from("<4I", data, position + 16)
            pixels = data[position + 36:position + 36 + 4 * width * height]
            arrow = Image.frombytes("RGBA", (width, height), pixels, "raw", "BGRa")  # premultiplied ARGB
            drawn = picture.convert("RGBA")
            drawn.alpha_composite(arrow, (x * scale - hot_x, y * scale - hot_y))
            return drawn.convert("RGB")
    return None


# Odd positions far from the layout's origin, one per output: a wrong extent or rounding shows. The
# compositor's blending may differ from ours by one step; a pixel off moves the arrow's edges by far more.
for name, (x, y) in {"HEADLESS-1": (901, 333), "HEADLESS-2": (1613, 411)}.items():
    output = LAYOUT[name]
    move(x, y)
    difference = ImageChops.difference(with_cursor(background(name), x - output.x, y - output.y, int(output.scale)),
                                       screen(name))
    largest = max(high for _, high in difference.getextrema())
    check(largest <= 1, f"pointer at ({x}, {y}) is not drawn there on {name}: {difference.getbbox()} differs by {largest}")

# A key combination from wtype reaches a binding, as a user's binding of a Vistrel command would.
marker = os.path.join(SESSION, "bound")
bindsym("ctrl+shift+4", f"touch {marker}")
key("ctrl+shift+4")
check(wait_until(lambda: os.path.exists(marker), 5), "ctrl+shift+4 from wtype did not reach the sway binding")

notifications = dbus.Interface(dbus.SessionBus().get_object("org.freedesktop.Notifications",
                                                            "/org/freedesktop/Notifications"),
                               "org.freedesktop.Notifications")
server = notifications.GetServerInformation()[0]
check(server == "dunst", f"notification server is {server}, expected dunst")

finish("wayland session check")
