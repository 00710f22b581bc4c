#!/usr/bin/python3
"""Vistrel on desktops that lack a service, one row each: no session bus, no notification server, no
tray, no sound, and a capture shortcut another client holds. In every row it starts, a dragged capture
lands on the clipboard and in the folder equal to the desktop, the editor opens (through the
notification where one can be posted, else at once) and saves NAME_edited.png, and the logs say what
was missing. The test desktop has no audio device, so the sound line shows in every row; the sound row
also hides the sound theme and checks that the display bell rings in its place. Where the notification
is posted it reads as the edit notification. In the row where another client holds the capture shortcut,
that client then lets go, and a settings change from the tray menu (saved at once, and every save
registers the shortcuts again) makes the shortcut work, also after a restart."""

from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

TRAY_LINE = "status item: no system tray to show the icon in; it appears once a tray starts"
# The reason is libcanberra's own and depends on the audio stack: no sound file, or no device where ALSA
# goes through a PipeWire that does not run.
SOUND_LINE = "sound camera-shutter not played (libcanberra: "
NO_SERVER = "no notification server answers on the session bus"
NOTIFICATION = ("Vistrel: 編集できます", "通知をクリックして編集画面を開きます。")
NOTIFIED = ["Vistrel: 通知許可が付与されました", "Vistrel: 通知スケジュール成功"]
NO_BUS = f"there is no session bus (Failed to connect to socket {SESSION}/no-bus: No such file or directory)"


def private_bus():
    """A session bus that starts no services on demand, so nothing answers for notifications."""
    config = os.path.join(SESSION, "bare-bus.conf")
    with open(config, "w") as out:
        out.write("<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen><policy context=\"default\">"
                  "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/><allow own=\"*\"/>"
                  "</policy></busconfig>")
    read, write = os.pipe()
    daemon = subprocess.Popen(["dbus-daemon", f"--config-file={config}", "--nofork", f"--print-address={write}"],
                              pass_fds=(write,),
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    os.close(write)
    with os.fdopen(read) as address:
        return daemon, address.readline().strip()


def hold_capture_shortcut():
    holder = subprocess.Popen([PROBE, "grab-key", "0x73", "0x41"], stdout=subprocess.PIPE, text=True)
    check(holder.stdout.readline().strip() == "grabbed", "the other client could not grab the key")
    return holder


def toggle_notifications():
    """Right-clicks the tray icon and picks "通知を出す" (the fifth entry) with the keyboard."""
    for _ in range(10):
        move(16, 16)
        run("xdotool", "click", "3")
        time.sleep(0.4)
        if overlay_windows():
            for _ in range(5):
                key("Down")
            key("Return")
            return True
    return False


def capture_opens_editor_directly(label):
    start = len(log_lines())
    if not start_selection():
        return
    drag((500, 400), (900, 700))
    check(wait_for_save(start), f"{label}: the capture saved nothing")
    check(wait_until(editor_windows), f"{label}: the editor did not open at once")
    check(notifications_shown() == 0, f"{label}: a notification was posted although they are off")


def free_the_shortcut(label, app, holder):
    """The other client lets go; switching notifications off in the tray menu saves and registers again."""
    holder.kill()
    holder.wait()
    run("dunstctl", "close-all")
    check(toggle_notifications(), f"{label}: the tray menu did not open")
    check(wait_until(lambda: settings().get("VistrelOpenEditorViaNotification") is False),
          f"{label}: the notification setting was not saved as off")
    capture_opens_editor_directly(f"{label}, after the settings change")
    app.quit()
    app = Vistrel(tag="restarted")
    check(settings().get("VistrelOpenEditorViaNotification") is False, "the setting did not survive the restart")
    capture_opens_editor_directly(f"{label}, after the restart")
    return app


# name, environment of Vistrel, a tray runs, the notification is posted, the trigger's shortcut (None:
# "vistrel select"), diagnostics lines and system-log lines that must be there, a helper to start first
# and what to do with it at the end.
ROWS = [
    ("no session bus", {"DBUS_SESSION_BUS_ADDRESS": f"unix:path={SESSION}/no-bus"}, True, False, "shift+super+s", [],
     [f"Vistrel: 通知許可の取得に失敗しました: {NO_BUS}", f"Vistrel: 通知スケジュール失敗: {NO_BUS}"], None, None),
    ("no notification server", "bare bus", True, False, "shift+super+s", [],
     [f"Vistrel: 通知許可の取得に失敗しました: {NO_SERVER} (The name org.freedesktop.Notifications was not "
      "provided by any .service files)",
      f"Vistrel: 通知スケジュール失敗: {NO_SERVER} (The name org.freedesktop.Notifications was not provided by "
      "any .service files)"], None, None),
    ("no tray", {}, False, True, "shift+super+s", [TRAY_LINE], NOTIFIED, None, None),
    ("no sound", {"XDG_DATA_DIRS": f"{SESSION}/no-data"}, True, True, "shift+super+s", [SOUND_LINE], NOTIFIED,
     None, None),
    ("capture shortcut held", {}, True, True, None, [],
     ["Vistrel: ホットキーの登録に失敗しました: 10"] + NOTIFIED, hold_capture_shortcut,
     free_the_shortcut),
]


def capture_edit_save(label, app, shortcut, notified):
    before = len(log_lines())
    if not start_selection(shortcut, app.environment):
        return
    drag((600, 300), (1100, 650))
    path = wait_for_save(before)
    if not shows_desktop(path, (600, 300, 1100, 650), label):
        return
    saved = Image.open(path)
    clip = clipboard_png()
    check(clip is not None and differs(saved, clip) is None, f"{label}: the clipboard does not hold the capture")
    if notified:
        check(wait_until(lambda: notifications_shown() == 1), f"{label}: dunst shows no notification")
        check(editor_windows() == [], f"{label}: the editor opened before the notification was clicked")
        run("dunstctl", "action", "0")
    if not check(wait_until(editor_windows), f"{label}: the editor did not open"):
        return
    check(notified or notifications_shown() == 0, f"{label}: a notification shows")
    if notified:
        texts = set(notification_texts())
        check(texts == {NOTIFICATION}, f"{label}: the notifications read {texts}")
    time.sleep(0.5)
    key("Return")
    edited = saved_beside(path)
    check(edited and differs(saved, edited) is None, f"{label}: the unchanged edit differs from the capture")
    check(wait_until(lambda: not editor_windows()), f"{label}: the editor stayed open after saving")


for label, environment, tray_runs, notified, shortcut, traces, system_lines, start_first, then in ROWS:
    print(f"--- {label}", flush=True)
    daemon = None
    if environment == "bare bus":
        daemon, address = private_bus()
        environment = {"DBUS_SESSION_BUS_ADDRESS": address}
    tray = subprocess.Popen(["trayer", "--edge", "top", "--align", "left", "--height", "32", "--widthtype", "pixel",
                             "--width", "200"]) if tray_runs else None
    if tray:
        wait_until(lambda: run("xdotool", "search", "--class", "trayer").stdout.strip())
    helper = start_first() if start_first else None
    before = len(log_lines())
    app = Vistrel(environment, tag=label.replace(" ", "-"))
    if helper:
        # The held shortcut never reaches Vistrel; the repeat shortcut, free, does.
        key("shift+super+s")
        key("shift+super+r")
        check(wait_for_line("repeat capture skipped: no previous selection", before), f"{label}: repeat is not taken")
        check(not wait_for_line("hotkey captured kind=selection", before, timeout=0.5),
              f"{label}: the shortcut held by the other client reached Vistrel")
    bells = BellCounter()
    capture_edit_save(label, app, shortcut, notified)
    for line in traces:
        check(any(entry.startswith(line) for entry in log_lines()[before:]),
              f"{label}: the diagnostics log lacks: {line}")
    check(tray_runs != (TRAY_LINE in log_lines()[before:]), f"{label}: the tray line does not match the desktop")
    if label == "no sound":
        check(bells.count() == 1, f"{label}: the bell rang {bells.count()} times in place of the shutter sound")
    bells.stop()
    for line in system_lines:
        if not check(wait_until(lambda: line in app.system_log().splitlines()), f"{label}: the system log lacks: {line}"):
            print("\n".join(entry for entry in app.system_log().splitlines() if not entry.startswith("ALSA")))
    if then:
        app = then(label, app, helper)
    if environment.get("DBUS_SESSION_BUS_ADDRESS", "").endswith("/no-bus"):
        app.process.terminate()  # nothing can reach it to ask it to quit
        app.process.wait(timeout=10)
    else:
        app.quit()
    run("dunstctl", "close-all")
    for process in (helper, tray, daemon):
        if process:
            process.kill()
            process.wait()
finish("missing services")
