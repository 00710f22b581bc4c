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

    struct Notification
    {
        QString appName, icon, summary, body;
        QStringList actions;
        QVariantMap hints;
    };

    bool isServing = false;
    QStringList capabilities;
    QList<Notification> received;

public slots:
    QStringList GetCapabilities() { return capabilities; }
    QString GetServerInformation(QString &vendor, QString &version, QString &protocolVersion)
    {
        vendor = QStringLiteral("test");
        version = QStringLiteral("1");
        protocolVersion = QStringLiteral("1.2");
        return QStringLiteral("fake");
    }
    uint Notify(const QString &appName, uint, const QString &icon, const QString &summary, const QString &body,
                const QStringList &actions, const QVariantMap &hints, int)
    {
        received.append({appName, icon, summary, body, actions, hints});
        return uint(100 + received.size());
    }

private:
    QDBusConnection m_bus;
};
