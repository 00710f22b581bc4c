#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

// A notification server on a test's private bus, on its own connection: it records what Notify was
// given and sends the signals the test asks for, to everyone on the bus (as some desktops do).
class FakeNotificationServer final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    FakeNotificationServer(const QString &busAddress, QStringList serverCapabilities)
        : capabilities(std::move(serverCapabilities)),
          m_bus(QDBusConnection::connectToBus(busAddress, QStringLiteral("fake-notification-server")))
    {
        m_bus.registerObject(QStringLiteral("/org/freedesktop/Notifications"), this,
                             QDBusConnection::ExportAllSlots);
        isServing = m_bus.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }
    ~FakeNotificationServer() override
    {
        m_bus.unregisterService(QStringLiteral("org.freedesktop.Notifications"));
        QDBusConnection::disconnectFromBus(QStringLiteral("fake-notification-server"));
    }

    void emitSignal(const QString &name, const QVariantList &arguments)
    {
        QDBusMessage message = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/Notifications"),
                                                          QStringLiteral("org.freedesktop.Notifications"), name);
        message.setArguments(arguments);
        m_bus.send(message);
    }

    // What a Notify call asked for beyond its texts.
    struct Notification
    {
        QStringList actions;
        QVariantMap hints;
    };

    bool isServing = false;
    QStringList capabilities;
    QList<Notification> received;

public slots:
    QStringList GetCapabilities() { return capabilities; }
    uint Notify(const QString &, uint, const QString &, const QString &, const QString &, const QStringList &actions,
                const QVariantMap &hints, int)
    {
        received.append({actions, hints});
        return uint(100 + received.size());
    }

private:
    QDBusConnection m_bus;
};
