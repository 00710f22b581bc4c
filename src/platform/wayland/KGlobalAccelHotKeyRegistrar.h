#pragma once

#include "HotKeyHandlers.h"
#include "platform/HotKeyRegistrar.h"

#include <QDBusConnection>
#include <QMap>
#include <QObject>
#include <QString>

class SystemLog;

// Global hot keys on KDE Plasma through its own shortcut service, kglobalaccel (org.kde.kglobalaccel on
// the session bus): each registration becomes an action of the component "vistrel", named after the
// capture command it runs, with its keys both as the default and as the current shortcut, so it is
// listed in System Settings › Shortcuts. Vistrel's own settings decide the keys: a registration sets
// them again over what was stored. Unregistering makes the action inactive, as KDE applications leave
// theirs when they quit. Presses arrive as the component's globalShortcutPressed signal.
//
// Registration waits for kglobalaccel's answer (a short time). It fails with unimpErr (-4) when
// kglobalaccel does not answer, paramErr (-50) for a key outside the table, eventHotKeyExistsErr
// (-9878) for a second registration of a command or keys another application holds. Main thread only.
class KGlobalAccelHotKeyRegistrar final : public QObject, public HotKeyRegistrar
{
    Q_OBJECT

public:
    static constexpr Status unimpErr = -4;
    static constexpr Status paramErr = -50;
    static constexpr Status eventHotKeyExistsErr = -9878;
    static inline const QString component = QStringLiteral("vistrel");

    KGlobalAccelHotKeyRegistrar(const QDBusConnection &bus, SystemLog &systemLog);
    ~KGlobalAccelHotKeyRegistrar() override;

    Result installHandler(Handler handler) override { return m_handlers.install(std::move(handler)); }
    void removeHandler(Handle handler) override { m_handlers.remove(handler); }
    Result registerHotKey(quint32 keyCode, quint32 carbonModifiers, Identifier identifier) override;
    void unregisterHotKey(Handle hotKey) override;
    Binder binder() const override { return m_binder; }
    void setBinderObserver(BinderObserver observer) override { m_observer = std::move(observer); }

private slots:
    void pressed(const QString &componentName, const QString &actionName, qlonglong timestamp);

private:
    struct Registration
    {
        QString name;
        Identifier identifier;
    };

    void setBinder(Binder binder);

    QDBusConnection m_bus;
    SystemLog &m_systemLog;
    HotKeyHandlers m_handlers;
    QMap<Handle, Registration> m_registrations;
    Handle m_nextHandle = 1;
    bool m_listening = false;
    Binder m_binder = Binder::Nobody;
    BinderObserver m_observer;
};
