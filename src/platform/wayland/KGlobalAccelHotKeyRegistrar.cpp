#include "KGlobalAccelHotKeyRegistrar.h"

#include "app/CaptureHotKeys.h"
#include "platform/SystemLog.h"
#include "settings/ShortcutTriggers.h"

#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QKeySequence>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.kde.kglobalaccel"_s;
const QString componentInterface = u"org.kde.kglobalaccel.Component"_s;
// Registration happens at start-up and on a settings save; kglobalaccel answers at once or not at all.
constexpr int replyTimeoutMs = 1000;

// kglobalaccel's setShortcut flags.
constexpr uint setPresent = 2;
constexpr uint noAutoloading = 4;
constexpr uint isDefault = 8;

QDBusMessage call(const QString &method)
{
    return QDBusMessage::createMethodCall(service, u"/kglobalaccel"_s, u"org.kde.KGlobalAccel"_s, method);
}

QStringList actionId(const QString &name, quint32 identifierId)
{
    return {KGlobalAccelHotKeyRegistrar::component, name, u"Vistrel"_s, CaptureHotKeys::shortcutDescription(identifierId)};
}

// The key as Qt numbers it (modifiers plus key), which is how kglobalaccel stores shortcuts.
std::optional<int> qtKey(quint32 keyCode, quint32 carbonModifiers)
{
    std::optional<QString> combination = shortcuttriggers::readableCombination(keyCode, carbonModifiers);
    if (!combination)
        return std::nullopt;
    const QKeySequence sequence = QKeySequence::fromString(combination->replace(u"Super"_s, u"Meta"_s),
                                                           QKeySequence::PortableText);
    if (sequence.count() != 1 || sequence[0].key() == Qt::Key_unknown)
        return std::nullopt;
    return sequence[0].toCombined();
}

} // namespace

KGlobalAccelHotKeyRegistrar::KGlobalAccelHotKeyRegistrar(const QDBusConnection &bus, SystemLog &systemLog)
    : m_bus(bus), m_systemLog(systemLog)
{
    qDBusRegisterMetaType<QList<int>>();
}

KGlobalAccelHotKeyRegistrar::~KGlobalAccelHotKeyRegistrar()
{
    for (const Registration &registration : std::as_const(m_registrations))
        m_bus.call(call(u"setInactive"_s) << actionId(registration.name, registration.identifier.id), QDBus::NoBlock);
}

HotKeyRegistrar::Result KGlobalAccelHotKeyRegistrar::registerHotKey(quint32 keyCode, quint32 carbonModifiers,
                                                                    Identifier identifier)
{
    const std::optional<int> key = qtKey(keyCode, carbonModifiers);
    if (!key)
        return {paramErr, 0};
    const QString name = CaptureHotKeys::shortcutName(identifier.id);
    for (const Registration &existing : std::as_const(m_registrations)) {
        if (existing.name == name)
            return {eventHotKeyExistsErr, 0};
    }
    const QStringList id = actionId(name, identifier.id);
    const QDBusMessage registered = m_bus.call(call(u"doRegister"_s) << id, QDBus::Block, replyTimeoutMs);
    if (registered.type() != QDBusMessage::ReplyMessage) {
        m_systemLog.log(u"Vistrel: KDE のショートカットサービスがありません: "_s % registered.errorMessage());
        if (m_registrations.isEmpty())
            setBinder(Binder::Nobody);
        return {unimpErr, 0};
    }
    const QList<int> keys{*key};
    m_bus.call(call(u"setShortcut"_s) << id << QVariant::fromValue(keys) << isDefault, QDBus::Block, replyTimeoutMs);
    const QDBusMessage set = m_bus.call(call(u"setShortcut"_s) << id << QVariant::fromValue(keys)
                                            << (setPresent | noAutoloading),
                                        QDBus::Block, replyTimeoutMs);
    const QList<int> given = set.arguments().isEmpty() ? QList<int>() : qdbus_cast<QList<int>>(set.arguments().constFirst());
    if (!given.contains(*key)) {
        m_systemLog.log(u"Vistrel: KDE のショートカットサービスが登録しなかったショートカット: "_s % name);
        if (m_registrations.isEmpty())
            setBinder(Binder::Nobody);
        return {eventHotKeyExistsErr, 0};
    }
    if (!m_listening) {
        const QDBusMessage path = m_bus.call(call(u"getComponent"_s) << component, QDBus::Block, replyTimeoutMs);
        if (path.type() == QDBusMessage::ReplyMessage && !path.arguments().isEmpty())
            m_listening = m_bus.connect(service, qdbus_cast<QDBusObjectPath>(path.arguments().constFirst()).path(),
                                        componentInterface, u"globalShortcutPressed"_s, this,
                                        SLOT(pressed(QString, QString, qlonglong)));
    }
    const Handle handle = m_nextHandle++;
    m_registrations.insert(handle, {name, identifier});
    setBinder(Binder::System);
    return {noErr, handle};
}

void KGlobalAccelHotKeyRegistrar::unregisterHotKey(Handle hotKey)
{
    const auto found = m_registrations.constFind(hotKey);
    if (found == m_registrations.cend())
        return;
    m_bus.call(call(u"setInactive"_s) << actionId(found->name, found->identifier.id), QDBus::NoBlock);
    m_registrations.erase(found);
}

void KGlobalAccelHotKeyRegistrar::pressed(const QString &componentName, const QString &actionName, qlonglong)
{
    if (componentName != component)
        return;
    for (const Registration &registration : std::as_const(m_registrations)) {
        if (registration.name != actionName)
            continue;
        // A copy: a handler may re-register, which changes the registrations under us.
        const Identifier identifier = registration.identifier;
        m_handlers.dispatch(identifier);
        return;
    }
}

void KGlobalAccelHotKeyRegistrar::setBinder(Binder binder)
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
