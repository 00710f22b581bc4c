#pragma once

#include "app/OnceNotice.h"
#include "platform/ScreenCapturePermission.h"

#include <QString>

class KeyValueStore;
class UserNotifier;

// GNOME asks once, in a dialog of its own, whether Vistrel may take screenshots. Ahead of the first
// request that may show that dialog, this permission says in a notification what it is for (once,
// remembered in the preferences under shownKey), then asks the permission it wraps. The capture's
// permission gate calls preflight on the main thread, where the notification is posted, just before it
// requests on a worker. Made by the Linux platform set on GNOME where the portal reads the screen.
class ScreenshotPermissionNotice final : public ScreenCapturePermission
{
public:
    static inline const QString shownKey = QStringLiteral("VistrelScreenshotPermissionNoticeShown");
    static inline const QString categoryIdentifier = QStringLiteral("VistrelScreenshotPermissionCategory");

    ScreenshotPermissionNotice(ScreenCapturePermission &permission, KeyValueStore &store, UserNotifier &notifier);

    bool preflight() override;
    bool request() override { return m_permission.request(); }

private:
    ScreenCapturePermission &m_permission;
    OnceNotice m_notice;
};
