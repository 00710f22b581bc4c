// The vistrel program: reads the command line and does what it asks. A capture runs here, without any
// Qt GUI library; the tray application itself, and the hand-over of commands to it, are in the
// application module, loaded only when needed (ApplicationEntry.h).
#include "ApplicationModule.h"
#include "CaptureCommand.h"

#include "app/CommandLine.h"

#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

int fail(int status, const QString &reason)
{
    std::fprintf(stderr, "vistrel: %s\n", reason.toLocal8Bit().constData());
    return status;
}

std::optional<applicationmodule::Entries> loadModule()
{
    QString error;
    std::optional<applicationmodule::Entries> entries = applicationmodule::load(error);
    if (!entries)
        fail(commandline::exitFailure, error);
    return entries;
}

// Why a command for the running instance did not reach it, or nothing when it did.
std::optional<QString> forwardProblem(applicationentry::ForwardResult result)
{
    switch (result) {
    case applicationentry::Delivered:
        return std::nullopt;
    case applicationentry::NotRunning:
        return u"Vistrel is not running (start it with: vistrel)"_s;
    case applicationentry::NoAnswer:
        return u"Vistrel is running but did not answer"_s;
    case applicationentry::NoSessionBus:
        return u"there is no D-Bus session bus to reach a running Vistrel through"_s;
    }
    return u"unknown answer from the application module"_s;
}

int forwardOnly(const QString &command)
{
    const std::optional<applicationmodule::Entries> module = loadModule();
    if (!module)
        return commandline::exitFailure;
    const std::optional<QString> problem = forwardProblem(applicationmodule::forward(*module, command, {}));
    return problem ? fail(commandline::exitFailure, *problem) : commandline::exitSuccess;
}

int runApplication(const char *programName, const QStringList &arguments)
{
    const std::optional<applicationmodule::Entries> module = loadModule();
    if (!module)
        return commandline::exitFailure;
    return applicationmodule::runApplication(*module, programName, arguments);
}

int edit(const char *programName, const QString &file)
{
    if (file.isEmpty())
        return runApplication(programName, {u"edit"_s});
    const QFileInfo info(file);
    if (!info.isFile())
        return fail(commandline::exitFailure, u"cannot open %1: there is no such file"_s.arg(file));
    if (!info.isReadable())
        return fail(commandline::exitFailure, u"cannot open %1: it is not readable"_s.arg(file));
    // The running instance may work in another folder.
    return runApplication(programName, {u"edit"_s, info.absoluteFilePath()});
}

std::optional<QString> copyThroughInstance(const QString &path)
{
    QString error;
    const std::optional<applicationmodule::Entries> module = applicationmodule::load(error);
    if (!module)
        return u"the capture was not put on the clipboard: "_s % error;
    const std::optional<QString> problem = forwardProblem(applicationmodule::forward(*module, u"copy"_s, {path}));
    if (problem)
        return u"the capture was not put on the clipboard: "_s % *problem;
    return std::nullopt;
}

} // namespace

int main(int argc, char **argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QFile::decodeName(argv[i]));
    const commandline::Parsed parsed = commandline::parse(arguments);
    if (parsed.error)
        return fail(commandline::exitWrongArguments, *parsed.error);

    const commandline::Invocation &invocation = parsed.invocation;
    switch (invocation.command) {
    case commandline::Command::Help:
        std::fputs(commandline::usage().toLocal8Bit().constData(), stdout);
        return commandline::exitSuccess;
    case commandline::Command::Version:
        std::printf("%s\n", commandline::versionText().toLocal8Bit().constData());
        return commandline::exitSuccess;
    case commandline::Command::Capture:
        return capturecommand::run(invocation.capture, QProcessEnvironment::systemEnvironment(),
                                   copyThroughInstance);
    case commandline::Command::Select:
        return forwardOnly(u"select"_s);
    case commandline::Command::Repeat:
        return forwardOnly(u"repeat"_s);
    case commandline::Command::Quit:
        return forwardOnly(u"quit"_s);
    case commandline::Command::Edit:
        return edit(argv[0], invocation.file);
    case commandline::Command::Settings:
        return runApplication(argv[0], {u"settings"_s});
    case commandline::Command::Activate:
        break;
    }
    return runApplication(argv[0], {u"activate"_s});
}
