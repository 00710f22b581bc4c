#pragma once

#include "platform/SystemLog.h"

// The "Vistrel: …" messages on Linux: one line on standard error and one syslog entry (ident
// "vistrel", facility user), which journald keeps where it runs. Safe from any thread.
class LinuxSystemLog final : public SystemLog
{
public:
    LinuxSystemLog();
    ~LinuxSystemLog() override;

    void log(const QString &message) override;
};
