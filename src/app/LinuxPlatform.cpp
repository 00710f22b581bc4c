#include "LinuxPlatform.h"

#include "AppcastSoftwareUpdater.h"
#include "CanberraSoundPlayer.h"
#include "InputGrab.h"
#include "QtScreensDisplayProvider.h"
#include "DBusUserNotifier.h"
#include "DesktopWorkspace.h"
#include "JsonFileKeyValueStore.h"
#include "FastPngWriter.h"
#include "GsettingsKeybindingStore.h"
#include "LinuxSystemLog.h"
#include "QtAlertPresenter.h"
#include "QtApplicationControl.h"
#include "QtEditorWindowFactory.h"
#include "QtFolderChooser.h"
#include "QtKeyEventMonitor.h"
#include "QtOpenPanel.h"
#include "QtSelectionWindowFactory.h"
#include "QtSettingsWindow.h"
#include "QtUpdateUserDriver.h"
#include "TrayStatusItem.h"
#include "XdgAutostartLoginItem.h"
#include "XdgFolders.h"

#include "app/ScreenshotPermissionNotice.h"
#include "app/ShortcutGuidanceRules.h"
#include "platform/Clock.h"
#include "platform/QtScheduler.h"

#include <QCoreApplication>
#include <QDBusConnection>

using namespace Qt::StringLiterals;

QString LinuxPlatform::diagnosticsLogFolder(const QProcessEnvironment &environment)
{
    return xdgfolders::diagnosticsLogFolder(environment);
}

QString LinuxPlatform::settingsPath(const QProcessEnvironment &environment)
{
    return xdgfolders::settingsPath(environment);
}

QString LinuxPlatform::autostartFolder(const QProcessEnvironment &environment)
{
    return xdgfolders::autostartFolder(environment);
}

LinuxPlatform::LinuxPlatform(std::unique_ptr<LinuxSystemLog> systemLog, SessionAdapters session,
                             const QProcessEnvironment &environment)
    : m_diagnosticsLogFolder(diagnosticsLogFolder(environment)),
      m_systemLog(std::move(systemLog)),
      m_scheduler(std::make_unique<QtScheduler>()),
      m_clock(std::make_unique<SystemClock>()),
      m_store(std::make_unique<JsonFileKeyValueStore>(settingsPath(environment), *m_systemLog)),
      m_loginItem(std::make_unique<XdgAutostartLoginItem>(autostartFolder(environment),
                                                          QCoreApplication::applicationFilePath())),
      m_session(std::move(session)),
      m_notifier(std::make_unique<DBusUserNotifier>(QDBusConnection::sessionBus(), *m_scheduler)),
      m_statusItem(std::make_unique<TrayStatusItem>()),
      m_application(std::make_unique<QtApplicationControl>()),
      m_workspace(std::make_unique<DesktopWorkspace>()),
      m_keyMonitor(std::make_unique<QtKeyEventMonitor>()),
      m_pngWriter(std::make_unique<FastPngWriter>()),
      m_updateDialogs(std::make_unique<QtUpdateUserDriver>()),
      m_updater(std::make_unique<AppcastSoftwareUpdater>(
          AppcastSoftwareUpdater::Configuration{AppcastSoftwareUpdater::configuredFeedURL(),
                                                QStringLiteral(VISTREL_BUILD_VERSION), QStringLiteral(VISTREL_VERSION)},
          AppcastSoftwareUpdater::Services{*m_store, *m_scheduler, *m_clock, *m_workspace, *m_updateDialogs,
                                           *m_systemLog})),
      m_selectionWindows(std::make_unique<QtSelectionWindowFactory>(
          *m_session.displays, *m_session.inputGrab,
          m_session.overlaysFillScreens ? QtSelectionWindowFactory::Placement::FillScreen
                                        : QtSelectionWindowFactory::Placement::Frame,
          m_session.overlayPainter.get())),
      m_editorWindows(std::make_unique<QtEditorWindowFactory>()),
      m_alerts(std::make_unique<QtAlertPresenter>()),
      m_openPanel(std::make_unique<QtOpenPanel>()),
      m_folderChooser(std::make_unique<QtFolderChooser>()),
      m_desktopKeybindings(std::make_unique<GsettingsKeybindingStore>())
{
    const bool onGnome = shortcutguidance::desktopFrom(environment.value(u"XDG_CURRENT_DESKTOP"_s), false)
        == shortcutguidance::Desktop::Gnome;
    if (onGnome && m_session.portalReadsScreen)
        m_permissionNotice =
            std::make_unique<ScreenshotPermissionNotice>(*m_session.permission, *m_store, *m_notifier);
}

LinuxPlatform::~LinuxPlatform() = default;

std::unique_ptr<SettingsWindow> LinuxPlatform::makeSettingsWindow(AppSettings &settings,
                                                                  SoftwareUpdaterModel &updater) const
{
    return std::make_unique<QtSettingsWindow>(QtSettingsWindow::Dependencies{
        settings, *m_folderChooser, updater,
        ApplicationVersion{QStringLiteral(VISTREL_VERSION), QStringLiteral(VISTREL_BUILD_VERSION)},
        XdgAutostartLoginItem::settingsCaption()});
}

void LinuxPlatform::setTrace(const std::function<void(const QString &line)> &trace) const
{
    m_workspace->setTrace(trace);
    m_statusItem->setTrace(trace);
    m_session.sounds->setTrace(trace);
    if (m_session.setTrace)
        m_session.setTrace(trace);
}

void LinuxPlatform::prepareFirstSelection()
{
    if (!m_session.prepareCapture)
        return;
    m_session.prepareCapture();
    // A Wayland window is placed by the compositor only once shown; only X11 overlays are made ahead.
    if (!m_session.overlaysFillScreens)
        m_selectionWindows->prepare();
}

PlatformServices LinuxPlatform::services() const
{
    PlatformServices services;
    services.diagnosticsLogFolder = m_diagnosticsLogFolder;
    services.application = m_application.get();
    services.clock = m_clock.get();
    services.hotKeys = m_session.hotKeys.get();
    services.store = m_store.get();
    services.loginItem = m_loginItem.get();
    services.scheduler = m_scheduler.get();
    services.statusItem = m_statusItem.get();
    services.systemLog = m_systemLog.get();
    services.notifier = m_notifier.get();
    services.displays = m_session.displays.get();
    services.cursor = m_session.cursor.get();
    services.screenCapturer = m_session.screenCapturer.get();
    services.screenCapturePermission = m_permissionNotice ? m_permissionNotice.get() : m_session.permission.get();
    services.windowList = m_session.windowList.get();
    services.pasteboard = m_session.pasteboard.get();
    services.sounds = m_session.sounds.get();
    services.workspace = m_workspace.get();
    services.keyMonitor = m_keyMonitor.get();
    services.pngWriter = m_pngWriter.get();
    services.updater = m_updater.get();
    services.selectionWindows = m_selectionWindows.get();
    services.editorWindows = m_editorWindows.get();
    services.alerts = m_alerts.get();
    services.openPanel = m_openPanel.get();
    services.desktopKeybindings = m_desktopKeybindings.get();
    return services;
}
