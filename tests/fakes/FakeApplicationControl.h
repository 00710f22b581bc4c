#pragma once

#include "platform/ApplicationControl.h"

#include <QStringList>

class FakeApplicationControl final : public ApplicationControl
{
public:
    explicit FakeApplicationControl(QStringList *journal = nullptr) : m_journal(journal) {}

    void setAccessoryActivationPolicy() override { record(QStringLiteral("application.setAccessory")); }
    void activate() override
    {
        ++activateCount;
        record(QStringLiteral("application.activate"));
    }
    void terminate() override
    {
        ++terminateCount;
        record(QStringLiteral("application.terminate"));
    }

    int activateCount = 0;
    int terminateCount = 0;

private:
    void record(const QString &call)
    {
        if (m_journal)
            m_journal->append(call);
    }
    QStringList *m_journal;
};
