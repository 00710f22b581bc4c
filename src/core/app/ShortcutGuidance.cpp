#include "app/ShortcutGuidance.h"

#include "app/GnomeShortcutBinding.h"
#include "settings/AppSettings.h"

#include <QPointer>

using namespace shortcutguidance;

ShortcutGuidance::ShortcutGuidance(HotKeyRegistrar &registrar, AppSettings &settings, UserNotifier &notifier,
                                   Desktop desktop, CustomKeybindingStore *desktopKeybindings)
    : m_registrar(registrar), m_settings(settings), m_desktop(desktop),
      m_notice(shownKey, categoryIdentifier, settings.defaults().store(), notifier)
{
    if (desktop == Desktop::Gnome && desktopKeybindings) {
        m_gnome = std::make_unique<GnomeShortcutBinding>(*desktopKeybindings, settings);
        connect(m_gnome.get(), &GnomeShortcutBinding::stateChanged, this, &ShortcutGuidance::binderChanged);
    }
}

ShortcutGuidance::~ShortcutGuidance() = default;

GnomeShortcutBinding *ShortcutGuidance::desktopBinding() const
{
    return m_gnome && needsGuidance(m_registrar.binder()) ? m_gnome.get() : nullptr;
}

void ShortcutGuidance::start()
{
    QPointer<ShortcutGuidance> self(this);
    m_registrar.setBinderObserver([self](HotKeyRegistrar::Binder binder) {
        if (self)
            self->binderDidChange(binder);
    });
}

QString ShortcutGuidance::bindingText(Command command) const
{
    const GnomeShortcutBinding *gnome = desktopBinding();
    if (gnome && gnome->state() == GnomeShortcutBinding::State::Bound)
        return QStringLiteral("GNOME のカスタムショートカット");
    const ShortcutKeyCombo combo =
        command == Command::Select ? m_settings.hotKeyCombo() : m_settings.repeatHotKeyCombo();
    return shortcutguidance::bindingText(m_registrar.binder(), m_desktop, command, combo);
}

void ShortcutGuidance::binderDidChange(HotKeyRegistrar::Binder binder)
{
    emit binderChanged();
    if (!needsGuidance(binder))
        return;
    const Notice text = notice(m_desktop, m_settings.hotKeyCombo(), m_settings.repeatHotKeyCombo());
    m_notice.post(text.title, text.body);
}
