#pragma once

#include <QString>

// The system log: every user-facing "Vistrel: …" message goes here, apart from the English trace of the
// diagnostics file. macOS: NSLog. Linux: standard error and syslog.
class SystemLog
{
public:
    virtual ~SystemLog() = default;
    virtual void log(const QString &message) = 0;
};
