#pragma once

#include "app/OnceNotice.h"
#include "app/ShortcutGuidanceRules.h"
#include "platform/HotKeyRegistrar.h"

#include <QObject>
#include <QString>

#include <memory>

class AppSettings;
class CustomKeybindingStore;
class GnomeShortcutBinding;
class UserNotifier;

// Tells the user how to bind the capture commands where nothing binds the global shortcuts: one
// notification, the first time that happens (remembered in the preferences under shownKey), and the
// binding texts of the settings window's shortcut rows, which follow the registrar's binder. On GNOME,
// given the desktop's custom shortcuts, it also offers to bind both commands there in one click. Owned
// by the application controller; main thread only.
class ShortcutGuidance final : public QObject
{
    Q_OBJECT

public:
    static inline const QString shownKey = QStringLiteral("VistrelShortcutGuidanceShown");
    // A click on the notification opens the settings.
    static inline const QString categoryIdentifier = QStringLiteral("VistrelShortcutGuidanceCategory");

    ShortcutGuidance(HotKeyRegistrar &registrar, AppSettings &settings, UserNotifier &notifier,
                     shortcutguidance::Desktop desktop, CustomKeybindingStore *desktopKeybindings = nullptr);
    ~ShortcutGuidance() override;

    // Follows the registrar from now on; before the first registration, so no answer is missed.
    void start();

    HotKeyRegistrar::Binder binder() const { return m_registrar.binder(); }
    QString bindingText(shortcutguidance::Command command) const;
    // The one-click binding in the desktop's own shortcuts, while nothing else binds them; else null.
    GnomeShortcutBinding *desktopBinding() const;

signals:
    // Also when the desktop binding changes what the rows say.
    void binderChanged();

private:
    void binderDidChange(HotKeyRegistrar::Binder binder);

    HotKeyRegistrar &m_registrar;
    AppSettings &m_settings;
    shortcutguidance::Desktop m_desktop;
    OnceNotice m_notice;
    std::unique_ptr<GnomeShortcutBinding> m_gnome;
};
