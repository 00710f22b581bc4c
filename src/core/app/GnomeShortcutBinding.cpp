#include "app/GnomeShortcutBinding.h"

#include "app/GnomeShortcutRules.h"
#include "settings/AppSettings.h"

#include <QCoreApplication>
#include <QPointer>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

GnomeShortcutBinding::GnomeShortcutBinding(CustomKeybindingStore &store, AppSettings &settings)
    : m_store(store), m_settings(settings)
{
    const auto keysChanged = [this] {
        if (m_state == State::Bound)
            setState(State::Unbound);
    };
    connect(&m_settings, &AppSettings::hotKeyComboChanged, this, keysChanged);
    connect(&m_settings, &AppSettings::repeatHotKeyComboChanged, this, keysChanged);
}

void GnomeShortcutBinding::bind()
{
    if (m_state == State::Binding)
        return;
    setState(State::Binding);
    m_store.read([self = QPointer<GnomeShortcutBinding>(this)](const CustomKeybindingStore::Listing &listing) {
        if (self)
            self->write(listing);
    });
}

QString GnomeShortcutBinding::statusText() const
{
    switch (m_state) {
    case State::Unbound: break;
    case State::Binding: return u"GNOME に登録しています…"_s;
    case State::Bound: return u"GNOME のカスタムショートカットに登録しました。"_s;
    case State::Failed: return u"GNOME に登録できませんでした: "_s + m_error;
    }
    return {};
}

void GnomeShortcutBinding::write(const CustomKeybindingStore::Listing &listing)
{
    if (listing.error) {
        finish(listing.error);
        return;
    }
    const std::optional<gnomeshortcuts::Plan> plan =
        gnomeshortcuts::plan(listing.keybindings, m_settings.hotKeyCombo(), m_settings.repeatHotKeyCombo(),
                             gnomeshortcuts::program(QCoreApplication::applicationFilePath(),
                                                     QStandardPaths::findExecutable(u"vistrel"_s)));
    if (!plan) {
        finish(u"GNOME で使えないキーです"_s);
        return;
    }
    const QPointer<GnomeShortcutBinding> self(this);
    m_store.write(plan->entries, plan->paths, [self](std::optional<QString> error) {
        if (self)
            self->finish(std::move(error));
    });
}

void GnomeShortcutBinding::finish(std::optional<QString> error)
{
    m_error = error.value_or(QString());
    setState(error ? State::Failed : State::Bound);
}

void GnomeShortcutBinding::setState(State state)
{
    m_state = state;
    emit stateChanged();
}
