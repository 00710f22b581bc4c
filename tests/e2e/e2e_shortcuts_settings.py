#!/usr/bin/python3
"""A capture shortcut another client held at the start works after a settings change from the tray menu:
the change is saved at once, re-registers the shortcuts, takes effect, and survives a restart."""
import subprocess

from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

# Another client holds Shift+Super+S (keysym s, Shift|Mod4) before Vistrel starts.
holder = subprocess.Popen([PROBE, "grab-key", "0x73", "0x41"], stdout=subprocess.PIPE, text=True)
check(holder.stdout.readline().strip() == "grabbed", "the other client could not grab the key")
tray = subprocess.Popen(["trayer", "--edge", "top", "--align", "left", "--height", "32", "--widthtype", "pixel",
                         "--width", "200"])
app = Vistrel()
# How the refused shortcut is reported, and that it never reaches Vistrel, e2e_missing_services.py checks.
check(wait_until(lambda: "Vistrel: ホットキーの登録に失敗しました: 10" in app.system_log()),
      "the capture shortcut was not refused")
holder.kill()
holder.wait()


def toggle_notifications():
    """Right-clicks the tray icon and picks "通知を出す" (the fifth entry) with the keyboard."""
    for _ in range(10):
        move(16, 16)
        run("xdotool", "click", "3")
        time.sleep(0.4)
        menu = [w for w in overlay_windows()]
        if menu:
            for _ in range(5):
                key("Down")
            key("Return")
            return True
    return False


# The settings change: saved at once, and every save registers the shortcuts again, so the capture
# shortcut, free now, works.
before = len(log_lines())
check(toggle_notifications(), "the tray menu did not open")
check(wait_until(lambda: settings().get("VistrelOpenEditorViaNotification") is False),
      "the notification setting was not saved as off")


def capture_opens_editor_directly(label):
    start = len(log_lines())
    if not start_selection():
        return
    drag((500, 400), (900, 700))
    check(wait_for_save(start), f"{label}: the capture saved nothing")
    check(wait_until(editor_windows), f"{label}: the editor did not open at once")
    check(notifications_shown() == 0, f"{label}: a notification was posted although they are off")


capture_opens_editor_directly("after the change")
app.quit()
tray.kill()

app = Vistrel(tag="restarted")
check(settings().get("VistrelOpenEditorViaNotification") is False, "the setting did not survive the restart")
capture_opens_editor_directly("after the restart")
app.quit()
finish("shortcuts and settings")
