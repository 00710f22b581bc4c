#pragma once

#include "platform/SoftwareUpdater.h"

#include <QStringList>

class FakeSoftwareUpdater final : public SoftwareUpdater
{
public:
    explicit FakeSoftwareUpdater(QStringList *journal = nullptr) : m_journal(journal) {}

    std::optional<QString> unavailableReason() const override { return std::nullopt; }
    void start() override { record(QStringLiteral("updater.start")); }
    bool canCheckForUpdates() const override { return canCheck; }
    void observeCanCheckForUpdates(std::function<void(bool)> observer) override { canCheckObserver = std::move(observer); }
    bool automaticallyChecksForUpdates() const override { return automatic; }
    void setAutomaticallyChecksForUpdates(bool on) override
    {
        automatic = on;
        ++automaticWrites;
    }
    std::optional<QDateTime> lastUpdateCheckDate() const override { return lastCheck; }
    void checkForUpdates() override { record(QStringLiteral("updater.checkForUpdates")); }

    // What the framework does by itself: a check starts or ends.
    void setCanCheck(bool value)
    {
        canCheck = value;
        if (canCheckObserver)
            canCheckObserver(value);
    }

    bool canCheck = true;
    bool automatic = true;
    std::optional<QDateTime> lastCheck;
    std::function<void(bool)> canCheckObserver;
    int automaticWrites = 0;

private:
    void record(const QString &call)
    {
        if (m_journal)
            m_journal->append(call);
    }
    QStringList *m_journal;
};
