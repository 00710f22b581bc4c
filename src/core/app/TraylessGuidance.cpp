#include "app/TraylessGuidance.h"

#include "app/ShortcutGuidanceRules.h"
#include "platform/HotKeyRegistrar.h"
#include "platform/StatusItem.h"
#include "platform/UserNotifier.h"
#include "settings/AppSettings.h"

TraylessGuidance::TraylessGuidance(StatusItem &statusItem, HotKeyRegistrar &registrar, AppSettings &settings,
                                   UserNotifier &notifier)
    : m_statusItem(statusItem), m_registrar(registrar), m_settings(settings), m_notifier(notifier)
{
}

void TraylessGuidance::consider()
{
    const HotKeyRegistrar::Binder binder = m_registrar.binder();
    UserDefaults &defaults = m_settings.defaults();
    if (m_statusItem.isShownToUser() || binder == HotKeyRegistrar::Binder::Pending || defaults.boolValue(shownKey))
        return;
    const shortcutguidance::Notice text =
        shortcutguidance::traylessNotice(binder, m_settings.hotKeyCombo(), m_settings.repeatHotKeyCombo());
    m_notifier.add({shownKey, text.title, text.body, categoryIdentifier, false, 0}, [](std::optional<QString>) {});
    defaults.setBool(shownKey, true);
    defaults.synchronize();
}
