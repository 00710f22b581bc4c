#include "DBusUserNotifier.h"

#include "platform/Scheduler.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPointer>

using namespace Qt::StringLiterals;

namespace {
const QString path = u"/org/freedesktop/Notifications"_s;
const QString interface = u"org.freedesktop.Notifications"_s;

// Calls `onReply` with the finished call on the main thread, once. A connection without a bus hands
// out calls that a watcher never reports (they are failed from the start), so those are answered here.
template<typename Reply, typename OnReply>
void whenFinished(QObject *context, const QDBusConnection &bus, const QDBusPendingCall &call, OnReply onReply)
{
    if (!bus.isConnected()) {
        QMetaObject::invokeMethod(
            context, [call, onReply = std::move(onReply)] { onReply(Reply(call)); }, Qt::QueuedConnection);
        return;
    }
    auto *watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, onReply = std::move(onReply)] {
                         watcher->deleteLater();
                         onReply(Reply(*watcher));
                     });
}

} // namespace

QString DBusUserNotifier::describe(const QDBusError &error) const
{
    // The bus's own error says why there is none (no address, nobody listening at it).
    if (!m_bus.isConnected())
        return u"there is no session bus (%1)"_s.arg(m_bus.lastError().message());
    return u"no notification server answers on the session bus (%1)"_s.arg(error.message());
}

DBusUserNotifier::DBusUserNotifier(const QDBusConnection &bus, Scheduler &scheduler)
    : m_bus(bus), m_scheduler(scheduler)
{
    m_bus.connect(service, path, interface, u"ActionInvoked"_s, this, SLOT(actionInvoked(uint, QString)));
    m_bus.connect(service, path, interface, u"NotificationClosed"_s, this, SLOT(notificationClosed(uint, uint)));
}

QDBusMessage DBusUserNotifier::methodCall(const QString &method) const
{
    return QDBusMessage::createMethodCall(service, path, interface, method);
}

void DBusUserNotifier::setResponseHandler(ResponseHandler handler)
{
    m_onResponse = std::move(handler);
}

void DBusUserNotifier::requestAuthorization(AuthorizationCompletion completion)
{
    // Servers ask nobody for permission; one that answers shows what we send.
    whenFinished<QDBusPendingReply<QString, QString, QString, QString>>(
        this, m_bus, m_bus.asyncCall(methodCall(u"GetServerInformation"_s)),
        [this, completion = std::move(completion)](const QDBusPendingReply<QString, QString, QString, QString> &reply) {
            if (reply.isError())
                completion(false, describe(reply.error()));
            else
                completion(true, std::nullopt);
        });
}

void DBusUserNotifier::setCategories(const QStringList &)
{
    // The protocol has no categories: each request's category is kept with the id of its notification.
}

void DBusUserNotifier::add(const Request &request, ErrorCompletion completion)
{
    QPointer<DBusUserNotifier> self(this);
    m_scheduler.postToMainAfter(request.triggerDelaySeconds, [self, request, completion = std::move(completion)] {
        if (self)
            self->sendWhenServerCanAct(request, completion);
    });
}

void DBusUserNotifier::sendWhenServerCanAct(const Request &request, const ErrorCompletion &completion)
{
    whenFinished<QDBusPendingReply<QStringList>>(
        this, m_bus, m_bus.asyncCall(methodCall(u"GetCapabilities"_s)),
        [this, request, completion](const QDBusPendingReply<QStringList> &reply) {
            if (reply.isError())
                completion(describe(reply.error()));
            else if (!reply.value().contains(u"actions"_s))
                completion(u"the notification server cannot report clicks (no \"actions\" capability)"_s);
            else
                send(request, completion);
        });
}

void DBusUserNotifier::send(const Request &request, const ErrorCompletion &completion)
{
    QVariantMap hints{
        {u"urgency"_s, QVariant::fromValue(uchar(1))},
        {u"desktop-entry"_s, u"vistrel"_s},
    };
    // The freedesktop sound theme's name for a new message, the closest to the system's default sound.
    if (request.playsDefaultSound)
        hints.insert(u"sound-name"_s, u"message-new-instant"_s);
    else
        hints.insert(u"suppress-sound"_s, true);
    QDBusMessage notify = methodCall(u"Notify"_s);
    notify << u"Vistrel"_s << uint(0) << u"vistrel"_s << request.title << request.body
           << QStringList{u"default"_s, u"編集"_s} << hints << int(-1);
    const QString category = request.categoryIdentifier;
    whenFinished<QDBusPendingReply<uint>>(this, m_bus, m_bus.asyncCall(notify),
                                          [this, category, completion](const QDBusPendingReply<uint> &reply) {
                                              if (reply.isError()) {
                                                  completion(u"the notification server refused the notification (%1)"_s
                                                                 .arg(reply.error().message()));
                                                  return;
                                              }
                                              m_categoryById.insert(reply.value(), category);
                                              completion(std::nullopt);
                                          });
}

void DBusUserNotifier::actionInvoked(uint id, const QString &)
{
    // Every action counts as the click; signals about other programs' notifications are not ours.
    const auto it = m_categoryById.constFind(id);
    if (it == m_categoryById.constEnd())
        return;
    const QString category = *it;
    m_categoryById.erase(it);
    if (m_onResponse)
        m_onResponse(category);
}

void DBusUserNotifier::notificationClosed(uint id, uint)
{
    m_categoryById.remove(id);
}
