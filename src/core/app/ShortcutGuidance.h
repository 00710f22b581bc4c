#pragma once

#include "app/ShortcutGuidanceRules.h"
#include "platform/HotKeyRegistrar.h"

#include <QObject>
#include <QString>

class AppSettings;
class UserNotifier;

// Tells the user how to bind the capture commands where nothing binds the global shortcuts: one
// notification, the first time that happens (remembered in the preferences under shownKey), and the
// binding texts of the settings window's shortcut rows, which follow the registrar's binder. Owned by
// the application controller; main thread only.
class ShortcutGuidance final : public QObject
{
    Q_OBJECT

public:
    static inline const QString shownKey = QStringLiteral("VistrelShortcutGuidanceShown");
    // A click on the notification opens the settings.
    static inline const QString categoryIdentifier = QStringLiteral("VistrelShortcutGuidanceCategory");

    ShortcutGuidance(HotKeyRegistrar &registrar, AppSettings &settings, UserNotifier &notifier,
                     shortcutguidance::Desktop desktop);

    // Follows the registrar from now on; before the first registration, so no answer is missed.
    void start();

    HotKeyRegistrar::Binder binder() const { return m_registrar.binder(); }
    QString bindingText(shortcutguidance::Command command) const;

signals:
    void binderChanged();

private:
    void binderDidChange(HotKeyRegistrar::Binder binder);

    HotKeyRegistrar &m_registrar;
    AppSettings &m_settings;
    UserNotifier &m_notifier;
    shortcutguidance::Desktop m_desktop;
};
