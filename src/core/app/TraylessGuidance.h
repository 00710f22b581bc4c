#pragma once

#include "app/OnceNotice.h"

#include <QString>

class AppSettings;
class HotKeyRegistrar;
class StatusItem;
class UserNotifier;

// Where no tray shows the status item, tells the user once how to reach Vistrel (remembered in the
// preferences under shownKey); everything else goes on as with a tray. What it says of the keys waits
// until the registrar knows what binds them, so the controller asks again at each change of binder.
// Owned by the application controller; main thread only.
class TraylessGuidance final
{
public:
    static inline const QString shownKey = QStringLiteral("VistrelTraylessGuidanceShown");
    // A click on the notification opens the settings.
    static inline const QString categoryIdentifier = QStringLiteral("VistrelTraylessGuidanceCategory");

    TraylessGuidance(StatusItem &statusItem, HotKeyRegistrar &registrar, AppSettings &settings, UserNotifier &notifier);

    // Notifies if the item is shown nowhere, the binder is known and the user was not told before.
    void consider();

private:
    StatusItem &m_statusItem;
    HotKeyRegistrar &m_registrar;
    AppSettings &m_settings;
    OnceNotice m_notice;
};
