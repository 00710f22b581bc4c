#pragma once

#include "platform/SystemLog.h"

// The "Vistrel: …" messages on macOS: NSLog, which the unified log and Console keep. Any thread.
class MacSystemLog final : public SystemLog
{
public:
    void log(const QString &message) override;
};
