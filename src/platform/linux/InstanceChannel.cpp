#include "InstanceChannel.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace {
// Long enough for an instance that is busy starting up, short enough that a hung one does not keep
// the new start waiting.
constexpr int forwardTimeoutMs = 5000;
} // namespace

InstanceChannel::InstanceChannel(const QDBusConnection &bus) : m_bus(bus) {}

InstanceChannel::~InstanceChannel()
{
    if (m_isListening) {
        m_bus.unregisterService(serviceName);
        m_bus.unregisterObject(objectPath);
    }
}

InstanceChannel::Outcome InstanceChannel::listen(Handler handler)
{
    if (!m_bus.isConnected())
        return Outcome::NoSessionBus;
    m_handler = std::move(handler);
    if (!m_bus.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots))
        return Outcome::AnotherInstanceRuns;
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply = m_bus.interface()->registerService(
        serviceName, QDBusConnectionInterface::DontQueueService, QDBusConnectionInterface::DontAllowReplacement);
    if (!reply.isValid() || reply.value() != QDBusConnectionInterface::ServiceRegistered) {
        m_bus.unregisterObject(objectPath);
        return Outcome::AnotherInstanceRuns;
    }
    m_isListening = true;
    return Outcome::Listening;
}

bool InstanceChannel::hasInstance() const
{
    if (!m_bus.isConnected())
        return false;
    const QDBusReply<bool> reply = m_bus.interface()->isServiceRegistered(serviceName);
    return reply.isValid() && reply.value();
}

bool InstanceChannel::tryForward(const QString &command, const QStringList &arguments)
{
    if (!m_bus.isConnected())
        return false;
    QDBusMessage message =
        QDBusMessage::createMethodCall(serviceName, objectPath, QStringLiteral("org.vistrel.Vistrel"),
                                       QStringLiteral("Command"));
    message << command << arguments;
    // No auto-start: only a running instance may take the command.
    message.setAutoStartService(false);
    return m_bus.call(message, QDBus::Block, forwardTimeoutMs).type() == QDBusMessage::ReplyMessage;
}

void InstanceChannel::Command(const QString &command, const QStringList &arguments)
{
    // After the reply, so a handler that opens a modal window never keeps the sender waiting.
    QMetaObject::invokeMethod(
        this,
        [this, command, arguments] {
            if (m_handler)
                m_handler(command, arguments);
        },
        Qt::QueuedConnection);
}
