#include "MacPlatform.h"

#include "FastPngWriter.h"
#include "MacApplicationControl.h"
#include "MacBundle.h"
#include "MacCursor.h"
#include "MacDisplayProvider.h"
#include "MacExceptionHandler.h"
#include "MacHotKeyRegistrar.h"
#include "MacKeyEventMonitor.h"
#include "MacLegacyPreferencesSource.h"
#include "MacLoginItem.h"
#include "MacMappings.h"
#include "MacPasteboard.h"
#include "MacScreenCapturePermission.h"
#include "MacScreenCapturer.h"
#include "MacSelectionWindowFactory.h"
#include "MacSoftwareUpdater.h"
#include "MacSoundPlayer.h"
#include "MacStatusItem.h"
#include "MacSystemLog.h"
#include "MacUserDefaultsStore.h"
#include "MacUserNotifier.h"
#include "MacWindowList.h"
#include "MacWorkspace.h"
#include "QtAlertPresenter.h"
#include "QtEditorWindowFactory.h"
#include "QtFolderChooser.h"
#include "QtOpenPanel.h"
#include "QtSettingsWindow.h"

#include "platform/Clock.h"
#include "platform/QtScheduler.h"
#include "platform/SoftwareUpdater.h"

using namespace Qt::StringLiterals;

QString MacPlatform::diagnosticsLogFolder()
{
    return macmappings::diagnosticsLogFolder(macbundle::userLibraryFolder(), macbundle::homeFolder());
}

std::optional<QString> MacPlatform::shortVersion()
{
    return macbundle::infoString(u"CFBundleShortVersionString"_s);
}

std::optional<QString> MacPlatform::buildVersion()
{
    return macbundle::infoString(u"CFBundleVersion"_s);
}

QString MacPlatform::loginItemCaption()
{
    return macmappings::loginItemCaption();
}

MacPlatform::MacPlatform()
    : m_systemLog(std::make_unique<MacSystemLog>()),
      m_scheduler(std::make_unique<QtScheduler>()),
      m_clock(std::make_unique<SystemClock>()),
      m_store(std::make_unique<MacUserDefaultsStore>()),
      m_legacyPreferences(std::make_unique<MacLegacyPreferencesSource>()),
      m_loginItem(std::make_unique<MacLoginItem>()),
      m_notifier(std::make_unique<MacUserNotifier>()),
      m_hotKeys(std::make_unique<MacHotKeyRegistrar>()),
      m_statusItem(std::make_unique<MacStatusItem>()),
      m_application(std::make_unique<MacApplicationControl>()),
      m_displays(std::make_unique<MacDisplayProvider>()),
      m_cursor(std::make_unique<MacCursor>()),
      m_screenCapturer(std::make_unique<MacScreenCapturer>()),
      m_permission(std::make_unique<MacScreenCapturePermission>()),
      m_windowList(std::make_unique<MacWindowList>()),
      m_pasteboard(std::make_unique<MacPasteboard>()),
      m_sounds(std::make_unique<MacSoundPlayer>()),
      m_workspace(std::make_unique<MacWorkspace>()),
      m_keyMonitor(std::make_unique<MacKeyEventMonitor>()),
      m_pngWriter(std::make_unique<FastPngWriter>()),
      m_updater(makeMacSoftwareUpdater(*m_systemLog)),
      m_selectionWindows(std::make_unique<MacSelectionWindowFactory>(*m_displays)),
      m_editorWindows(std::make_unique<QtEditorWindowFactory>()),
      m_alerts(std::make_unique<QtAlertPresenter>()),
      m_openPanel(std::make_unique<QtOpenPanel>()),
      m_folderChooser(std::make_unique<QtFolderChooser>())
{
}

MacPlatform::~MacPlatform() = default;

std::unique_ptr<SettingsWindow> MacPlatform::makeSettingsWindow(AppSettings &settings,
                                                                SoftwareUpdaterModel &updater) const
{
    return std::make_unique<QtSettingsWindow>(QtSettingsWindow::Dependencies{
        settings, *m_folderChooser, updater, ApplicationVersion{shortVersion(), buildVersion()}, loginItemCaption()});
}

PlatformServices MacPlatform::services() const
{
    PlatformServices services;
    services.diagnosticsLogFolder = diagnosticsLogFolder();
    services.installUncaughtExceptionHandler = &macexceptions::installUncaughtExceptionHandler;
    services.application = m_application.get();
    services.clock = m_clock.get();
    services.hotKeys = m_hotKeys.get();
    services.store = m_store.get();
    services.legacyPreferences = m_legacyPreferences.get();
    services.loginItem = m_loginItem.get();
    services.scheduler = m_scheduler.get();
    services.statusItem = m_statusItem.get();
    services.systemLog = m_systemLog.get();
    services.notifier = m_notifier.get();
    services.displays = m_displays.get();
    services.cursor = m_cursor.get();
    services.screenCapturer = m_screenCapturer.get();
    services.screenCapturePermission = m_permission.get();
    services.windowList = m_windowList.get();
    services.pasteboard = m_pasteboard.get();
    services.sounds = m_sounds.get();
    services.workspace = m_workspace.get();
    services.keyMonitor = m_keyMonitor.get();
    services.pngWriter = m_pngWriter.get();
    services.updater = m_updater.get();
    services.selectionWindows = m_selectionWindows.get();
    services.editorWindows = m_editorWindows.get();
    services.alerts = m_alerts.get();
    services.openPanel = m_openPanel.get();
    return services;
}
