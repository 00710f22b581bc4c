// Vistrel on macOS: an agent in the menu bar, started from its application bundle (Vistrel.app, whose
// Info.plist has LSUIElement, so there is no Dock icon). Builds the platform set, hands it to the
// process-wide instances and runs the controller in Qt's Cocoa event loop. The system keeps one
// instance of a bundle: opening Vistrel.app again activates the running one.
#include "AppLaunch.h"
#include "MacPlatform.h"

#include "app/AppDelegate.h"
#include "app/SettingsWindow.h"
#include "settings/AppSettings.h"
#include "update/SoftwareUpdaterModel.h"

#include <QApplication>

using namespace Qt::StringLiterals;

int main(int argc, char **argv)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(u"Vistrel"_s);
    QApplication::setQuitOnLastWindowClosed(false);

    MacPlatform platform;
    PlatformServices::install(platform.services());

    const std::unique_ptr<AppDelegate> delegate = applaunch::makeDelegate(
        app, [&platform] { return platform.makeSettingsWindow(AppSettings::shared(), SoftwareUpdaterModel::shared()); });
    delegate->applicationDidFinishLaunching();
    return app.exec();
}
