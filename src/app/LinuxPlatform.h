#pragma once

#include "SessionAdapters.h"

#include "platform/PlatformServices.h"

#include <QProcessEnvironment>
#include <QString>

#include <functional>
#include <memory>

class AppSettings;
class AppcastSoftwareUpdater;
class DBusUserNotifier;
class DesktopWorkspace;
class JsonFileKeyValueStore;
class FastPngWriter;
class GsettingsKeybindingStore;
class LinuxSystemLog;
class QtAlertPresenter;
class QtApplicationControl;
class QtEditorWindowFactory;
class QtFolderChooser;
class QtKeyEventMonitor;
class QtOpenPanel;
class QtScheduler;
class QtSelectionWindowFactory;
class QtUpdateUserDriver;
class ScreenCapturePermission;
class SettingsWindow;
class SoftwareUpdaterModel;
class SystemClock;
class TrayStatusItem;
class XdgAutostartLoginItem;

// The platform set of the Linux application: builds each OS service once, owns it, and lists it in a
// PlatformServices for PlatformServices::install(). Made by main() on the main thread, after the
// QApplication, with the adapters of the session it runs in (X11 or Wayland).
class LinuxPlatform final
{
public:
    LinuxPlatform(std::unique_ptr<LinuxSystemLog> systemLog, SessionAdapters session,
                  const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    ~LinuxPlatform();

    PlatformServices services() const;
    // The settings window, made when the user first asks for it.
    std::unique_ptr<SettingsWindow> makeSettingsWindow(AppSettings &settings, SoftwareUpdaterModel &updater) const;
    // Given the diagnostics log once the process-wide instances exist: the adapters that trace what
    // the desktop lacks or refuses (no tray, no sound, a settings pane of macOS).
    void setTrace(const std::function<void(const QString &line)> &trace) const;
    // Once the application is up: readies what the first selection would otherwise wait for (on X11,
    // the screen segments and the hidden overlay windows). Shows nothing.
    void prepareFirstSelection();

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
    SessionAdapters m_session;
    std::unique_ptr<DBusUserNotifier> m_notifier;
    std::unique_ptr<TrayStatusItem> m_statusItem;
    std::unique_ptr<QtApplicationControl> m_application;
    std::unique_ptr<DesktopWorkspace> m_workspace;
    std::unique_ptr<QtKeyEventMonitor> m_keyMonitor;
    std::unique_ptr<FastPngWriter> m_pngWriter;
    std::unique_ptr<QtUpdateUserDriver> m_updateDialogs;
    std::unique_ptr<AppcastSoftwareUpdater> m_updater;
    std::unique_ptr<QtSelectionWindowFactory> m_selectionWindows;
    std::unique_ptr<QtEditorWindowFactory> m_editorWindows;
    std::unique_ptr<QtAlertPresenter> m_alerts;
    std::unique_ptr<QtOpenPanel> m_openPanel;
    std::unique_ptr<QtFolderChooser> m_folderChooser;
    std::unique_ptr<GsettingsKeybindingStore> m_desktopKeybindings;
    // On GNOME, when the portal reads the screen: says what GNOME's one-time dialog is for.
    std::unique_ptr<ScreenCapturePermission> m_permissionNotice;
};
