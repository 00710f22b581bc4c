#include "app/ScreenshotPermissionNotice.h"

using namespace Qt::StringLiterals;

ScreenshotPermissionNotice::ScreenshotPermissionNotice(ScreenCapturePermission &permission, KeyValueStore &store,
                                                       UserNotifier &notifier)
    : m_permission(permission), m_notice(shownKey, categoryIdentifier, store, notifier)
{
}

bool ScreenshotPermissionNotice::preflight()
{
    if (m_permission.preflight())
        return true;
    m_notice.post(u"Vistrel: 画面の撮影の確認"_s,
                  u"続いて GNOME が、スクリーンショットの撮影を許可するか尋ねます。"
                  "「許可」を選ぶと Vistrel が画面を撮影できます。確認は最初の一度だけです。"_s);
    return false;
}
