#pragma once

#include "HotKeyHandlers.h"
#include "platform/HotKeyRegistrar.h"

#include <QDBusConnection>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>

#include <optional>

class QDBusObjectPath;
class SystemLog;

// Global hot keys on Wayland, through the desktop's GlobalShortcuts portal (org.freedesktop.portal.
// GlobalShortcuts on the session bus). The portal binds a session's shortcuts once, asynchronously, and
// may show the user a dialog first; so registrations are collected, and on the next turn of the event
// loop the current set is bound in a fresh session (the previous one closed): one shortcut per
// registration, named after the capture command it runs, with its keys as the preferred trigger.
//
// registerHotKey answers before the portal does. It fails at once when the portal or its
// GlobalShortcuts interface is absent (unimpErr -4) or the key is outside the table (paramErr -50);
// otherwise it accepts, and a later refusal (the user cancelled, the portal failed or bound fewer
// shortcuts) goes to the system log and shows as the binder Nobody. Activated signals of our session
// reach the installed handlers with the shortcut's identifier. Main thread only.
class PortalHotKeyRegistrar final : public QObject, public HotKeyRegistrar
{
    Q_OBJECT

public:
    static constexpr Status unimpErr = -4;
    static constexpr Status paramErr = -50;
    static constexpr Status eventHotKeyExistsErr = -9878;
    static inline const QString interface = QStringLiteral("org.freedesktop.portal.GlobalShortcuts");

    PortalHotKeyRegistrar(const QDBusConnection &bus, SystemLog &systemLog);
    ~PortalHotKeyRegistrar() override;

    Result installHandler(Handler handler) override { return m_handlers.install(std::move(handler)); }
    void removeHandler(Handle handler) override { m_handlers.remove(handler); }
    Result registerHotKey(quint32 keyCode, quint32 carbonModifiers, Identifier identifier) override;
    void unregisterHotKey(Handle hotKey) override;
    Binder binder() const override { return m_binder; }
    void setBinderObserver(BinderObserver observer) override;

private slots:
    void activated(const QDBusObjectPath &session, const QString &shortcutId, qulonglong timestamp,
                   const QVariantMap &options);

private:
    struct Registration
    {
        QString name;
        QString trigger;
        Identifier identifier;
    };

    bool hasPortal();
    void scheduleBind();
    void bind();
    void bindShortcuts(quint64 round);
    void shortcutsBound(uint response, const QVariantMap &results, const QString &error);
    void closeSession(const QString &session);
    void setBinder(Binder binder);

    QDBusConnection m_bus;
    SystemLog &m_systemLog;
    HotKeyHandlers m_handlers;
    QMap<Handle, Registration> m_registrations;
    Handle m_nextHandle = 1;
    // Asked once: a portal does not gain an interface while the session runs.
    std::optional<bool> m_hasPortal;
    bool m_isBindScheduled = false;
    // Answers of an earlier round are dropped: only the latest set counts.
    quint64 m_round = 0;
    QString m_session;
    // "name=trigger" of the set the latest round asked for.
    QStringList m_boundKeys;
    Binder m_binder = Binder::Pending;
    BinderObserver m_observer;
};
