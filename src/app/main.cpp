// Vistrel on Linux: a tray agent on an X11 desktop. Checks the session, makes sure it is the only
// instance, builds the platform set, hands it to the process-wide instances and runs the controller.
//
//   vistrel [activate|select|repeat|settings|quit]
//   vistrel edit [FILE]      opens FILE in the editor, or the empty editor
// A second start hands its command to the running instance and exits.
#include "LinuxPlatform.h"

#include "DesktopWorkspace.h"
#include "InstanceChannel.h"
#include "X11SessionCheck.h"

#include "AppLaunch.h"

#include "app/AppDelegate.h"
#include "app/CrashDiagnostics.h"
#include "app/SettingsWindow.h"
#include "capture/ScreenshotManager.h"
#include "editor/ImageEditorManager.h"
#include "settings/AppSettings.h"
#include "update/SoftwareUpdaterModel.h"

#include <QApplication>
#include <QDBusConnection>
#include <QFileInfo>
#include <QUrl>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

int refuse(const QString &message)
{
    std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
    return 1;
}

// The arguments as the running instance needs them: files with absolute paths, since it runs in a
// folder of its own.
QStringList forwardedArguments(const QString &command, const QStringList &arguments)
{
    if (command != u"edit"_s)
        return arguments;
    QStringList absolute;
    for (const QString &argument : arguments)
        absolute.append(QFileInfo(argument).absoluteFilePath());
    return absolute;
}

// Commands of later starts: a plain start only notes that Vistrel already runs.
void perform(AppDelegate &delegate, const QString &command, const QStringList &arguments)
{
    if (command == u"edit"_s && !arguments.isEmpty())
        ImageEditorManager::shared().openImageFile(QUrl::fromLocalFile(arguments.first()));
    else if (command == u"edit"_s)
        delegate.openEditorLauncher();
    else if (command == u"settings"_s)
        delegate.showSettings();
    else if (command == u"select"_s)
        delegate.triggerScreenshot();
    else if (command == u"repeat"_s)
        ScreenshotManager::shared().captureLastSelection();
    else if (command == u"quit"_s)
        delegate.terminateApp();
    else
        CrashDiagnostics::shared().write(u"instance command "_s % command % u": already running"_s);
}

} // namespace

int main(int argc, char **argv)
{
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    if (const std::optional<QString> missing = x11session::missingDisplayMessage(environment))
        return refuse(*missing);
    if (const std::optional<QString> unreachable =
            x11session::unreachableDisplayMessage(environment.value(u"DISPLAY"_s)))
        return refuse(*unreachable);
    // Global key grabs, screen reads and the window list need X11, also under Xwayland.
    qputenv("QT_QPA_PLATFORM", "xcb");

    QApplication app(argc, argv);
    QApplication::setApplicationName(u"Vistrel"_s);
    QApplication::setDesktopFileName(u"vistrel"_s);
    QApplication::setQuitOnLastWindowClosed(false);
    const QStringList arguments = app.arguments().mid(1);
    const QString command = arguments.value(0, u"activate"_s);
    const QStringList commandArguments = forwardedArguments(command, arguments.mid(1));

    InstanceChannel channel(QDBusConnection::sessionBus());
    AppDelegate *running = nullptr;
    const InstanceChannel::Outcome outcome =
        channel.listen([&running](const QString &received, const QStringList &receivedArguments) {
            if (running)
                perform(*running, received, receivedArguments);
        });
    if (outcome == InstanceChannel::Outcome::AnotherInstanceRuns) {
        if (channel.tryForward(command, commandArguments))
            return 0;
        return refuse(u"Vistrel is already running, but it did not answer."_s);
    }

    auto *x11 = app.nativeInterface<QNativeInterface::QX11Application>();
    if (!x11)
        return refuse(u"Vistrel needs the Qt xcb platform plugin (libqt6gui6 with xcb support)."_s);
    LinuxPlatform platform(x11->connection(), environment);
    const PlatformServices services = platform.services();
    PlatformServices::install(services);
    platform.workspace().setTrace([](const QString &line) { CrashDiagnostics::shared().write(line); });

    const std::unique_ptr<AppDelegate> delegate = applaunch::makeDelegate(
        app, [&platform] { return platform.makeSettingsWindow(AppSettings::shared(), SoftwareUpdaterModel::shared()); });
    running = delegate.get();
    delegate->applicationDidFinishLaunching();
    if (command != u"activate"_s)
        perform(*delegate, command, commandArguments);
    const int status = app.exec();
    running = nullptr;
    return status;
}
