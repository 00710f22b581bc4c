#pragma once

#include "platform/SoftwareUpdater.h"

class SystemLog;

// Updates on a build that has no update feed configured: the state is reported as it is (no check can
// run), and a check the user asks for only says so in the system log. Main thread.
class UnconfiguredSoftwareUpdater final : public SoftwareUpdater
{
public:
    explicit UnconfiguredSoftwareUpdater(SystemLog &systemLog) : m_systemLog(systemLog) {}

    std::optional<QString> unavailableReason() const override;
    void start() override {}
    bool canCheckForUpdates() const override { return false; }
    void observeCanCheckForUpdates(std::function<void(bool)>) override {}
    bool automaticallyChecksForUpdates() const override { return false; }
    void setAutomaticallyChecksForUpdates(bool) override {}
    std::optional<QDateTime> lastUpdateCheckDate() const override { return std::nullopt; }
    void checkForUpdates() override;

private:
    SystemLog &m_systemLog;
};
