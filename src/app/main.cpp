// Vistrel on Linux: a tray agent on an X11 or Wayland desktop. Checks the session, makes sure it is the only
// instance, builds the platform set, hands it to the process-wide instances and runs the controller.
// The vistrel program (CommandLineMain.cpp) loads this module and runs it for the commands that start
// the application ("activate", "edit [FILE]", "settings"); a start that finds Vistrel running hands its
// command to that instance and exits.
#include "InstanceCommands.h"
#include "LinuxPlatform.h"

#include "DesktopWorkspace.h"
#include "InstanceChannel.h"
#include "LinuxSystemLog.h"
#include "ProcessMemory.h"
#include "DesktopSession.h"

#include "AppLaunch.h"
#include "WaylandSession.h"
#include "X11Session.h"

#include "app/AppDelegate.h"
#include "app/CrashDiagnostics.h"
#include "app/SettingsWindow.h"
#include "settings/AppSettings.h"
#include "update/SoftwareUpdaterModel.h"

#include <QApplication>
#include <QDBusConnection>
#include <QFileInfo>
#include <QTimer>

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

} // namespace

extern "C" Q_DECL_EXPORT int vistrelApplicationMain(int argc, char **argv)
{
    processmemory::returnLargeBlocksToTheSystem();
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const std::variant<desktopsession::Kind, QString> session = desktopsession::choose(environment);
    if (const QString *missing = std::get_if<QString>(&session))
        return refuse(*missing);
    const bool onWayland = std::get<desktopsession::Kind>(session) == desktopsession::Kind::Wayland;
    if (!onWayland) {
        if (const std::optional<QString> unreachable =
                desktopsession::unreachableDisplayMessage(environment.value(u"DISPLAY"_s)))
            return refuse(*unreachable);
    }
    // Qt's windows on the session's own display server: under Xwayland, X11 grabs would see neither the
    // screen nor the keyboard.
    qputenv("QT_QPA_PLATFORM", onWayland ? "wayland" : "xcb");

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
                instancecommands::perform(*running, received, receivedArguments);
        });
    if (outcome == InstanceChannel::Outcome::AnotherInstanceRuns) {
        if (channel.tryForward(command, commandArguments))
            return 0;
        return refuse(u"Vistrel is already running, but it did not answer."_s);
    }

    auto systemLog = std::make_unique<LinuxSystemLog>();
    std::variant<SessionAdapters, QString> adapters = u"Vistrel needs the Qt xcb platform plugin (libqt6gui6 with "
                                                      "xcb support)."_s;
    if (onWayland) {
        adapters = waylandsession::adapters(*systemLog);
    } else if (auto *x11 = app.nativeInterface<QNativeInterface::QX11Application>()) {
        adapters = x11session::adapters(x11->connection());
    }
    if (const QString *failure = std::get_if<QString>(&adapters))
        return refuse(*failure);
    LinuxPlatform platform(std::move(systemLog), std::move(std::get<SessionAdapters>(adapters)), environment);
    const PlatformServices services = platform.services();
    PlatformServices::install(services);
    platform.setTrace([](const QString &line) { CrashDiagnostics::shared().write(line); });

    const std::unique_ptr<AppDelegate> delegate = applaunch::makeDelegate(
        app, [&platform] { return platform.makeSettingsWindow(AppSettings::shared(), SoftwareUpdaterModel::shared()); });
    running = delegate.get();
    delegate->applicationDidFinishLaunching();
    // After the tray is up, so that starting is not slowed by it.
    QTimer::singleShot(0, &app, [&platform] { platform.prepareFirstSelection(); });
    if (command != u"activate"_s)
        instancecommands::perform(*delegate, command, commandArguments);
    const int status = app.exec();
    running = nullptr;
    return status;
}
