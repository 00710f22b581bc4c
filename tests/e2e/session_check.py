#!/usr/bin/python3
"""Checks the end-to-end desktop itself: the root window shows the background pixel for pixel, a
window manager manages windows, and the notification server answers on the private bus."""
import os
import subprocess
import sys

import dbus
from PIL import Image, ImageChops

failures = []

expected = Image.open(os.environ["VISTREL_E2E_BACKGROUND"]).convert("RGB")
root = os.path.join(os.environ["VISTREL_E2E_DIR"], "root.png")
subprocess.run(["import", "-window", "root", root], check=True)
shown = Image.open(root).convert("RGB")
width, height = (int(v) for v in os.environ["VISTREL_E2E_SIZE"].split("x"))
if shown.size != (width, height):
    failures.append(f"root is {shown.size}, expected {(width, height)}")
elif ImageChops.difference(expected, shown).getbbox() is not None:
    failures.append(f"root differs from the background in {ImageChops.difference(expected, shown).getbbox()}")

wm = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], capture_output=True, text=True).stdout
window_id = wm.split()[-1] if "window id" in wm else None
name = subprocess.run(["xprop", "-id", window_id, "_NET_WM_NAME"], capture_output=True, text=True).stdout \
    if window_id else ""
if "Openbox" not in name:
    failures.append(f"no openbox window manager: {wm.strip()} {name.strip()}")

bus_address = os.environ["DBUS_SESSION_BUS_ADDRESS"]
notifications = dbus.Interface(dbus.SessionBus().get_object("org.freedesktop.Notifications",
                                                            "/org/freedesktop/Notifications"),
                               "org.freedesktop.Notifications")
server = notifications.GetServerInformation()[0]
if server != "dunst":
    failures.append(f"notification server is {server}, expected dunst")
if "actions" not in notifications.GetCapabilities():
    failures.append("the notification server reports no actions")

for failure in failures:
    print("FAIL:", failure)
print("session check:", "failed" if failures else "passed", f"(display {os.environ['DISPLAY']}, bus {bus_address})")
sys.exit(1 if failures else 0)
