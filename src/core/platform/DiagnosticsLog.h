#pragma once

#include <QString>

// The English trace of what the application does (the diagnostics file), and the crash capture that
// records fatal signals and uncaught exceptions into it.
class DiagnosticsLog
{
public:
    virtual ~DiagnosticsLog() = default;
    // Appends one line. Callable from any thread.
    virtual void write(const QString &message) = 0;
    // Installs the crash handlers; once, early, on the main thread.
    virtual void install() = 0;
};
