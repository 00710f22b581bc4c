#!/usr/bin/python3
"""Global shortcuts on sway, where no GlobalShortcuts portal runs: the first start tells the user, in
one notification, the sway lines that bind `vistrel select` and `vistrel repeat` to their keys (the
capture flow test binds that line and drives every selection through it), and in another, since no tray
runs here, how to reach Vistrel; clicking a notification opens the settings; a later start says nothing
again."""
from vistrel_wayland import *  # noqa: F401,F403 - the helpers of these tests

TITLE = "Vistrel: ショートカットが使えません"
TRAYLESS = ("Vistrel: トレイにアイコンを表示できません",
            "撮影は「vistrel select」、繰り返し撮影は「vistrel repeat」。\n"
            "設定は「vistrel settings」か、アプリ一覧の Vistrel を右クリックして「設定」から開けます。")


app = Vistrel(tray_notice=True)
check(wait_until(lambda: notifications_shown() == 2, 10), "no two notifications on the first start without a portal")
system_log = app.system_log()
check("Vistrel: ショートカットのポータルがありません: " in system_log, f"the missing portal is not logged: {system_log}")
check("Vistrel: ホットキーの登録に失敗しました: -4" in system_log, f"the failed registration is not logged: {system_log}")

# A click on it opens the settings, whose shortcut rows say the same.
run("dunstctl", "action", "0")
check(wait_until(lambda: any(w["name"] == "Vistrel 設定" for w in windows()), 10), "the settings did not open")
shown = notification_texts()
check(len(shown) == 2 and TRAYLESS in shown, f"the notifications read {shown}")
body = next((text for title, text in shown if title == TITLE), "")
lines = [line for line in body.split("\n") if line.startswith("bindsym ")]
check(lines == ["bindsym Shift+Mod4+s exec vistrel select", "bindsym Shift+Mod4+r exec vistrel repeat"],
      f"the notification does not give the sway lines for the default keys: {body!r}")
close_windows()

check(settings().get("VistrelShortcutGuidanceShown") is True, "the shown notification is not remembered")
check(settings().get("VistrelTraylessGuidanceShown") is True, "the notice of the missing tray is not remembered")
app.quit()

# Once told is enough: the next start only logs.
app = Vistrel(tag="second", tray_notice=True)
time.sleep(2)
check(notifications_shown() == 0, "the second start notified again")
check("Vistrel: ホットキーの登録に失敗しました: -4" in app.system_log(), "the second start did not register at all")
app.quit()
finish("wayland_shortcuts")
