#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMutex>
#include <QThread>
#include <QStringList>
#include <QTimer>
#include <QVariantMap>

#include <optional>

// One shortcut of the portal's a(sa{sv}) lists.
struct FakePortalShortcut
{
    QString id;
    QVariantMap properties;
};
Q_DECLARE_METATYPE(FakePortalShortcut)

inline QDBusArgument &operator<<(QDBusArgument &argument, const FakePortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

inline const QDBusArgument &operator>>(const QDBusArgument &argument, FakePortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

// The desktop portal's GlobalShortcuts interface on a test's private bus, on its own connection and its
// own thread (the client asks for the interface with a blocking call): it records the sessions, binds
// and closes it is asked for, and answers each request with the Response the test scripted, after the
// call returned, as a portal does. Activated is sent when the test asks.
class FakeGlobalShortcutsPortal final
{
public:
    static inline const QString root = QStringLiteral("/org/freedesktop/portal/desktop");
    static inline const QString interfaceName = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

    struct Script
    {
        bool hasInterface = true;
        uint createResponse = 0;
        uint bindResponse = 0;
        // The ids the portal says it bound; all it was asked for when unset.
        std::optional<QStringList> boundIds;
    };
    struct Bind
    {
        QString session;
        QList<FakePortalShortcut> shortcuts;
    };
    struct Record
    {
        QStringList sessions;
        QList<Bind> binds;
        QStringList closedSessions;
    };

    FakeGlobalShortcutsPortal(const QString &busAddress, Script script)
        : m_script(std::move(script)),
          m_bus(QDBusConnection::connectToBus(busAddress, QStringLiteral("fake-portal"))), m_service(*this)
    {
        qDBusRegisterMetaType<FakePortalShortcut>();
        qDBusRegisterMetaType<QList<FakePortalShortcut>>();
        m_thread.start();
        m_service.moveToThread(&m_thread);
        m_bus.registerVirtualObject(root, &m_service, QDBusConnection::SubPath);
        isServing = m_bus.registerService(QStringLiteral("org.freedesktop.portal.Desktop"));
    }
    ~FakeGlobalShortcutsPortal()
    {
        m_bus.unregisterService(QStringLiteral("org.freedesktop.portal.Desktop"));
        m_bus.unregisterObject(root, QDBusConnection::UnregisterTree);
        m_thread.quit();
        m_thread.wait();
        QDBusConnection::disconnectFromBus(QStringLiteral("fake-portal"));
    }

    void activate(const QString &session, const QString &shortcutId)
    {
        QDBusMessage signal = QDBusMessage::createSignal(root, interfaceName, QStringLiteral("Activated"));
        signal << QVariant::fromValue(QDBusObjectPath(session)) << shortcutId << qulonglong(1234) << QVariantMap();
        m_bus.send(signal);
    }

    Record record() const
    {
        QMutexLocker lock(&m_mutex);
        return m_record;
    }

    bool isServing = false;

private:
    // Runs on the portal's thread.
    bool handle(const QDBusMessage &message)
    {
        const QString member = message.member();
        const QVariantList arguments = message.arguments();
        if (message.interface() == QStringLiteral("org.freedesktop.DBus.Properties") && member == QStringLiteral("Get")) {
            if (m_script.hasInterface && arguments.value(0).toString() == interfaceName)
                m_bus.send(message.createReply(QVariant::fromValue(QDBusVariant(QVariant(2u)))));
            else
                m_bus.send(message.createErrorReply(QDBusError::InvalidArgs, QStringLiteral("No such interface")));
            return true;
        }
        QMutexLocker lock(&m_mutex);
        if (message.interface() == QStringLiteral("org.freedesktop.portal.Session") && member == QStringLiteral("Close")) {
            m_record.closedSessions.append(message.path());
            m_bus.send(message.createReply());
            return true;
        }
        if (!m_script.hasInterface || message.interface() != interfaceName)
            return false;
        const QString sender = message.service().mid(1).replace(u'.', u'_');
        const QVariantMap options = qdbus_cast<QVariantMap>(arguments.constLast());
        const QString request =
            root + QStringLiteral("/request/") + sender + u'/' + options.value(QStringLiteral("handle_token")).toString();
        if (member == QStringLiteral("CreateSession")) {
            const QString session = root + QStringLiteral("/session/") + sender + u'/'
                + options.value(QStringLiteral("session_handle_token")).toString();
            m_record.sessions.append(session);
            answer(message, request, m_script.createResponse, {{QStringLiteral("session_handle"), session}});
            return true;
        }
        if (member == QStringLiteral("BindShortcuts")) {
            const Bind bind{qdbus_cast<QDBusObjectPath>(arguments.value(0)).path(),
                            qdbus_cast<QList<FakePortalShortcut>>(arguments.value(1))};
            m_record.binds.append(bind);
            QList<FakePortalShortcut> bound;
            for (const FakePortalShortcut &shortcut : bind.shortcuts) {
                if (!m_script.boundIds || m_script.boundIds->contains(shortcut.id))
                    bound.append({shortcut.id, {{QStringLiteral("trigger_description"),
                                                 shortcut.properties.value(QStringLiteral("preferred_trigger"))}}});
            }
            answer(message, request, m_script.bindResponse, {{QStringLiteral("shortcuts"), QVariant::fromValue(bound)}});
            return true;
        }
        return false;
    }

    void answer(const QDBusMessage &call, const QString &request, uint response, const QVariantMap &results)
    {
        m_bus.send(call.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        QTimer::singleShot(0, &m_service, [this, request, response, results] {
            QDBusMessage signal = QDBusMessage::createSignal(request, QStringLiteral("org.freedesktop.portal.Request"),
                                                             QStringLiteral("Response"));
            signal << response << results;
            m_bus.send(signal);
        });
    }

    class Service final : public QDBusVirtualObject
    {
    public:
        explicit Service(FakeGlobalShortcutsPortal &portal) : m_portal(portal) {}
        QString introspect(const QString &) const override { return {}; }
        bool handleMessage(const QDBusMessage &message, const QDBusConnection &) override
        {
            return m_portal.handle(message);
        }

    private:
        FakeGlobalShortcutsPortal &m_portal;
    };

    const Script m_script;
    QDBusConnection m_bus;
    QThread m_thread;
    Service m_service;
    mutable QMutex m_mutex;
    Record m_record;
};
