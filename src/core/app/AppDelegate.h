#pragma once

#include "app/CaptureHotKeys.h"
#include "app/ShortcutGuidance.h"
#include "app/TraylessGuidance.h"
#include "platform/StatusItem.h"

#include <QObject>

#include <functional>
#include <memory>

class AppSettings;
class ApplicationControl;
class CaptureCommands;
class CustomKeybindingStore;
class DiagnosticsLog;
class DisplayProvider;
class EditorCommands;
class HotKeyRegistrar;
class Scheduler;
class SettingsWindow;
class SystemLog;
class UpdateCommands;
class UserNotifier;

// The application controller: sets the agent up at launch and routes the user's commands (status item,
// menu, global shortcuts, notification clicks) to the subsystems. Owns the status item's menu, the
// capture shortcuts and the settings window. Main thread only.
class AppDelegate final : public QObject
{
    Q_OBJECT

public:
    struct Dependencies
    {
        DiagnosticsLog &diagnostics;
        ApplicationControl &application;
        StatusItem &statusItem;
        HotKeyRegistrar &hotKeys;
        UserNotifier &notifier;
        SystemLog &systemLog;
        Scheduler &scheduler;
        DisplayProvider &displays;
        AppSettings &settings;
        CaptureCommands &capture;
        EditorCommands &editor;
        // Makes the updater on first call; launch calls it so the updater exists from the start.
        std::function<UpdateCommands &()> updater;
        std::function<std::unique_ptr<SettingsWindow>()> makeSettingsWindow;
        // The desktop whose settings the shortcut guidance names.
        shortcutguidance::Desktop desktop = shortcutguidance::Desktop::Other;
        // The desktop's own custom shortcuts, where Vistrel can bind its commands there; may be null.
        CustomKeybindingStore *desktopKeybindings = nullptr;
    };

    // How a notification is shown while the application is in front.
    enum PresentationOption { Banner = 0x1, Sound = 0x2 };

    explicit AppDelegate(Dependencies dependencies);
    ~AppDelegate() override;

    void applicationDidFinishLaunching();
    void applicationWillTerminate();

    static QList<StatusItem::MenuEntry> statusMenuEntries();
    void statusItemClicked(std::optional<StatusItem::ClickEvent> event);
    void perform(StatusItem::Action action);

    void triggerScreenshot();
    void openEditorLauncher();
    void showSettings();
    void checkForUpdates();
    void toggleOpenEditorViaNotification();
    void terminateApp();

    static int foregroundPresentationOptions() { return Banner | Sound; }
    void didReceiveNotificationResponse(const QString &categoryIdentifier);

    void settingsDidChange();

    CaptureHotKeys &hotKeys() { return m_hotKeys; }
    ShortcutGuidance &shortcutGuidance() { return m_shortcutGuidance; }
    SettingsWindow *settingsWindow() const { return m_settingsWindow.get(); }

private:
    void createStatusItem();
    void setupNotifications();
    void syncNotificationToggleMenuItemState();
    void fitSettingsWindowToScreen();

    Dependencies m_deps;
    CaptureHotKeys m_hotKeys;
    ShortcutGuidance m_shortcutGuidance;
    TraylessGuidance m_traylessGuidance;
    std::unique_ptr<SettingsWindow> m_settingsWindow;
};
