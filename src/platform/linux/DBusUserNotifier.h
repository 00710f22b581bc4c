#pragma once

#include "platform/UserNotifier.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>

class Scheduler;

// User notifications on Linux through the desktop's notification server (org.freedesktop.Notifications
// on the session bus). Each notification carries the "default" action; when the user invokes an action
// of one this process sent, the response handler gets the category of its request. Dismissing a
// notification is no response.
//
// Authorization means a server answers. A request fails, as a value, when there is no session bus, no
// server answers or the server cannot report actions back: then a click could never reach us. Main
// thread only; replies, failures and the server's signals arrive on the main thread.
class DBusUserNotifier final : public QObject, public UserNotifier
{
    Q_OBJECT

public:
    static inline const QString service = QStringLiteral("org.freedesktop.Notifications");

    DBusUserNotifier(const QDBusConnection &bus, Scheduler &scheduler);

    void setResponseHandler(ResponseHandler handler) override;
    void requestAuthorization(AuthorizationCompletion completion) override;
    void setCategories(const QStringList &categoryIdentifiers) override;
    void add(const Request &request, ErrorCompletion completion) override;

private slots:
    void actionInvoked(uint id, const QString &actionKey);
    void notificationClosed(uint id, uint reason);

private:
    void sendWhenServerCanAct(const Request &request, const ErrorCompletion &completion);
    void send(const Request &request, const ErrorCompletion &completion);
    QDBusMessage methodCall(const QString &method) const;
    QString describe(const QDBusError &error) const;

    QDBusConnection m_bus;
    Scheduler &m_scheduler;
    ResponseHandler m_onResponse;
    // Notifications of ours on screen, by the server's id.
    QHash<uint, QString> m_categoryById;
};
