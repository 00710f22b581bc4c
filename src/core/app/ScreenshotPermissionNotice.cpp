#include "app/ScreenshotPermissionNotice.h"

#include "platform/UserNotifier.h"
#include "settings/UserDefaults.h"

using namespace Qt::StringLiterals;

ScreenshotPermissionNotice::ScreenshotPermissionNotice(ScreenCapturePermission &permission, KeyValueStore &store,
                                                       UserNotifier &notifier)
    : m_permission(permission), m_store(store), m_notifier(notifier)
{
}

bool ScreenshotPermissionNotice::preflight()
{
    if (m_permission.preflight())
        return true;
    UserDefaults defaults(m_store);
    if (!defaults.boolValue(shownKey)) {
        m_notifier.add({shownKey, u"Vistrel: 画面の撮影の確認"_s,
                        u"続いて GNOME が、スクリーンショットの撮影を許可するか尋ねます。"
                        "「許可」を選ぶと Vistrel が画面を撮影できます。確認は最初の一度だけです。"_s,
                        categoryIdentifier, false, 0},
                       [](std::optional<QString>) {});
        defaults.setBool(shownKey, true);
        defaults.synchronize();
    }
    return false;
}
