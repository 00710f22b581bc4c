#include "MutterDisplayConfig.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QHash>
#include <QVariantMap>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.gnome.Mutter.DisplayConfig"_s;
// A local call Mutter answers at once; no longer than a frame or two if it is busy.
constexpr int replyTimeoutMs = 500;
// DisplayConfig's "layout-mode": positions and sizes in logical points, or in each monitor's pixels.
constexpr uint logicalLayoutMode = 1;

struct Monitor
{
    QString connector;
    QSize pixels;
};

// Each monitor's connector and the pixels of its current mode.
QList<Monitor> readMonitors(const QDBusArgument &argument)
{
    QList<Monitor> monitors;
    argument.beginArray();
    while (!argument.atEnd()) {
        Monitor monitor;
        QString vendor, product, serial;
        argument.beginStructure();
        argument.beginStructure();
        argument >> monitor.connector >> vendor >> product >> serial;
        argument.endStructure();
        argument.beginArray();
        while (!argument.atEnd()) {
            QString id;
            int width = 0, height = 0;
            double refresh = 0, preferredScale = 0;
            QList<double> scales;
            QVariantMap properties;
            argument.beginStructure();
            argument >> id >> width >> height >> refresh >> preferredScale >> scales >> properties;
            argument.endStructure();
            if (properties.value(u"is-current"_s).toBool())
                monitor.pixels = QSize(width, height);
        }
        argument.endArray();
        QVariantMap properties;
        argument >> properties;
        argument.endStructure();
        monitors.append(monitor);
    }
    argument.endArray();
    return monitors;
}

} // namespace

std::unique_ptr<MutterDisplayConfig> MutterDisplayConfig::whereMutterRuns(const QDBusConnection &bus)
{
    const QDBusConnectionInterface *names = bus.interface();
    if (!names || !names->isServiceRegistered(service).value())
        return nullptr;
    return std::make_unique<MutterDisplayConfig>(bus);
}

MutterDisplayConfig::MutterDisplayConfig(const QDBusConnection &bus) : m_bus(bus) {}

std::optional<QList<CompositorOutput>> MutterDisplayConfig::outputs(const QList<DesktopScreen> &qtScreens)
{
    const auto same = [](const DesktopScreen &a, const DesktopScreen &b) {
        return a.name == b.name && a.logical == b.logical && a.scale == b.scale;
    };
    if (!m_last || !std::equal(qtScreens.begin(), qtScreens.end(), m_askedFor.begin(), m_askedFor.end(), same)) {
        m_last = ask();
        m_askedFor = qtScreens;
    }
    return m_last;
}

std::optional<QList<CompositorOutput>> MutterDisplayConfig::ask() const
{
    const QDBusMessage call =
        QDBusMessage::createMethodCall(service, u"/org/gnome/Mutter/DisplayConfig"_s, service, u"GetCurrentState"_s);
    const QDBusMessage reply = m_bus.call(call, QDBus::Block, replyTimeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().size() < 4)
        return std::nullopt;

    QHash<QString, QSize> pixels;
    for (const Monitor &monitor : readMonitors(reply.arguments().at(1).value<QDBusArgument>()))
        pixels.insert(monitor.connector, monitor.pixels);
    QVariantMap properties;
    reply.arguments().at(3).value<QDBusArgument>() >> properties;
    const bool logicalLayout = properties.value(u"layout-mode"_s).toUInt() == logicalLayoutMode;

    QList<CompositorOutput> outputs;
    const QDBusArgument logicalMonitors = reply.arguments().at(2).value<QDBusArgument>();
    logicalMonitors.beginArray();
    while (!logicalMonitors.atEnd()) {
        int x = 0, y = 0;
        double scale = 1;
        uint transform = 0;
        bool primary = false;
        logicalMonitors.beginStructure();
        logicalMonitors >> x >> y >> scale >> transform >> primary;
        QStringList connectors;
        logicalMonitors.beginArray();
        while (!logicalMonitors.atEnd()) {
            QString connector, vendor, product, serial;
            logicalMonitors.beginStructure();
            logicalMonitors >> connector >> vendor >> product >> serial;
            logicalMonitors.endStructure();
            connectors.append(connector);
        }
        logicalMonitors.endArray();
        QVariantMap logicalProperties;
        logicalMonitors >> logicalProperties;
        logicalMonitors.endStructure();
        for (const QString &connector : std::as_const(connectors)) {
            QSize size = pixels.value(connector);
            // A monitor turned a quarter shows its mode on its side.
            if (transform % 2 == 1)
                size.transpose();
            const QSize inLayout = logicalLayout
                ? QSize(int(std::lround(size.width() / scale)), int(std::lround(size.height() / scale)))
                : size;
            outputs.append({connector, QRect(QPoint(x, y), inLayout), scale, size});
        }
    }
    logicalMonitors.endArray();
    return outputs;
}
