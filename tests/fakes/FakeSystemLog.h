#pragma once

#include "platform/SystemLog.h"

#include <QMutex>
#include <QStringList>

class FakeSystemLog final : public SystemLog
{
public:
    void log(const QString &message) override
    {
        QMutexLocker lock(&m_mutex);
        m_messages.append(message);
    }
    QStringList messages() const
    {
        QMutexLocker lock(&m_mutex);
        return m_messages;
    }
    void clear()
    {
        QMutexLocker lock(&m_mutex);
        m_messages.clear();
    }

private:
    mutable QMutex m_mutex;
    QStringList m_messages;
};
