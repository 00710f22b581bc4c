#pragma once

#include "platform/PlatformServices.h"

#include <QProcessEnvironment>
#include <QString>

#include <memory>

#include <xcb/xcb.h>

class DBusUserNotifier;
class JsonFileKeyValueStore;
class LinuxSystemLog;
class QtApplicationControl;
class QtScheduler;
class SystemClock;
class TrayStatusItem;
class X11HotKeyRegistrar;
class XdgAutostartLoginItem;

// The platform set of the Linux application: builds each OS service once, owns it, and lists it in a
// PlatformServices for PlatformServices::install(). Made by main() on the main thread, after the
// QApplication and after it made sure the application runs on X11 (the connection is Qt's own).
class LinuxPlatform final
{
public:
    explicit LinuxPlatform(xcb_connection_t *connection,
                           const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    ~LinuxPlatform();

    // Every service this set has; the fields of services that come later stay null.
    PlatformServices services() const;

    // $XDG_STATE_HOME/Vistrel, by default ~/.local/state/Vistrel.
    static QString diagnosticsLogFolder(const QProcessEnvironment &environment);
    // $XDG_CONFIG_HOME/Vistrel/settings.json, by default under ~/.config.
    static QString settingsPath(const QProcessEnvironment &environment);
    // $XDG_CONFIG_HOME/autostart.
    static QString autostartFolder(const QProcessEnvironment &environment);

private:
    QString m_diagnosticsLogFolder;
    std::unique_ptr<LinuxSystemLog> m_systemLog;
    std::unique_ptr<QtScheduler> m_scheduler;
    std::unique_ptr<SystemClock> m_clock;
    std::unique_ptr<JsonFileKeyValueStore> m_store;
    std::unique_ptr<XdgAutostartLoginItem> m_loginItem;
    std::unique_ptr<DBusUserNotifier> m_notifier;
    std::unique_ptr<X11HotKeyRegistrar> m_hotKeys;
    std::unique_ptr<TrayStatusItem> m_statusItem;
    std::unique_ptr<QtApplicationControl> m_application;
};
