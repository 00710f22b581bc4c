#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include <functional>

// One call to a desktop portal whose answer comes later, as the Response signal of a Request object.
// The object's path is known before the call (it ends in our handle_token), so the answer is listened
// for before it can be sent. Deletes itself once answered. Main thread.
class PortalRequest final : public QObject
{
    Q_OBJECT

public:
    // The portal's response code (0 success, 1 cancelled by the user, 2 ended otherwise) and results;
    // a call the bus refused comes back as 2 with the error's text.
    using Completion = std::function<void(uint response, const QVariantMap &results, const QString &error)>;

    static inline const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
    static inline const QString path = QStringLiteral("/org/freedesktop/portal/desktop");

    // Sends `call` with `options` (which gets the handle_token) appended as its last argument. The
    // completion runs unless `context` is gone by then.
    static void send(const QDBusConnection &bus, QDBusMessage call, QVariantMap options, QObject *context,
                     Completion completion);

private slots:
    void handleResponse(uint response, const QVariantMap &results);

private:
    PortalRequest(const QDBusConnection &bus, QObject *context, Completion completion);
    void listen(const QString &requestPath);
    void finish(uint response, const QVariantMap &results, const QString &error);

    QDBusConnection m_bus;
    QString m_requestPath;
    QPointer<QObject> m_context;
    Completion m_completion;
};
