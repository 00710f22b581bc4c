"""Vistrel's windows and controls as the accessibility bus (AT-SPI) shows them to a screen reader:
found by their names, wherever the layout put them, and pressed with the real pointer (xdotool).
Vistrel must be started with ENVIRONMENT so that Qt serves the bus."""
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

from vistrel_e2e import move, run, wait_until  # noqa: E402

ENVIRONMENT = {"QT_LINUX_ACCESSIBILITY_ALWAYS_ON": "1"}


def application():
    desktop = Atspi.get_desktop(0)
    for index in range(desktop.get_child_count()):
        app = desktop.get_child_at_index(index)
        if app is not None and app.get_name() == "Vistrel":
            return app
    return None


def descendants(node):
    """Every node under `node`, depth first; nodes that went away on the way are skipped."""
    try:
        count = node.get_child_count()
    except gi.repository.GLib.Error:
        return
    for index in range(count):
        try:
            child = node.get_child_at_index(index)
        except gi.repository.GLib.Error:
            continue
        if child is None:
            continue
        yield child
        yield from descendants(child)


def window(title, timeout=10):
    """The shown top-level window of Vistrel with that title."""
    def find():
        app = application()
        if app is None:
            return None
        for index in range(app.get_child_count()):
            child = app.get_child_at_index(index)
            if child is not None and child.get_name() == title and is_showing(child):
                return child
        return None
    return wait_until(find, timeout)


def find_all(root, name, role=None):
    found = []
    for node in descendants(root):
        try:
            if node.get_name() == name and (role is None or node.get_role_name() == role):
                found.append(node)
        except gi.repository.GLib.Error:
            continue
    return found


def find(root, name, role=None, timeout=5):
    """The first node under `root` with that name (and role), waiting for it to appear."""
    nodes = wait_until(lambda: find_all(root, name, role), timeout)
    return nodes[0] if nodes else None


def states(node):
    return node.get_state_set()


def is_showing(node):
    return states(node).contains(Atspi.StateType.SHOWING)


def is_checked(node):
    return states(node).contains(Atspi.StateType.CHECKED)


def is_enabled(node):
    return states(node).contains(Atspi.StateType.ENABLED)


def is_focused(node):
    return states(node).contains(Atspi.StateType.FOCUSED)


def text(node):
    return Atspi.Text.get_text(node, 0, Atspi.Text.get_character_count(node))


def extents(node):
    """(x, y, width, height) on the screen."""
    box = node.get_extents(Atspi.CoordType.SCREEN)
    return box.x, box.y, box.width, box.height


def center(node):
    x, y, width, height = extents(node)
    return x + width // 2, y + height // 2


def click(node, pause=0.3):
    """A real click of the left button in the middle of the control."""
    move(*center(node))
    time.sleep(0.05)
    run("xdotool", "click", "1")
    time.sleep(pause)
