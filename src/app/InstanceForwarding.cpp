// The module's entry for starts that only hand a command to the running instance (select, repeat,
// quit, and the clipboard of a command-line capture): a bus connection, no display, no window.
#include "ApplicationEntry.h"
#include "InstanceChannel.h"

#include <QCoreApplication>
#include <QFile>

extern "C" Q_DECL_EXPORT int vistrelForwardToInstance(int argc, char **argv)
{
    if (argc < 1)
        return applicationentry::NoAnswer;
    int applicationArgc = 1;
    char programName[] = "vistrel";
    char *applicationArgv[] = {programName, nullptr};
    const QCoreApplication application(applicationArgc, applicationArgv);

    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    InstanceChannel channel(QDBusConnection::sessionBus());
    if (!QDBusConnection::sessionBus().isConnected())
        return applicationentry::NoSessionBus;
    if (!channel.hasInstance())
        return applicationentry::NotRunning;
    return channel.tryForward(QFile::decodeName(argv[0]), arguments) ? applicationentry::Delivered
                                                                      : applicationentry::NoAnswer;
}
