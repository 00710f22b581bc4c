#pragma once

#include "platform/CustomKeybindingStore.h"

#include <QObject>
#include <QString>

class AppSettings;

// Binds `vistrel select` and `vistrel repeat` to the user's keys as GNOME custom shortcuts, on one click
// in the settings window: reads GNOME's list, writes our two entries beside the user's own and says how
// it went. A later change of the keys makes the binding stale again. Owned by the shortcut guidance on
// GNOME; main thread only.
class GnomeShortcutBinding final : public QObject
{
    Q_OBJECT

public:
    enum class State { Unbound, Binding, Bound, Failed };

    GnomeShortcutBinding(CustomKeybindingStore &store, AppSettings &settings);

    // Ignored while a binding is under way.
    void bind();
    State state() const { return m_state; }
    // The line under the button; empty before the first click.
    QString statusText() const;

signals:
    void stateChanged();

private:
    void write(const CustomKeybindingStore::Listing &listing);
    void finish(std::optional<QString> error);
    void setState(State state);

    CustomKeybindingStore &m_store;
    AppSettings &m_settings;
    State m_state = State::Unbound;
    QString m_error;
};
