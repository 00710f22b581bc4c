#!/usr/bin/python3
"""The settings window edits every setting with the real pointer and keyboard (xdotool), finding its
controls through the accessibility bus; the values are in the settings file and come back after a
restart. Cancelling the folder chooser changes nothing. Ctrl+Q closes the window, not Vistrel. On a
1280x800 screen (a desktop of its own) the whole window, title bar included, opens on the screen, also
when it comes back from being minimized."""
import vistrel_a11y as a11y
from vistrel_editor import OUTPUT  # noqa: F401 - where the screenshots go
from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

TITLE = "Vistrel 設定"
CAPTURE = "現在のショートカット"
REPEAT = "繰り返し撮影ショートカット"
SHOTS = os.path.join(HOME, "Shots")
AUTOSTART = os.path.join(os.environ["XDG_CONFIG_HOME"], "autostart", "vistrel.desktop")


def frame_and_work_area():
    """The settings window's frame (title bar and borders included) and the work area, as (x, y, x2, y2)."""
    found = run("xdotool", "search", "--onlyvisible", "--name", f"^{TITLE}$").stdout.split()
    if not found:
        return None, None
    window = found[0]
    info = run("xwininfo", "-id", window).stdout
    x, y, width, height = (int(re.search(rf"{label}:\s+(-?\d+)", info).group(1))
                           for label in ("Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))
    extents = re.findall(r"\d+", run("xprop", "-id", window, "_NET_FRAME_EXTENTS").stdout.split("=")[-1])
    left, right, top, bottom = (int(value) for value in extents) if len(extents) == 4 else (0, 0, 0, 0)
    area = [int(value) for value in run("xprop", "-root", "_NET_WORKAREA").stdout.split("=")[1].split(",")[:4]]
    return (x - left, y - top, x + width + right, y + height + bottom), (area[0], area[1], area[0] + area[2],
                                                                      area[1] + area[3])


def check_on_screen(label):
    frame, area = wait_until(lambda: frame_and_work_area()[0] and frame_and_work_area(), 5) or (None, None)
    check(frame and area[1] <= frame[1] and frame[3] <= area[3] and area[0] <= frame[0] and frame[2] <= area[2],
          f"{label}: the settings window's frame {frame} is not within the work area {area}")
    return frame


if sys.argv[3:] == ["short-screen"]:
    app = Vistrel()
    run(VISTREL, "settings", timeout=20)
    time.sleep(0.8)
    check_on_screen("first opening")
    # Dragged up by its title bar beyond the top edge, then minimized: it opens fitted again.
    window = run("xdotool", "search", "--onlyvisible", "--name", f"^{TITLE}$").stdout.split()
    if check(window, "the settings window did not open"):
        run("xdotool", "windowmove", window[0], "200", "-100")
        run("xdotool", "windowminimize", "--sync", window[0])
        run(VISTREL, "settings", timeout=20)
        time.sleep(0.8)
        check_on_screen("from minimized")
    app.quit()
    finish("settings window on a short screen")


def open_settings():
    run(VISTREL, "settings", timeout=20)
    window = a11y.window(TITLE)
    if check(window, "'vistrel settings' showed no settings window"):
        time.sleep(0.8)
    return window


def control(window, name, role=None):
    node = a11y.find(window, name, role)
    check(node, f"the settings window has no control named {name}")
    return node


def replace_text(window, name, typed):
    field = control(window, name, "text")
    if field:
        a11y.click(field)
        key("ctrl+a")
        run("xdotool", "type", "--delay", "30", typed)
        time.sleep(0.3)
    return field


def toggle(window, name):
    node = control(window, name)
    if node:
        a11y.click(node)
    return node


def read(window):
    """What the form shows, as a user reads it."""
    shown = {}
    for name in (f"{CAPTURE} 有効なキー", f"{REPEAT} 有効なキー", "ファイル名の接頭詞", "保存先フォルダ"):
        node = a11y.find(window, name, "text")
        shown[name] = a11y.text(node) if node else None
    for name in (f"{CAPTURE} ⌘", f"{CAPTURE} ⌥", f"{CAPTURE} ⌃", f"{CAPTURE} ⇧", f"{REPEAT} ⌘", f"{REPEAT} ⌥",
                 f"{REPEAT} ⌃", f"{REPEAT} ⇧", "日付をファイル名に付与", "通知を出してクリックで編集画面を開く",
                 "自動起動時、既存の編集画面を残して新しい編集画面を開く", "ログイン時に自動起動"):
        node = a11y.find(window, name)
        shown[name] = a11y.is_checked(node) if node else None
    return shown


EXPECTED = {
    f"{CAPTURE} 有効なキー": "D", f"{REPEAT} 有効なキー": "G", "ファイル名の接頭詞": "Shot", "保存先フォルダ": SHOTS,
    f"{CAPTURE} ⌘": True, f"{CAPTURE} ⌥": True, f"{CAPTURE} ⌃": False, f"{CAPTURE} ⇧": False,
    f"{REPEAT} ⌘": True, f"{REPEAT} ⌥": False, f"{REPEAT} ⌃": True, f"{REPEAT} ⇧": True,
    "日付をファイル名に付与": False, "通知を出してクリックで編集画面を開く": False,
    "自動起動時、既存の編集画面を残して新しい編集画面を開く": True, "ログイン時に自動起動": True,
}

STORED = {
    "VistrelHotKeyKey": "D", "VistrelHotKeyModifiers": 0x100000 | 0x80000, "VistrelRepeatHotKeyKey": "G",
    "VistrelRepeatHotKeyModifiers": 0x100000 | 0x40000 | 0x20000, "VistrelFilenamePrefix": "Shot",
    "VistrelIncludeDate": False, "VistrelSaveFolderPath": SHOTS, "VistrelOpenEditorViaNotification": False,
    "VistrelKeepExistingEditorWindowOnAutoOpen": True, "VistrelLaunchAtLoginEnabled": True,
}

app = Vistrel(a11y.ENVIRONMENT)
window = open_settings()
if window:
    x, y, width, height = a11y.extents(window)
    screen().crop((x, y, x + width, y + height)).save(os.path.join(OUTPUT, "settings.png"))
    keep_window = control(window, "自動起動時、既存の編集画面を残して新しい編集画面を開く")
    check(keep_window and not a11y.is_enabled(keep_window), "window reuse is not greyed out in notification mode")
    check(a11y.find(window, "通知経由で開くときはこの設定は使われません。"), "the unused-setting caption is missing")
    for name in ("アップデートを自動的に確認", "今すぐ確認"):
        node = control(window, name)
        check(node and not a11y.is_enabled(node), f"{name} is offered without an update feed")
    reason = a11y.find(window, "このビルドにはアップデートの配信元が設定されていないため、アップデートを確認できません。")
    check(reason and a11y.is_showing(reason), "the update section does not say why it cannot check")

    # Typed "d" is stored as "D".
    replace_text(window, f"{CAPTURE} 有効なキー", "d")
    toggle(window, f"{CAPTURE} ⌥")
    toggle(window, f"{CAPTURE} ⇧")
    display = a11y.find(window, "⌥⌘D")
    check(display, "the capture shortcut does not read ⌥⌘D")
    replace_text(window, f"{REPEAT} 有効なキー", "g")
    toggle(window, f"{REPEAT} ⌃")
    replace_text(window, "ファイル名の接頭詞", "Shot")
    toggle(window, "日付をファイル名に付与")

    # The folder chooser, cancelled.
    before = a11y.text(control(window, "保存先フォルダ", "text"))
    toggle(window, "変更")
    chooser = wait_until(lambda: [w for w in run("xdotool", "search", "--onlyvisible", "--name", ".").stdout.split()
                                  if run("xdotool", "getwindowname", w).stdout.strip() not in
                                  ("", TITLE, "Vistrel 編集")
                                  and "Find Directory" in run("xdotool", "getwindowname", w).stdout], 5)
    check(chooser, "the folder chooser did not open")
    key("Escape")
    time.sleep(0.5)
    check(a11y.text(control(window, "保存先フォルダ", "text")) == before, "cancelling the chooser changed the folder")

    os.makedirs(SHOTS, exist_ok=True)
    toggle(window, "通知を出してクリックで編集画面を開く")
    check(a11y.find(window, "オフ: 通知を出さずに自動で編集画面を開く。"), "the notification caption did not follow")
    check(a11y.is_enabled(control(window, "自動起動時、既存の編集画面を残して新しい編集画面を開く")),
          "window reuse stayed greyed out")
    toggle(window, "自動起動時、既存の編集画面を残して新しい編集画面を開く")
    toggle(window, "ログイン時に自動起動")
    check(wait_until(lambda: os.path.exists(AUTOSTART)), "no autostart entry was written")
    replace_text(window, "保存先フォルダ", SHOTS)
    key("Return")
    check(wait_until(lambda: a11y.find(window, "現在の保存先: " + SHOTS, timeout=0.2)),
          "the current-folder caption does not show the new folder")

    shown = read(window)
    check(shown == EXPECTED, f"the form shows {shown}")
    key("ctrl+q")
    check(wait_until(lambda: not a11y.window(TITLE, timeout=0.2)), "Ctrl+Q did not close the settings window")
    check(app.process.poll() is None, "Ctrl+Q in the settings window quit Vistrel")

# As JSON, so that false is not taken for 0.
stored = json.dumps({name: settings().get(name) for name in STORED}, sort_keys=True)
check(stored == json.dumps(STORED, sort_keys=True), f"the settings file holds {stored}")
app.quit()

# After a restart the form shows the same values.
app = Vistrel(a11y.ENVIRONMENT)
window = open_settings()
if window:
    shown = read(window)
    check(shown == EXPECTED, f"after a restart the form shows {shown}")
app.quit()

short = run("bash", os.path.join(os.path.dirname(os.path.abspath(__file__)), "run-in-session.sh"), "--size", "1280x800",
            "--", sys.executable, os.path.abspath(__file__), VISTREL, PROBE, "short-screen", timeout=120)
print(short.stdout + short.stderr, end="")
check(short.returncode == 0, "the settings window does not fit a 1280x800 screen")
finish("settings window")
