#!/usr/bin/python3
"""A capture posts the edit notification to the desktop's notification server (dunst); invoking its
default action opens the editor window on the capture."""
import json

from vistrel_e2e import *  # noqa: F401,F403 - the helpers of these tests

app = Vistrel()
before = len(log_lines())
if start_selection():
    drag((500, 400), (900, 700))
    check(wait_for_save(before), "the capture saved nothing")
    check(wait_for_line("capture saved and scheduleEditNotification", before), "no hand-off to the editor")
    check(wait_until(lambda: "Vistrel: 通知スケジュール成功" in app.system_log()),
          "the system log does not say the notification was scheduled")
    check(wait_until(lambda: notifications_shown() == 1), "dunst shows no notification")
    check(editor_windows() == [], "the editor opened before the notification was clicked")

    run("dunstctl", "action", "0")
    windows = wait_until(editor_windows)
    check(windows, "invoking the notification did not open the editor")
    # Closed notifications go to dunst's history, where their texts can be read.
    run("dunstctl", "close-all")
    history = wait_until(lambda: json.loads(run("dunstctl", "history").stdout or "{}").get("data", [[]])[0])
    texts = [(entry["summary"]["data"], entry["body"]["data"]) for entry in history or []]
    check(texts == [("Vistrel: 編集できます", "通知をクリックして編集画面を開きます。")],
          f"the notification's texts are not the edit notification's: {texts}")
app.quit()
finish("edit notification")
