#pragma once

#include "platform/DiagnosticsLog.h"

#include <QMutex>
#include <QStringList>

// Keeps the lines without time stamps. An optional journal records the calls among other fakes'.
class FakeDiagnosticsLog final : public DiagnosticsLog
{
public:
    explicit FakeDiagnosticsLog(QStringList *journal = nullptr) : m_journal(journal) {}

    void write(const QString &message) override
    {
        QMutexLocker lock(&m_mutex);
        m_lines.append(message);
        if (m_journal)
            m_journal->append(u"diagnostics: " + message);
    }
    void install() override
    {
        if (m_journal)
            m_journal->append(QStringLiteral("diagnostics.install"));
    }
    QStringList lines() const
    {
        QMutexLocker lock(&m_mutex);
        return m_lines;
    }
    void clear()
    {
        QMutexLocker lock(&m_mutex);
        m_lines.clear();
    }

private:
    mutable QMutex m_mutex;
    QStringList m_lines;
    QStringList *m_journal;
};
