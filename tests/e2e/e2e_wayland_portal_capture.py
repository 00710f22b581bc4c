#!/usr/bin/python3
"""Captures through the desktop portal's Screenshot call on sway (VISTREL_WAYLAND_CAPTURE=portal), with
PipeWire, xdg-desktop-portal, -wlr and -gtk running in the session: a drag on each output against grim,
one portal call per selection, the portal's file removed while a file beside it stays, and a portal
that fails. Vistrel believes itself on GNOME here, so before the first portal call it says once what
GNOME's permission dialog is for.

The portal's image holds the whole layout at the highest scale: -wlr has grim draw the scale-1 output
upsampled twice with a bilinear filter, and Vistrel averages each 2x2 block back to one pixel. So a
scale-1 capture is the output's pixels blurred by [1 6 1]/8 across and down, which is what is compared
there, within two levels for rounding (grim's, Vistrel's and this test's own). The scale-2 output is
compared pixel for pixel."""
import atexit
import time

from PIL import ImageChops, ImageFilter

from vistrel_wayland import *  # noqa: F401,F403 - the helpers of these tests

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "helpers"))
import gnome_desktop  # noqa: E402 - the portal's own picture, asked as a client would
logs = {name: os.path.join(SESSION, name + ".log") for name in ("pipewire", "wlr", "gtk", "portal")}
servers = []
made = []


@atexit.register
def clean_up():
    """The servers are ours, not the session's, and the file beside the portal's is in a shared folder."""
    for server in reversed(servers):
        server.terminate()
        server.wait(timeout=10)
    for path in made:
        if os.path.exists(path):
            os.remove(path)


def start(name, *command):
    servers.append(subprocess.Popen(list(command), stdout=subprocess.DEVNULL, stderr=open(logs[name], "w")))


def portal_calls():
    with open(logs["portal"], encoding="utf-8", errors="replace") as log:
        return log.read().count("Handle Screenshot")


def blurred_like_the_portal(x, y, width, height):
    """grim's copy of a scale-1 region, blurred as the portal's upsampling and Vistrel's reduction do."""
    around = screen_region(x - 1, y - 1, width + 2, height + 2)
    kernel = ImageFilter.Kernel((3, 3), [1, 6, 1, 6, 36, 6, 1, 6, 1], 64)
    return around.filter(kernel).crop((1, 1, width + 1, height + 1)) if around else None


def largest_difference(expected, actual):
    if expected.size != actual.size:
        return f"size {actual.size}, expected {expected.size}"
    return max(high for _, high in ImageChops.difference(expected, actual.convert("RGB")).getextrema())


missing = [path for path in ("/usr/bin/pipewire", "/usr/libexec/xdg-desktop-portal",
                             "/usr/libexec/xdg-desktop-portal-wlr", "/usr/libexec/xdg-desktop-portal-gtk")
           if not os.path.exists(path)]
if missing:
    print(f"SKIP: not installed (scripts/setup.sh test installs them): {missing}")
    sys.exit(77)

start("pipewire", "pipewire")
time.sleep(0.3)
start("wlr", "/usr/libexec/xdg-desktop-portal-wlr")
start("gtk", "/usr/libexec/xdg-desktop-portal-gtk")
start("portal", "/usr/libexec/xdg-desktop-portal", "--verbose")
providing = lambda: "providing portal org.freedesktop.portal.Screenshot" in open(logs["portal"]).read()  # noqa: E731
if not check(wait_until(providing, 20), "xdg-desktop-portal offers no Screenshot portal"):
    for name, path in logs.items():
        print(f"--- {name} ---\n{open(path).read()[-2000:]}")
    finish("wayland portal capture")

move(5, 5)
portal_file = gnome_desktop.screenshot()
folder = None
if check(portal_file, "the portal gave no file"):
    folder = os.path.dirname(portal_file)
    os.remove(portal_file)
    unrelated = os.path.join(folder, f"vistrel-e2e-unrelated-{os.getpid()}.png")
    made.append(unrelated)
    Image.new("RGB", (4, 4), (1, 2, 3)).save(unrelated)

app = Vistrel({"VISTREL_WAYLAND_CAPTURE": "portal", "XDG_CURRENT_DESKTOP": "GNOME"})
check("Vistrel: wayland capture via the Screenshot portal" in app.system_log(),
      f"the system log does not name the portal: {app.system_log()}")
bindsym("shift+mod4+s", f"{VISTREL} select")

for label, start_at, end_at in [("scale 1", (200, 150), (520, 390)), ("scale 2", (1400, 100), (1750, 330))]:
    rect = (start_at[0], start_at[1], end_at[0] - start_at[0], end_at[1] - start_at[1])
    move(start_at[0] - 40, start_at[1] - 40)
    expected = blurred_like_the_portal(*rect) if label == "scale 1" else screen_region(*rect)
    calls = portal_calls()
    before = len(log_lines())
    if not select_by_binding():
        continue
    check(portal_calls() == calls + 1, f"{label}: the freeze made {portal_calls() - calls} portal calls, not one")
    drag(start_at, end_at)
    path = wait_for_save(before)
    if check(path, f"{label}: nothing saved") and expected:
        difference = largest_difference(expected, Image.open(path))
        allowed = 2 if label == "scale 1" else 0
        check(not isinstance(difference, str) and difference <= allowed,
              f"{label}: the file differs from grim's copy of {rect} by {difference} (allowed {allowed})")
    if folder:
        check(not os.path.exists(portal_file), f"{label}: the portal's file {portal_file} is still there")
        check(os.path.exists(unrelated), f"{label}: {unrelated}, beside the portal's file, was removed")
    time.sleep(1.1)  # file names carry seconds

told = [body for title, body in notification_texts() if title == "Vistrel: 画面の撮影の確認"]
check(len(told) == 1 and told[0].startswith("続いて GNOME が"), f"the permission notice was given {len(told)} times")

# Without its backend the portal answers with a failure, which is the desktop refusing: the system log
# says so once, the session ends as on a refused permission, and nothing shows or is saved.
servers[1].terminate()
servers[1].wait(timeout=10)
files = saved_files()
before = len(log_lines())
key("shift+super+s")
check(wait_until(lambda: "Vistrel: 画面収録の許可が必要です。" in app.system_log(), 30),
      f"the refusal did not end the session as a refused permission: {app.system_log()}")
refusals = app.system_log().count("Vistrel: no screen image: the Screenshot portal")
check(refusals == 1, f"the system log tells of {refusals} portal failures for one selection: {app.system_log()}")
time.sleep(0.5)
check(not wait_for_line("showSelectionWindow screens=", before, timeout=0.1), "an overlay showed after the refusal")
check([w for w in windows() if w["app_id"] == "vistrel"] == [], f"windows stayed after the refusal: {windows()}")
check(saved_files() == files, "a capture without the portal's image saved a file")

app.quit()
finish("wayland portal capture")
