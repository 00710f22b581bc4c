#include "WlrScreenCapturer.h"

#include "DesktopSpace.h"
#include "WaylandConnection.h"
#include "WaylandDisplayProvider.h"
#include "WlrScreencopy.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// A freeze asks for its displays one after the other within a few milliseconds.
constexpr int laterDisplaysLifetimeMs = 250;

// Points from the output's top-left corner to its pixels, rounded outward.
QRect pixelRect(const Rect &points, QSizeF perPoint)
{
    const int left = int(std::floor(points.minX() * perPoint.width() + 1e-9));
    const int top = int(std::floor(points.minY() * perPoint.height() + 1e-9));
    const int right = int(std::ceil(points.maxX() * perPoint.width() - 1e-9));
    const int bottom = int(std::ceil(points.maxY() * perPoint.height() - 1e-9));
    return QRect(left, top, right - left, bottom - top);
}

} // namespace

WlrScreenCapturer::WlrScreenCapturer(std::unique_ptr<WaylandConnection> connection,
                                     const WaylandDisplayProvider &displays)
    : m_connection(std::move(connection)), m_displays(displays)
{
    m_forgetLaterDisplays.setSingleShot(true);
    m_forgetLaterDisplays.setInterval(laterDisplaysLifetimeMs);
    QObject::connect(&m_forgetLaterDisplays, &QTimer::timeout, [this] { m_laterDisplays.clear(); });
}

WlrScreenCapturer::~WlrScreenCapturer() = default;

void WlrScreenCapturer::shareableDisplays(ContentCompletion completion)
{
    if (!m_connection->update()) {
        completion(std::nullopt, u"the Wayland connection broke"_s);
        return;
    }
    QList<ShareableDisplay> displays;
    const DesktopSpace space = DesktopSpace::current();
    for (const DesktopScreen &screen : space.screens()) {
        const WaylandConnection::Output *output = m_connection->output(screen.name);
        const std::optional<quint32> id = m_displays.displayID(screen.name);
        if (output && id && output->modeSize.isValid())
            displays.append({*id, output->modeSize.width(), output->modeSize.height()});
    }
    completion(displays, std::nullopt);
}

void WlrScreenCapturer::captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                                       ImageCompletion completion)
{
    const std::optional<QString> name = m_displays.outputName(displayID);
    const WaylandConnection::Output *output = name ? m_connection->output(*name) : nullptr;
    if (!output) {
        completion({}, u"display %1 is not connected"_s.arg(displayID));
        return;
    }
    QImage image = m_laterDisplays.take(*name);
    if (image.isNull()) {
        std::variant<QImage, QString> copied = copyAllOutputs(*name);
        if (const QString *failure = std::get_if<QString>(&copied)) {
            completion({}, *failure);
            return;
        }
        image = std::get<QImage>(std::move(copied));
    }
    const QSizeF perPoint(image.width() / double(output->logical.width()),
                          image.height() / double(output->logical.height()));
    const QRect part = pixelRect(sourceRect, perPoint).intersected(image.rect());
    if (part != image.rect())
        image = image.copy(part);
    if (!image.isNull() && image.size() != outputSize)
        image = image.scaled(outputSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    completion(std::move(image), std::nullopt);
}

std::variant<QImage, QString> WlrScreenCapturer::copyAllOutputs(const QString &wanted)
{
    m_laterDisplays.clear();
    std::vector<wlrscreencopy::Request> requests;
    for (const std::unique_ptr<WaylandConnection::Output> &output : m_connection->outputs())
        requests.push_back({output.get(), std::nullopt});
    std::vector<wlrscreencopy::Result> results = wlrscreencopy::copy(*m_connection, requests);
    std::variant<QImage, QString> answer = u"display %1 is not connected"_s.arg(wanted);
    for (size_t i = 0; i < results.size(); ++i) {
        const QString &name = requests[i].output->name;
        if (const QString *failure = std::get_if<QString>(&results[i])) {
            if (name == wanted)
                answer = *failure;
        } else if (name == wanted) {
            answer = std::get<wlrscreencopy::Pixels>(results[i]).image();
        } else {
            m_laterDisplays.insert(name, std::get<wlrscreencopy::Pixels>(results[i]).image());
        }
    }
    if (!m_laterDisplays.isEmpty())
        m_forgetLaterDisplays.start();
    return answer;
}

void WlrScreenCapturer::captureRect(const Rect &globalRect, ImageCompletion completion)
{
    if (!m_connection->update()) {
        completion({}, u"the Wayland connection broke"_s);
        return;
    }
    const DesktopSpace space = DesktopSpace::current();
    const QRectF area = desktopspace::fromTopLeftGlobal(globalRect, space.primary());
    std::vector<wlrscreencopy::Request> requests;
    std::vector<QRectF> places;
    double scale = 1;
    for (const DesktopScreen &screen : space.screens()) {
        const WaylandConnection::Output *output = m_connection->output(screen.name);
        const QRect part = QRectF(output ? output->logical : QRect()).intersected(area).toAlignedRect();
        if (!output || part.isEmpty())
            continue;
        requests.push_back({output, part.translated(-output->logical.topLeft())});
        places.push_back(QRectF(part).translated(-area.topLeft()));
        scale = std::max(scale, screen.scale);
    }
    if (requests.empty()) {
        completion({}, u"the rectangle lies on no output"_s);
        return;
    }
    std::vector<wlrscreencopy::Result> results = wlrscreencopy::copy(*m_connection, requests);
    QImage image(qRound(area.width() * scale), qRound(area.height() * scale), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    for (size_t i = 0; i < results.size(); ++i) {
        if (const QString *failure = std::get_if<QString>(&results[i])) {
            painter.end();
            completion({}, *failure);
            return;
        }
        const QRectF &place = places[i];
        painter.drawImage(QRectF(place.topLeft() * scale, place.size() * scale),
                          std::get<wlrscreencopy::Pixels>(results[i]).image());
    }
    painter.end();
    completion(std::move(image), std::nullopt);
}
