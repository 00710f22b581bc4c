#include "PortalRequest.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <utility>

using namespace Qt::StringLiterals;

namespace {
const QString requestInterface = u"org.freedesktop.portal.Request"_s;

// The portal names the Request object after the caller's unique bus name and the token.
QString expectedRequestPath(const QDBusConnection &bus, const QString &token)
{
    QString sender = bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    return PortalRequest::path % u"/request/"_s % sender % u'/' % token;
}
} // namespace

PortalRequest::PortalRequest(const QDBusConnection &bus, QObject *context, Completion completion)
    : m_bus(bus), m_context(context), m_completion(std::move(completion))
{
}

void PortalRequest::send(const QDBusConnection &bus, QDBusMessage call, QVariantMap options, QObject *context,
                         Completion completion)
{
    static quint64 tokens = 0;
    const QString token = u"vistrel_%1"_s.arg(++tokens);
    options.insert(u"handle_token"_s, token);
    call << options;

    auto *request = new PortalRequest(bus, context, std::move(completion));
    request->listen(expectedRequestPath(bus, token));
    auto *watcher = new QDBusPendingCallWatcher(request->m_bus.asyncCall(call), request);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, request, [request](QDBusPendingCallWatcher *w) {
        w->deleteLater();
        const QDBusPendingReply<QDBusObjectPath> reply = *w;
        if (reply.isError()) {
            request->finish(2, {}, reply.error().name() % u": "_s % reply.error().message());
            return;
        }
        // Portals older than the token scheme answer on a path of their own choosing.
        if (reply.value().path() != request->m_requestPath)
            request->listen(reply.value().path());
    });
}

void PortalRequest::listen(const QString &requestPath)
{
    if (!m_requestPath.isEmpty())
        m_bus.disconnect(service, m_requestPath, requestInterface, u"Response"_s, this,
                         SLOT(handleResponse(uint, QVariantMap)));
    m_requestPath = requestPath;
    m_bus.connect(service, m_requestPath, requestInterface, u"Response"_s, this,
                  SLOT(handleResponse(uint, QVariantMap)));
}

void PortalRequest::handleResponse(uint response, const QVariantMap &results)
{
    finish(response, results, {});
}

void PortalRequest::finish(uint response, const QVariantMap &results, const QString &error)
{
    if (!m_completion)
        return;
    m_bus.disconnect(service, m_requestPath, requestInterface, u"Response"_s, this,
                     SLOT(handleResponse(uint, QVariantMap)));
    const Completion completion = std::exchange(m_completion, nullptr);
    const bool isWanted = !m_context.isNull();
    deleteLater();
    if (isWanted)
        completion(response, results, error);
}
