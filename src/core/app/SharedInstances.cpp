// The process-wide instances, wired in one place. Each shared() builds its object on first use from the
// platform set main() installed and from the instances it depends on, so they come up in this order:
//   AppSettings, CrashDiagnostics  the preferences and the diagnostics log both managers use
//   ScreenshotManager              then handed the editor as the taker of its captures
//   ImageEditorManager
//   SoftwareUpdaterModel           made when launch first asks for the updater
// Only the app layer names these instances; the folders below it are handed what they use. Main thread.
#include "app/CrashDiagnostics.h"
#include "capture/ScreenshotManager.h"
#include "editor/ImageEditorManager.h"
#include "platform/NullAlertPresenter.h"
#include "platform/NullEditorWindowFactory.h"
#include "platform/NullOpenPanel.h"
#include "platform/PlatformServices.h"
#include "settings/AppSettings.h"
#include "update/SoftwareUpdaterModel.h"

CrashDiagnostics &CrashDiagnostics::shared()
{
    const PlatformServices &p = PlatformServices::shared();
    static CrashDiagnostics instance(p.diagnosticsLogFolder, p.installUncaughtExceptionHandler);
    return instance;
}

AppSettings &AppSettings::shared()
{
    const PlatformServices &p = PlatformServices::shared();
    static AppSettings instance(*p.store, *p.loginItem, *p.systemLog, p.legacyPreferences);
    return instance;
}

ScreenshotManager &ScreenshotManager::shared()
{
    const PlatformServices &p = PlatformServices::shared();
    static ScreenshotManager instance(CaptureServices{
        AppSettings::shared(), CrashDiagnostics::shared(), *p.systemLog, *p.scheduler, *p.clock, *p.displays,
        *p.screenCapturer, *p.screenCapturePermission, *p.windowList, *p.pasteboard, *p.sounds, *p.workspace,
        *p.cursor, *p.keyMonitor, *p.selectionWindows, *p.pngWriter});
    [[maybe_unused]] static const bool isHandingOffToEditor =
        (instance.setEditorHandOff(&ImageEditorManager::shared()), true);
    return instance;
}

ImageEditorManager &ImageEditorManager::shared()
{
    const PlatformServices &p = PlatformServices::shared();
    // Until a platform set has the editor's windows, dialogs and panel, the editor still takes
    // captures, notifies and saves, and says in the logs what it could not show.
    static NullEditorWindowFactory nullWindows(CrashDiagnostics::shared());
    static NullAlertPresenter nullAlerts(*p.systemLog);
    static NullOpenPanel nullOpenPanel(CrashDiagnostics::shared());
    static ImageEditorManager instance(ImageEditorServices{
        AppSettings::shared(), *p.store, CrashDiagnostics::shared(), *p.systemLog, *p.scheduler, *p.clock,
        *p.displays, *p.application, *p.notifier, *p.pasteboard, *p.pngWriter,
        p.editorWindows ? *p.editorWindows : nullWindows, p.alerts ? *p.alerts : nullAlerts,
        p.openPanel ? *p.openPanel : nullOpenPanel});
    return instance;
}

SoftwareUpdaterModel &SoftwareUpdaterModel::shared()
{
    const PlatformServices &p = PlatformServices::shared();
    static SoftwareUpdaterModel instance(*p.updater, *p.application, startsUpdaterInThisProcess());
    return instance;
}
