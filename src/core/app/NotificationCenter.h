#pragma once

#include <QObject>
#include <QString>

#include <functional>

// Process-wide announcements by name, with no sender and no payload ("VistrelSettingsDidChange").
// Main thread only; observers run synchronously inside post().
class NotificationCenter final : public QObject
{
    Q_OBJECT

public:
    static NotificationCenter &defaultCenter();

    void post(const QString &name);
    // The observer lives as long as `context`.
    QMetaObject::Connection addObserver(const QString &name, QObject *context, std::function<void()> observer);

signals:
    void posted(const QString &name);
};
