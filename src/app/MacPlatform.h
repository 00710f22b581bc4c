#pragma once

#include "platform/PlatformServices.h"

#include <QString>

#include <memory>
#include <optional>

class AppSettings;
class FastPngWriter;
class MacApplicationControl;
class MacCursor;
class MacDisplayProvider;
class MacHotKeyRegistrar;
class MacKeyEventMonitor;
class MacLegacyPreferencesSource;
class MacLoginItem;
class MacPasteboard;
class MacScreenCapturePermission;
class MacScreenCapturer;
class MacSelectionWindowFactory;
class MacSoundPlayer;
class MacStatusItem;
class MacSystemLog;
class MacUserDefaultsStore;
class MacUserNotifier;
class MacWindowList;
class MacWorkspace;
class QtAlertPresenter;
class QtEditorWindowFactory;
class QtFolderChooser;
class QtOpenPanel;
class QtScheduler;
class SettingsWindow;
class SoftwareUpdater;
class SoftwareUpdaterModel;
class SystemClock;

// The platform set of the macOS application: builds each OS service once, owns it, and lists it in a
// PlatformServices for PlatformServices::install(). Made by main() on the main thread, after the
// QApplication (which made NSApp).
class MacPlatform final
{
public:
    MacPlatform();
    ~MacPlatform();

    PlatformServices services() const;
    // The settings window, made when the user first asks for it.
    std::unique_ptr<SettingsWindow> makeSettingsWindow(AppSettings &settings, SoftwareUpdaterModel &updater) const;

    // ~/Library/Logs/Vistrel.
    static QString diagnosticsLogFolder();
    // CFBundleShortVersionString and CFBundleVersion of the running bundle, each absent outside one.
    static std::optional<QString> shortVersion();
    static std::optional<QString> buildVersion();
    // What the settings window says under the login toggle.
    static QString loginItemCaption();

private:
    std::unique_ptr<MacSystemLog> m_systemLog;
    std::unique_ptr<QtScheduler> m_scheduler;
    std::unique_ptr<SystemClock> m_clock;
    std::unique_ptr<MacUserDefaultsStore> m_store;
    std::unique_ptr<MacLegacyPreferencesSource> m_legacyPreferences;
    std::unique_ptr<MacLoginItem> m_loginItem;
    std::unique_ptr<MacUserNotifier> m_notifier;
    std::unique_ptr<MacHotKeyRegistrar> m_hotKeys;
    std::unique_ptr<MacStatusItem> m_statusItem;
    std::unique_ptr<MacApplicationControl> m_application;
    std::unique_ptr<MacDisplayProvider> m_displays;
    std::unique_ptr<MacCursor> m_cursor;
    std::unique_ptr<MacScreenCapturer> m_screenCapturer;
    std::unique_ptr<MacScreenCapturePermission> m_permission;
    std::unique_ptr<MacWindowList> m_windowList;
    std::unique_ptr<MacPasteboard> m_pasteboard;
    std::unique_ptr<MacSoundPlayer> m_sounds;
    std::unique_ptr<MacWorkspace> m_workspace;
    std::unique_ptr<MacKeyEventMonitor> m_keyMonitor;
    std::unique_ptr<FastPngWriter> m_pngWriter;
    std::unique_ptr<SoftwareUpdater> m_updater;
    std::unique_ptr<MacSelectionWindowFactory> m_selectionWindows;
    std::unique_ptr<QtEditorWindowFactory> m_editorWindows;
    std::unique_ptr<QtAlertPresenter> m_alerts;
    std::unique_ptr<QtOpenPanel> m_openPanel;
    std::unique_ptr<QtFolderChooser> m_folderChooser;
};
