#include "AppLaunch.h"

#include "app/AppDelegate.h"
#include "app/CrashDiagnostics.h"
#include "app/SettingsWindow.h"
#include "app/ShortcutGuidanceRules.h"
#include "capture/ScreenshotManager.h"
#include "editor/ImageEditorManager.h"
#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"
#include "update/SoftwareUpdaterModel.h"

#include <QCoreApplication>

namespace applaunch {

std::unique_ptr<AppDelegate> makeDelegate(QCoreApplication &application, SettingsWindowMaker makeSettingsWindow)
{
    const PlatformServices &services = PlatformServices::shared();
    ScreenshotManager &capture = ScreenshotManager::shared();
    ImageEditorManager &editor = ImageEditorManager::shared();
    auto delegate = std::make_unique<AppDelegate>(AppDelegate::Dependencies{
        CrashDiagnostics::shared(), *services.application, *services.statusItem, *services.hotKeys,
        *services.notifier, *services.systemLog, *services.scheduler, *services.displays, AppSettings::shared(),
        capture, editor,
        []() -> UpdateCommands & { return SoftwareUpdaterModel::shared(); }, std::move(makeSettingsWindow),
        shortcutguidance::desktopFrom(qEnvironmentVariable("XDG_CURRENT_DESKTOP"),
                                      qEnvironmentVariableIsSet("SWAYSOCK")),
        services.desktopKeybindings});
    AppDelegate *controller = delegate.get();
    QObject::connect(&application, &QCoreApplication::aboutToQuit, controller,
                     [controller] { controller->applicationWillTerminate(); });
    return delegate;
}

} // namespace applaunch
