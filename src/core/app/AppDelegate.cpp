#include "app/AppDelegate.h"

#include "platform/DiagnosticsLog.h"
#include "app/SettingsWindow.h"
#include "platform/WindowRules.h"
#include "capture/CaptureCommands.h"
#include "editor/EditNotificationCategory.h"
#include "editor/EditorCommands.h"
#include "platform/ApplicationControl.h"
#include "platform/DisplayProvider.h"
#include "platform/Scheduler.h"
#include "platform/SystemLog.h"
#include "platform/UserNotifier.h"
#include "settings/AppSettings.h"
#include "update/UpdateCommands.h"

#include <QPointer>

AppDelegate::AppDelegate(Dependencies dependencies)
    : m_deps(std::move(dependencies)),
      m_hotKeys(m_deps.hotKeys, m_deps.settings, m_deps.capture, m_deps.diagnostics, m_deps.systemLog),
      m_shortcutGuidance(m_deps.hotKeys, m_deps.settings, m_deps.notifier, m_deps.desktop, m_deps.desktopKeybindings),
      m_traylessGuidance(m_deps.statusItem, m_deps.hotKeys, m_deps.settings, m_deps.notifier)
{
}

AppDelegate::~AppDelegate() = default;

void AppDelegate::applicationDidFinishLaunching()
{
    m_deps.diagnostics.install();
    m_deps.application.setAccessoryActivationPolicy();
    createStatusItem();
    m_shortcutGuidance.start();
    connect(&m_shortcutGuidance, &ShortcutGuidance::binderChanged, this, [this] { m_traylessGuidance.consider(); });
    m_hotKeys.registerHotKey();
    setupNotifications();
    m_traylessGuidance.consider();
    m_deps.updater();
    m_deps.diagnostics.write(QStringLiteral("applicationDidFinishLaunching completed"));
    connect(&m_deps.settings, &AppSettings::settingsDidChange, this, &AppDelegate::settingsDidChange);
}

void AppDelegate::applicationWillTerminate()
{
    m_hotKeys.unregisterHotKey();
}

QList<StatusItem::MenuEntry> AppDelegate::statusMenuEntries()
{
    using Action = StatusItem::Action;
    const StatusItem::MenuEntry separator{true};
    return {
        {false, QStringLiteral("スクリーンショットを撮る"), Action::TriggerScreenshot, QStringLiteral("s")},
        {false, QStringLiteral("画像を開いて編集..."), Action::OpenEditorLauncher, QStringLiteral("e")},
        {false, QStringLiteral("設定..."), Action::ShowSettings, QStringLiteral(",")},
        {false, QStringLiteral("アップデートを確認..."), Action::CheckForUpdates, QString()},
        separator,
        {false, QStringLiteral("通知を出す"), Action::ToggleOpenEditorViaNotification, QString(), true},
        separator,
        {false, QStringLiteral("終了"), Action::TerminateApp, QStringLiteral("q")},
    };
}

void AppDelegate::createStatusItem()
{
    m_deps.statusItem.show({QStringLiteral("camera"), QStringLiteral("Vistrel"), true},
                           [this](std::optional<StatusItem::ClickEvent> event) { statusItemClicked(event); });
    m_deps.statusItem.setMenu(statusMenuEntries(), [this](StatusItem::Action action) { perform(action); });
    syncNotificationToggleMenuItemState();
}

void AppDelegate::statusItemClicked(std::optional<StatusItem::ClickEvent> event)
{
    using Type = StatusItem::ClickEvent::Type;
    const bool isSecondary = event
        && (event->type == Type::RightMouseUp || (event->type == Type::LeftMouseUp && event->controlHeld));
    if (!isSecondary) {
        openEditorLauncher();
        return;
    }
    syncNotificationToggleMenuItemState();
    m_deps.statusItem.popUpMenu();
}

void AppDelegate::perform(StatusItem::Action action)
{
    using Action = StatusItem::Action;
    switch (action) {
    case Action::TriggerScreenshot: triggerScreenshot(); break;
    case Action::OpenEditorLauncher: openEditorLauncher(); break;
    case Action::ShowSettings: showSettings(); break;
    case Action::CheckForUpdates: checkForUpdates(); break;
    case Action::ToggleOpenEditorViaNotification: toggleOpenEditorViaNotification(); break;
    case Action::TerminateApp: terminateApp(); break;
    }
}

void AppDelegate::triggerScreenshot()
{
    m_deps.diagnostics.write(QStringLiteral("triggerScreenshot invoked"));
    m_deps.capture.startSelection();
}

void AppDelegate::openEditorLauncher()
{
    m_deps.editor.openEditorLauncher();
}

void AppDelegate::checkForUpdates()
{
    m_deps.updater().checkForUpdates();
}

void AppDelegate::toggleOpenEditorViaNotification()
{
    m_deps.settings.setOpenEditorViaNotification(!m_deps.settings.openEditorViaNotification());
    syncNotificationToggleMenuItemState();
}

void AppDelegate::terminateApp()
{
    m_deps.application.terminate();
}

void AppDelegate::syncNotificationToggleMenuItemState()
{
    m_deps.statusItem.setToggleChecked(m_deps.settings.openEditorViaNotification());
}

void AppDelegate::settingsDidChange()
{
    m_hotKeys.registerHotKey();
    syncNotificationToggleMenuItemState();
}

void AppDelegate::showSettings()
{
    if (!m_settingsWindow) {
        m_settingsWindow = m_deps.makeSettingsWindow();
        if (m_settingsWindow)
            m_settingsWindow->showShortcutBindings(m_shortcutGuidance);
    }
    if (!m_settingsWindow) {
        m_deps.diagnostics.write(QStringLiteral("showSettings skipped: no settings window in this build"));
        return;
    }
    m_deps.application.activate();
    if (!m_settingsWindow->isVisible())
        fitSettingsWindowToScreen();
    m_settingsWindow->makeKeyAndOrderFront();
}

void AppDelegate::fitSettingsWindowToScreen()
{
    std::optional<Rect> visible = m_settingsWindow->screenVisibleFrame();
    if (!visible) {
        if (const std::optional<DisplayInfo> main = m_deps.displays.mainScreen())
            visible = main->visibleFrame;
    }
    if (!visible) {
        const QList<DisplayInfo> screens = m_deps.displays.screens();
        if (!screens.isEmpty())
            visible = screens.first().visibleFrame;
    }
    if (!visible)
        return;
    m_settingsWindow->setFrame(windowrules::fittedFrame(m_settingsWindow->frame(), *visible));
}

void AppDelegate::setupNotifications()
{
    m_deps.notifier.setResponseHandler(
        [this](const QString &category) { didReceiveNotificationResponse(category); });
    // The completion may arrive on another thread; it only logs.
    SystemLog &systemLog = m_deps.systemLog;
    m_deps.notifier.requestAuthorization([&systemLog](bool granted, std::optional<QString> error) {
        if (error)
            systemLog.log(QStringLiteral("Vistrel: 通知許可の取得に失敗しました: %1").arg(*error));
        else if (granted)
            systemLog.log(QStringLiteral("Vistrel: 通知許可が付与されました"));
        else
            systemLog.log(QStringLiteral("Vistrel: ユーザーが通知許可を拒否しました"));
    });
    m_deps.notifier.setCategories({editnotification::categoryIdentifier});
}

void AppDelegate::didReceiveNotificationResponse(const QString &categoryIdentifier)
{
    if (categoryIdentifier == ShortcutGuidance::categoryIdentifier
        || categoryIdentifier == TraylessGuidance::categoryIdentifier) {
        m_deps.scheduler.postToMain([self = QPointer<AppDelegate>(this)] {
            if (self)
                self->showSettings();
        });
        return;
    }
    if (categoryIdentifier != editnotification::categoryIdentifier)
        return;
    EditorCommands &editor = m_deps.editor;
    m_deps.scheduler.postToMain([&editor] { editor.openEditor(false); });
}
