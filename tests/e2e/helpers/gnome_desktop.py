#!/usr/bin/python3
"""GNOME's own services, for the GNOME end-to-end session and its tests: Mutter's monitor layout
(org.gnome.Mutter.DisplayConfig), the Screenshot portal's picture of the whole layout (the pixel oracle,
which the sway portal test asks for too), and input through Mutter's RemoteDesktop, whose absolute
pointer moves within a ScreenCast stream of one monitor, in that monitor's pixels.

  gnome_desktop.py layout CONNECTOR:X,Y,SCALE ...   the layout, in pixels (GNOME's default), first primary
  gnome_desktop.py screenshot PATH                  the portal's picture of the layout, moved to PATH
  gnome_desktop.py key KEYSYM                       presses and releases one key (a keysym name)"""
import os
import shutil
import sys
import time

import dbus
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

DBusGMainLoop(set_as_default=True)
BUS = dbus.SessionBus()
MUTTER = "org.gnome.Mutter"
KEYSYMS = {"Escape": 0xff1b, "space": 0x20, "Return": 0xff0d, "Shift_L": 0xffe1, "Super_L": 0xffeb, "s": 0x73,
           "r": 0x72}
BUTTONS = {"left": 0x110, "right": 0x111}


def _wait(condition, seconds):
    """Runs the main loop until condition() holds or the time is up; whether it holds."""
    loop = GLib.MainLoop()
    deadline = time.monotonic() + seconds

    def poll():
        if condition() or time.monotonic() > deadline:
            loop.quit()
            return False
        return True
    GLib.timeout_add(10, poll)
    loop.run()
    return condition()


def display_config():
    return dbus.Interface(BUS.get_object(MUTTER + ".DisplayConfig", "/org/gnome/Mutter/DisplayConfig"),
                          MUTTER + ".DisplayConfig")


def monitors():
    """Each active monitor: connector -> (x, y, scale, width and height in pixels), as Mutter lays it out."""
    serial, physical, logical, properties = display_config().GetCurrentState()
    modes = {}
    for (connector, *_), monitor_modes, _ in physical:
        for mode_id, width, height, _rate, _preferred, _scales, mode_properties in monitor_modes:
            if mode_properties.get("is-current"):
                modes[str(connector)] = (str(mode_id), int(width), int(height))
    placed = {}
    for x, y, scale, _transform, _primary, members, _ in logical:
        for connector, *_ in members:
            _, width, height = modes[str(connector)]
            placed[str(connector)] = (int(x), int(y), float(scale), width, height)
    return placed


def set_layout(places):
    """Places monitors: [(connector, x, y, scale)], the first primary, for this session only."""
    serial, physical, _, _ = display_config().GetCurrentState()
    # A monitor that is off has no current mode: it comes back in its preferred one.
    current = {}
    for (connector, *_), modes, _ in physical:
        for mode_id, *_, props in modes:
            if props.get("is-current") or (props.get("is-preferred") and str(connector) not in current):
                current[str(connector)] = str(mode_id)
    logical = [(dbus.Int32(x), dbus.Int32(y), dbus.Double(scale), dbus.UInt32(0), i == 0,
                [(connector, current[connector], dbus.Dictionary({}, signature="sv"))])
               for i, (connector, x, y, scale) in enumerate(places)]
    display_config().ApplyMonitorsConfig(serial, dbus.UInt32(1), logical, dbus.Dictionary({}, signature="sv"))


def screenshot(path=None, timeout=20):
    """The Screenshot portal's picture of the whole layout, non-interactive: the file the portal made, or
    that file moved to `path`; None when the portal refused or did not answer."""
    token = f"vistrel_e2e_{os.getpid()}_{time.monotonic_ns()}"
    sender = BUS.get_unique_name()[1:].replace(".", "_")
    handle = f"/org/freedesktop/portal/desktop/request/{sender}/{token}"
    answer = {}
    match = BUS.add_signal_receiver(lambda code, results: answer.update(code=int(code), results=results),
                                    "Response", "org.freedesktop.portal.Request", path=handle)
    portal = BUS.get_object("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop")
    portal.Screenshot("", {"handle_token": token, "interactive": False},
                      dbus_interface="org.freedesktop.portal.Screenshot")
    _wait(lambda: answer, timeout)
    match.remove()
    if answer.get("code") != 0:
        return None
    made = str(answer["results"]["uri"]).removeprefix("file://")
    if path is None:
        return made
    shutil.move(made, path)
    return path


class Input:
    """Mutter's RemoteDesktop session: keys by keysym, and a pointer moved within each monitor's
    ScreenCast stream in that monitor's pixels. Lives as long as this object's bus connection."""

    def __init__(self, connectors):
        desktop = BUS.get_object(MUTTER + ".RemoteDesktop", "/org/gnome/Mutter/RemoteDesktop")
        path = desktop.CreateSession(dbus_interface=MUTTER + ".RemoteDesktop")
        session_object = BUS.get_object(MUTTER + ".RemoteDesktop", path)
        self.session = dbus.Interface(session_object, MUTTER + ".RemoteDesktop.Session")
        session_id = session_object.Get(MUTTER + ".RemoteDesktop.Session", "SessionId",
                                        dbus_interface="org.freedesktop.DBus.Properties")
        self.streams = {}
        if connectors:
            cast = BUS.get_object(MUTTER + ".ScreenCast", "/org/gnome/Mutter/ScreenCast")
            cast_path = cast.CreateSession({"remote-desktop-session-id": session_id},
                                           dbus_interface=MUTTER + ".ScreenCast")
            cast_session = dbus.Interface(BUS.get_object(MUTTER + ".ScreenCast", cast_path),
                                          MUTTER + ".ScreenCast.Session")
            self.streams = {c: cast_session.RecordMonitor(c, {}) for c in connectors}
        started = []
        for stream in self.streams.values():
            BUS.add_signal_receiver(lambda node: started.append(node), "PipeWireStreamAdded",
                                    MUTTER + ".ScreenCast.Stream", path=stream)
        self.session.Start()
        if not _wait(lambda: len(started) == len(self.streams), 10):
            raise RuntimeError("Mutter started no screen-cast stream to point within (is PipeWire running?)")
        # The headless seat has a keyboard only once something typed on it (wl-paste needs one), and a
        # client often loses the first key after its keymap changed: a throw-away key does both.
        self.key("Shift_L")

    def key(self, keys):
        """Presses a combination ("Shift_L+Super_L+s") and lets it go again, last key first."""
        keysyms = [dbus.UInt32(KEYSYMS[name]) for name in keys.split("+")]
        for keysym in keysyms:
            self.session.NotifyKeyboardKeysym(keysym, True)
        for keysym in reversed(keysyms):
            self.session.NotifyKeyboardKeysym(keysym, False)
        time.sleep(0.05)

    def move(self, connector, x, y):
        self.session.NotifyPointerMotionAbsolute(self.streams[connector], float(x), float(y))
        time.sleep(0.02)

    def drag(self, connector, start, end, steps=5):
        """Presses at `start`, moves in steps to `end` and releases, in the monitor's pixels."""
        self.move(connector, *start)
        self.session.NotifyPointerButton(dbus.Int32(BUTTONS["left"]), True)
        for step in range(1, steps + 1):
            self.move(connector, start[0] + (end[0] - start[0]) * step / steps,
                      start[1] + (end[1] - start[1]) * step / steps)
        self.session.NotifyPointerButton(dbus.Int32(BUTTONS["left"]), False)


if __name__ == "__main__":
    command, *arguments = sys.argv[1:] or ["help"]
    if command == "layout":
        set_layout([(c, int(x), int(y), float(s)) for c, place in (a.split(":") for a in arguments)
                    for x, y, s in [place.split(",")]])
    elif command == "screenshot":
        sys.exit(0 if screenshot(arguments[0]) else 1)
    elif command == "key":
        Input([]).key(arguments[0])
    else:
        print(__doc__)
        sys.exit(2)
