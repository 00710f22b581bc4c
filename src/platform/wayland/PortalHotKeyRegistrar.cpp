#include "PortalHotKeyRegistrar.h"

#include "PortalRequest.h"

#include "app/CaptureHotKeys.h"
#include "platform/SystemLog.h"
#include "settings/ShortcutTriggers.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QDBusVariant>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

// One element of the portal's a(sa{sv}) lists of shortcuts.
struct PortalShortcut
{
    QString id;
    QVariantMap properties;
};

QDBusArgument &operator<<(QDBusArgument &argument, const PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalShortcut &shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

// A portal started on demand may take a while to come up; a missing one answers at once.
constexpr int portalProbeTimeoutMs = 10000;

QString sessionHandle(const QVariant &value)
{
    // Documented as a string, sent by some portals as an object path.
    return value.canConvert<QDBusObjectPath>() ? value.value<QDBusObjectPath>().path() : value.toString();
}

} // namespace

Q_DECLARE_METATYPE(PortalShortcut)

PortalHotKeyRegistrar::PortalHotKeyRegistrar(const QDBusConnection &bus, SystemLog &systemLog)
    : m_bus(bus), m_systemLog(systemLog)
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    m_bus.connect(PortalRequest::service, PortalRequest::path, interface, u"Activated"_s, this,
                  SLOT(activated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
}

PortalHotKeyRegistrar::~PortalHotKeyRegistrar()
{
    closeSession(m_session);
}

HotKeyRegistrar::Result PortalHotKeyRegistrar::registerHotKey(quint32 keyCode, quint32 carbonModifiers,
                                                              Identifier identifier)
{
    const std::optional<QString> trigger = shortcuttriggers::xdgTrigger(keyCode, carbonModifiers);
    if (!trigger)
        return {paramErr, 0};
    if (!hasPortal()) {
        setBinder(Binder::Nobody);
        return {unimpErr, 0};
    }
    const QString name = CaptureHotKeys::shortcutName(identifier.id);
    for (const Registration &existing : std::as_const(m_registrations)) {
        if (existing.name == name || existing.trigger == *trigger)
            return {eventHotKeyExistsErr, 0};
    }
    const Handle handle = m_nextHandle++;
    m_registrations.insert(handle, {name, *trigger, identifier});
    scheduleBind();
    return {noErr, handle};
}

void PortalHotKeyRegistrar::unregisterHotKey(Handle hotKey)
{
    if (m_registrations.remove(hotKey) > 0)
        scheduleBind();
}

void PortalHotKeyRegistrar::setBinderObserver(BinderObserver observer)
{
    m_observer = std::move(observer);
}

bool PortalHotKeyRegistrar::hasPortal()
{
    if (m_hasPortal)
        return *m_hasPortal;
    QDBusMessage get = QDBusMessage::createMethodCall(PortalRequest::service, PortalRequest::path,
                                                      u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    get << interface << u"version"_s;
    const QDBusReply<QDBusVariant> version = m_bus.call(get, QDBus::Block, portalProbeTimeoutMs);
    m_hasPortal = version.isValid() && version.value().variant().toUInt() >= 1;
    if (!*m_hasPortal) {
        const QString reason = m_bus.isConnected() ? version.error().message() : m_bus.lastError().message();
        m_systemLog.log(u"Vistrel: ショートカットのポータルがありません: "_s % reason);
    }
    return *m_hasPortal;
}

void PortalHotKeyRegistrar::scheduleBind()
{
    // CaptureHotKeys unregisters and registers both shortcuts in one go: bind them together.
    if (std::exchange(m_isBindScheduled, true))
        return;
    QMetaObject::invokeMethod(this, &PortalHotKeyRegistrar::bind, Qt::QueuedConnection);
}

void PortalHotKeyRegistrar::bind()
{
    m_isBindScheduled = false;
    QStringList keys;
    for (const Registration &registration : std::as_const(m_registrations))
        keys.append(registration.name % u'=' % registration.trigger);
    // Every settings save registers again. The same keys keep their session, or their refusal: the
    // portal may ask the user each time, so it is asked again only when the keys change.
    if (keys == m_boundKeys)
        return;
    m_boundKeys = keys;
    const quint64 round = ++m_round;
    closeSession(std::exchange(m_session, QString()));
    if (m_registrations.isEmpty())
        return;
    setBinder(Binder::Pending);
    const QDBusMessage create =
        QDBusMessage::createMethodCall(PortalRequest::service, PortalRequest::path, interface, u"CreateSession"_s);
    PortalRequest::send(m_bus, create, {{u"session_handle_token"_s, u"vistrel_%1"_s.arg(round)}}, this,
                        [this, round](uint response, const QVariantMap &results, const QString &error) {
                            const QString session = sessionHandle(results.value(u"session_handle"_s));
                            if (round != m_round) {
                                // A newer set is on its way; this session will never be used.
                                closeSession(session);
                                return;
                            }
                            if (response != 0 || session.isEmpty()) {
                                shortcutsBound(response == 0 ? 2 : response, {}, error);
                                return;
                            }
                            m_session = session;
                            bindShortcuts(round);
                        });
}

void PortalHotKeyRegistrar::bindShortcuts(quint64 round)
{
    QList<PortalShortcut> shortcuts;
    for (const Registration &registration : std::as_const(m_registrations)) {
        shortcuts.append({registration.name,
                          {{u"description"_s, CaptureHotKeys::shortcutDescription(registration.identifier.id)},
                           {u"preferred_trigger"_s, registration.trigger}}});
    }
    QDBusMessage call =
        QDBusMessage::createMethodCall(PortalRequest::service, PortalRequest::path, interface, u"BindShortcuts"_s);
    call << QVariant::fromValue(QDBusObjectPath(m_session)) << QVariant::fromValue(shortcuts) << QString();
    PortalRequest::send(m_bus, call, {}, this,
                        [this, round](uint response, const QVariantMap &results, const QString &error) {
                            if (round == m_round)
                                shortcutsBound(response, results, error);
                        });
}

void PortalHotKeyRegistrar::shortcutsBound(uint response, const QVariantMap &results, const QString &error)
{
    if (response != 0) {
        const QString reason = error.isEmpty() ? QString::number(response) : error;
        m_systemLog.log(u"Vistrel: ポータルがショートカットの登録を拒否しました: "_s % reason);
        setBinder(Binder::Nobody);
        return;
    }
    QStringList bound;
    for (const PortalShortcut &shortcut : qdbus_cast<QList<PortalShortcut>>(results.value(u"shortcuts"_s)))
        bound.append(shortcut.id);
    QStringList missing;
    for (const Registration &registration : std::as_const(m_registrations)) {
        if (!bound.contains(registration.name))
            missing.append(registration.name);
    }
    if (!missing.isEmpty())
        m_systemLog.log(u"Vistrel: ポータルが登録しなかったショートカット: "_s % missing.join(u", "_s));
    setBinder(missing.size() == m_registrations.size() ? Binder::Nobody : Binder::Portal);
}

void PortalHotKeyRegistrar::closeSession(const QString &session)
{
    if (session.isEmpty())
        return;
    m_bus.send(QDBusMessage::createMethodCall(PortalRequest::service, session, u"org.freedesktop.portal.Session"_s,
                                              u"Close"_s));
}

void PortalHotKeyRegistrar::setBinder(Binder binder)
{
    if (binder == m_binder)
        return;
    m_binder = binder;
    // After the current call, so a registration never calls back into its caller.
    QMetaObject::invokeMethod(
        this,
        [this, binder] {
            if (m_observer)
                m_observer(binder);
        },
        Qt::QueuedConnection);
}

void PortalHotKeyRegistrar::activated(const QDBusObjectPath &session, const QString &shortcutId, qulonglong,
                                      const QVariantMap &)
{
    if (m_session.isEmpty() || session.path() != m_session)
        return;
    for (const Registration &registration : std::as_const(m_registrations)) {
        if (registration.name != shortcutId)
            continue;
        // A copy: a handler may re-register, which changes the registrations under us.
        const Identifier identifier = registration.identifier;
        m_handlers.dispatch(identifier);
        return;
    }
}
