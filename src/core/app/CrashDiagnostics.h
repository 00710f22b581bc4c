#pragma once

#include "platform/DiagnosticsLog.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

// The diagnostics file and crash capture.
//
// write() appends one time-stamped line to diagnostics.log and echoes it to standard error; it is used
// from the main thread and from capture completions alike, so each call opens, appends and closes on its
// own. install() (once, early, on the main thread) opens a raw descriptor on the same file and installs
// handlers that record fatal signals and uncaught exceptions there before the process dies: C++
// exceptions here, and the system's own kind (NSException on macOS) through a handler the platform set
// installs.
class CrashDiagnostics final : public DiagnosticsLog
{
public:
    // Installs the system's handler of its own uncaught exceptions, which records them with
    // uncaughtExceptionRecord() through shared().write().
    using PlatformExceptionHandlerInstaller = std::function<void()>;

    // Built on first use in the folder the platform set names (app/SharedInstances.cpp).
    static CrashDiagnostics &shared();

    // Creates the folder (and its parents) if it is missing; a failure only means the file side stays
    // silent while standard error still gets every line.
    explicit CrashDiagnostics(const QString &logFolder,
                              PlatformExceptionHandlerInstaller installPlatformExceptionHandler = {});

    // "Uncaught <kind>: <name> reason=<reason or nil>", then the call stack, one symbol a line.
    static QString uncaughtExceptionRecord(const QString &kind, const QString &name,
                                           const std::optional<QString> &reason, const QStringList &callStack);

    const QString &logPath() const { return m_logPath; }

    void write(const QString &message) override;
    void install() override;

private:
    void openSignalLogFileIfNeeded();

    QString m_logPath;
    PlatformExceptionHandlerInstaller m_installPlatformExceptionHandler;
};

// The descriptor the fatal-signal handler writes to; -1 until install() opened it.
extern "C" int vistrelDiagnosticsFD;

// Installed for SIGABRT, SIGILL, SIGSEGV, SIGBUS, SIGTRAP, SIGFPE and SIGPIPE. Writes one constant line
// to standard error and the log, then lets the signal end the process as it would have.
extern "C" void vistrelSignalHandler(int signal);
