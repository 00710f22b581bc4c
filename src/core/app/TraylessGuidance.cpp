#include "app/TraylessGuidance.h"

#include "app/ShortcutGuidanceRules.h"
#include "platform/HotKeyRegistrar.h"
#include "platform/StatusItem.h"
#include "settings/AppSettings.h"

TraylessGuidance::TraylessGuidance(StatusItem &statusItem, HotKeyRegistrar &registrar, AppSettings &settings,
                                   UserNotifier &notifier)
    : m_statusItem(statusItem), m_registrar(registrar), m_settings(settings),
      m_notice(shownKey, categoryIdentifier, settings.defaults().store(), notifier)
{
}

void TraylessGuidance::consider()
{
    const HotKeyRegistrar::Binder binder = m_registrar.binder();
    if (m_statusItem.isShownToUser() || binder == HotKeyRegistrar::Binder::Pending)
        return;
    const shortcutguidance::Notice text =
        shortcutguidance::traylessNotice(binder, m_settings.hotKeyCombo(), m_settings.repeatHotKeyCombo());
    m_notice.post(text.title, text.body);
}
