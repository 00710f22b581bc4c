#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QStringList>

#include <functional>

// One running Vistrel per user session. The first start owns the name "org.vistrel.Vistrel" on the
// session bus and takes commands there ("activate" for a plain start, later "select", "repeat",
// "edit FILE"…); a later start hands its command to that instance and exits, so there is never a
// second tray icon. The bus makes the choice atomic: of two starts at once, exactly one owns the name.
// Main thread only; commands reach the handler on the main thread, after the sender got its reply.
class InstanceChannel final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.vistrel.Vistrel")

public:
    static inline const QString serviceName = QStringLiteral("org.vistrel.Vistrel");
    static inline const QString objectPath = QStringLiteral("/org/vistrel/Vistrel");

    enum class Outcome {
        Listening,
        AnotherInstanceRuns,
        // Without a session bus nothing can be shared; the caller runs on its own.
        NoSessionBus,
    };
    using Handler = std::function<void(const QString &command, const QStringList &arguments)>;

    explicit InstanceChannel(const QDBusConnection &bus);
    ~InstanceChannel() override;

    Outcome listen(Handler handler);
    // Whether an instance owns the name now.
    bool hasInstance() const;
    // Delivers the command to the instance that listens. False when none took it in time.
    bool tryForward(const QString &command, const QStringList &arguments);

public slots:
    Q_SCRIPTABLE void Command(const QString &command, const QStringList &arguments);

private:
    QDBusConnection m_bus;
    Handler m_handler;
    bool m_isListening = false;
};
