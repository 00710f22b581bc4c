"""KWin's own picture of one output at its native pixels, through org.kde.KWin.ScreenShot2.CaptureScreen,
saved as an RGB PNG: the oracle of the KWin session's tests.

usage: KWIN_SCREENSHOT_PYTHON kwin_screenshot.py OUTPUT OUT.png

KWin answers only a process whose executable a desktop entry grants the interface, so this runs under the
session's own copy of the interpreter ($VISTREL_E2E_KWIN_PYTHON), which run-in-kwin-session.sh grants.
Prints the reply (width, height, stride, format, scale) as JSON; exits 1 with KWin's error when refused."""
import json
import os
import sys

import dbus
from PIL import Image

output, path = sys.argv[1], sys.argv[2]
screenshots = dbus.Interface(dbus.SessionBus().get_object("org.kde.KWin", "/org/kde/KWin/ScreenShot2"),
                             "org.kde.KWin.ScreenShot2")
read_end, write_end = os.pipe()
try:
    reply = screenshots.CaptureScreen(output, {"native-resolution": True}, dbus.types.UnixFd(write_end))
except dbus.DBusException as error:
    print(f"{error.get_dbus_name()}: {error.get_dbus_message()}", file=sys.stderr)
    sys.exit(1)
finally:
    os.close(write_end)
chunks = []
while chunk := os.read(read_end, 1 << 20):
    chunks.append(chunk)
reply = {str(key): value for key, value in reply.items()}
width, height, stride = int(reply["width"]), int(reply["height"]), int(reply["stride"])
# QImage's 32-bit formats (ARGB32 and its relatives) are B, G, R, A in memory on this little-endian machine.
Image.frombuffer("RGBA", (width, height), b"".join(chunks), "raw", "BGRA", stride, 1).convert("RGB").save(path)
print(json.dumps({key: (float(value) if key == "scale" else str(value) if key in ("screen", "type") else int(value))
                  for key, value in reply.items()}))
