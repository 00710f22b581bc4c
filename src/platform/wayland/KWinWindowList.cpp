#include "KWinWindowList.h"

#include "DesktopSpace.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QFile>
#include <QGuiApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// Space is pressed with the overlay up: loading, running and hearing from a script takes KWin a few
// milliseconds; one that has not reported by now is not going to.
constexpr int reportTimeoutMs = 500;
constexpr int callTimeoutMs = 300;
const QString receiverPath = u"/org/vistrel/KWinWindowList"_s;
const QString receiverInterface = u"org.vistrel.KWinWindowList"_s;

// KWin 5 lists windows with clientList() and numbers its desktops; KWin 6 has windowList() and desktop
// objects.
constexpr char scriptTemplate[] = R"(var listed = workspace.windowList ? workspace.windowList() : workspace.clientList();
var current = workspace.currentDesktop;
var report = [];
for (var i = 0; i < listed.length; ++i) {
    var w = listed[i];
    var onCurrent = w.onAllDesktops || (w.desktops !== undefined && w.desktops.indexOf !== undefined
        ? w.desktops.indexOf(current) >= 0 : w.desktop === current);
    var frame = w.frameGeometry;
    report.push({resourceClass: String(w.resourceClass), x: frame.x, y: frame.y, width: frame.width,
                 height: frame.height, stackingOrder: w.stackingOrder, minimized: !!w.minimized, hidden: !!w.hidden,
                 onCurrentDesktop: !!onCurrent, ordinary: !!(w.normalWindow || w.dialog || w.utility),
                 opacity: w.opacity});
}
callDBus("@SERVICE@", "@PATH@", "@INTERFACE@", "windows", "@TOKEN@", JSON.stringify(report));
)";

// Takes the script's report while onScreenWindows waits for it.
class Receiver final : public QDBusVirtualObject
{
public:
    std::function<void(const QString &token, const QByteArray &report)> received;

    QString introspect(const QString &) const override { return {}; }
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.interface() != receiverInterface || message.member() != u"windows"_s
            || message.arguments().size() != 2)
            return false;
        connection.send(message.createReply());
        if (received)
            received(message.arguments().at(0).toString(), message.arguments().at(1).toString().toUtf8());
        return true;
    }
};

QDBusMessage scripting(const QString &path, const QString &interface, const QString &method)
{
    return QDBusMessage::createMethodCall(u"org.kde.KWin"_s, path, interface, method);
}

} // namespace

std::unique_ptr<KWinWindowList> KWinWindowList::whereKWinRuns(const QDBusConnection &bus)
{
    if (!qEnvironmentVariableIsEmpty("SWAYSOCK") || !bus.isConnected() || !bus.interface()
        || !bus.interface()->isServiceRegistered(u"org.kde.KWin"_s).value())
        return nullptr;
    // Qt gives each window the desktop file name as its app id, which KWin reports as its class.
    return std::make_unique<KWinWindowList>(
        bus, Identity{QGuiApplication::desktopFileName(), QCoreApplication::applicationName()});
}

KWinWindowList::KWinWindowList(const QDBusConnection &bus, Identity identity)
    : m_bus(bus), m_identity(std::move(identity)), m_receiver(std::make_unique<Receiver>())
{
    m_bus.registerVirtualObject(receiverPath, m_receiver.get());
}

KWinWindowList::~KWinWindowList()
{
    m_bus.unregisterObject(receiverPath);
}

void KWinWindowList::trace(const QString &line) const
{
    if (m_trace)
        m_trace(u"window list unavailable: "_s % line);
}

std::optional<QList<WindowList::Entry>> KWinWindowList::onScreenWindows() const
{
    if (m_waiting || !m_scriptFolder.isValid())
        return std::nullopt;
    const QString token = QString::number(++m_lastRequest);
    const QString name = u"vistrel-window-list-%1"_s.arg(QCoreApplication::applicationPid());
    const QString scriptPath = m_scriptFolder.filePath(u"window-list.js"_s);
    QString script = QString::fromUtf8(scriptTemplate);
    script.replace(u"@SERVICE@"_s, m_bus.baseService())
        .replace(u"@PATH@"_s, receiverPath)
        .replace(u"@INTERFACE@"_s, receiverInterface)
        .replace(u"@TOKEN@"_s, token);
    QFile file(scriptPath);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(script.toUtf8()) < 0) {
        trace(u"cannot write KWin's script to "_s % scriptPath);
        return std::nullopt;
    }
    file.close();

    // A script of that name left by an earlier call that timed out would make KWin refuse this one.
    m_bus.call(scripting(u"/Scripting"_s, u"org.kde.kwin.Scripting"_s, u"unloadScript"_s) << name, QDBus::Block,
               callTimeoutMs);
    const QDBusMessage loaded = m_bus.call(
        scripting(u"/Scripting"_s, u"org.kde.kwin.Scripting"_s, u"loadScript"_s) << scriptPath << name,
        QDBus::Block, callTimeoutMs);
    const int id = loaded.arguments().value(0, -1).toInt();
    if (loaded.type() != QDBusMessage::ReplyMessage || id < 0) {
        trace(u"KWin did not load its script: "_s % loaded.errorName() % u" "_s % loaded.errorMessage());
        return std::nullopt;
    }

    std::optional<QByteArray> report;
    QEventLoop loop;
    auto *receiver = static_cast<Receiver *>(m_receiver.get());
    receiver->received = [&](const QString &from, const QByteArray &json) {
        if (from == token) {
            report = json;
            loop.quit();
        }
    };
    // KWin 5 puts a loaded script at /<id>, KWin 6 at /Scripting/Script<id>.
    QDBusMessage ran;
    for (const QString &path : {u"/%1"_s.arg(id), u"/Scripting/Script%1"_s.arg(id)}) {
        ran = m_bus.call(scripting(path, u"org.kde.kwin.Script"_s, u"run"_s), QDBus::Block, callTimeoutMs);
        if (ran.errorName() != u"org.freedesktop.DBus.Error.UnknownObject"_s)
            break;
    }
    if (ran.type() == QDBusMessage::ReplyMessage && !report) {
        m_waiting = true;
        QTimer::singleShot(reportTimeoutMs, &loop, &QEventLoop::quit);
        loop.exec(QEventLoop::ExcludeUserInputEvents);
        m_waiting = false;
    }
    receiver->received = nullptr;
    m_bus.call(scripting(u"/Scripting"_s, u"org.kde.kwin.Scripting"_s, u"unloadScript"_s) << name,
               QDBus::NoBlock);
    if (!report) {
        trace(ran.type() == QDBusMessage::ReplyMessage
                  ? u"KWin's script did not report within %1 ms"_s.arg(reportTimeoutMs)
                  : u"KWin did not run its script: "_s % ran.errorName() % u" "_s % ran.errorMessage());
        return std::nullopt;
    }
    // Qt's screens on KWin carry the layout coordinates KWin reports in.
    std::optional<QList<Entry>> listed = windows(*report, DesktopSpace::current().primary(), m_identity);
    if (!listed)
        trace(u"KWin's script reported no list"_s);
    return listed;
}

std::optional<QList<WindowList::Entry>> KWinWindowList::windows(const QByteArray &reportJson, const QRect &primary,
                                                                const Identity &identity)
{
    const QJsonDocument document = QJsonDocument::fromJson(reportJson);
    if (!document.isArray())
        return std::nullopt;
    struct Stacked
    {
        double stackingOrder;
        bool own;
        Entry entry;
    };
    QList<Stacked> shown;
    for (const QJsonValue &value : document.array()) {
        const QJsonObject window = value.toObject();
        if (window.value("minimized"_L1).toBool() || window.value("hidden"_L1).toBool()
            || !window.value("onCurrentDesktop"_L1).toBool(true))
            continue;
        const QString resourceClass = window.value("resourceClass"_L1).toString();
        const bool own = !identity.ownClass.isEmpty() && resourceClass == identity.ownClass;
        const QRectF frame(window.value("x"_L1).toDouble(), window.value("y"_L1).toDouble(),
                           window.value("width"_L1).toDouble(), window.value("height"_L1).toDouble());
        Entry entry;
        entry.bounds = desktopspace::toTopLeftGlobal(frame, primary);
        if (own)
            entry.ownerName = identity.ownName;
        else if (!resourceClass.isEmpty())
            entry.ownerName = resourceClass;
        entry.layer = window.value("ordinary"_L1).toBool() ? 0 : 1;
        if (window.contains("opacity"_L1))
            entry.alpha = window.value("opacity"_L1).toDouble();
        shown.append({window.value("stackingOrder"_L1).toDouble(), own, entry});
    }
    std::stable_sort(shown.begin(), shown.end(), [](const Stacked &a, const Stacked &b) {
        return a.own != b.own ? a.own : a.stackingOrder > b.stackingOrder;
    });
    QList<Entry> entries;
    for (Stacked &window : shown) {
        window.entry.number = qint64(window.stackingOrder);
        entries.append(window.entry);
    }
    return entries;
}
