#include "KWinScreenCapturer.h"

#include "DesktopSpace.h"
#include "KWinScreenShot.h"
#include "WaylandDisplayProvider.h"

#include <QDBusUnixFileDescriptor>
#include <QGuiApplication>
#include <QScreen>

#include <cmath>
#include <memory>
#include <variant>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int probeTimeoutMs = 3000;

// Points from the output's top-left corner to its pixels, rounded outward.
QRect pixelRect(const Rect &points, double perPoint)
{
    const int left = int(std::floor(points.minX() * perPoint + 1e-9));
    const int top = int(std::floor(points.minY() * perPoint + 1e-9));
    const int right = int(std::ceil(points.maxX() * perPoint - 1e-9));
    const int bottom = int(std::ceil(points.maxY() * perPoint - 1e-9));
    return QRect(left, top, right - left, bottom - top);
}

// KWin's pixels as an image of our own.
std::variant<QImage, QString> decode(const kwinscreenshot::Shot &shot)
{
    const int bitsPerPixel = QImage::toPixelFormat(QImage::Format(shot.format)).bitsPerPixel();
    if (shot.stride * 8 < qsizetype(shot.width) * bitsPerPixel)
        return u"KWin's picture of %1x%2 has a stride of only %3"_s.arg(shot.width).arg(shot.height).arg(shot.stride);
    const QImage view(reinterpret_cast<const uchar *>(shot.bytes.constData()), shot.width, shot.height, shot.stride,
                      QImage::Format(shot.format));
    // Either way a copy: the view's bytes go with the shot.
    return view.format() == QImage::Format_RGB32 ? view.copy() : view.convertToFormat(QImage::Format_RGB32);
}

} // namespace

KWinScreenCapturer::Probe KWinScreenCapturer::probe(const QDBusConnection &bus)
{
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        return {Offer::Absent, {}};
    const QScreen *primary = QGuiApplication::primaryScreen();
    const QPoint at = primary ? primary->geometry().topLeft() : QPoint();
    QDBusMessage call = kwinscreenshot::method(u"CaptureArea"_s);
    call << at.x() << at.y() << 1u << 1u << QVariantMap() << QVariant::fromValue(QDBusUnixFileDescriptor(fds[1]));
    close(fds[1]);
    const QDBusMessage reply = bus.call(call, QDBus::Block, probeTimeoutMs);
    call = QDBusMessage();
    if (reply.type() == QDBusMessage::ReplyMessage) {
        // KWin's writer is left neither on a full pipe nor on a closed one.
        char sink[256];
        pollfd readable{fds[0], POLLIN, 0};
        while (poll(&readable, 1, probeTimeoutMs) > 0 && read(fds[0], sink, sizeof sink) > 0) {
        }
    }
    close(fds[0]);
    if (reply.type() == QDBusMessage::ReplyMessage)
        return {Offer::Answers, {}};
    if (kwinscreenshot::isAbsence(reply.errorName()))
        return {Offer::Absent, {}};
    return {Offer::Refuses, reply.errorName() % u": "_s % reply.errorMessage()};
}

KWinScreenCapturer::KWinScreenCapturer(const QDBusConnection &bus, const WaylandDisplayProvider &displays)
    : m_bus(bus), m_displays(displays)
{
}

void KWinScreenCapturer::shareableDisplays(ContentCompletion completion)
{
    completion(m_displays.shareableDisplays(), std::nullopt);
}

void KWinScreenCapturer::captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                                        ImageCompletion completion)
{
    const std::optional<QString> name = m_displays.outputName(displayID);
    if (!name) {
        completion({}, u"display %1 is not connected"_s.arg(displayID));
        return;
    }
    QDBusMessage call = kwinscreenshot::method(u"CaptureScreen"_s);
    call << *name << QVariantMap{{u"native-resolution"_s, true}};
    take(call, [sourceRect, outputSize, completion](QImage image, double scale, std::optional<QString> error) {
        if (error) {
            completion({}, error);
            return;
        }
        const QRect part = pixelRect(sourceRect, scale).intersected(image.rect());
        if (part != image.rect())
            image = image.copy(part);
        if (!image.isNull() && image.size() != outputSize)
            image = image.scaled(outputSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        completion(std::move(image), std::nullopt);
    });
}

void KWinScreenCapturer::captureRect(const Rect &globalRect, ImageCompletion completion)
{
    const DesktopSpace space = DesktopSpace::current();
    const QRect area = desktopspace::fromTopLeftGlobal(globalRect, space.primary()).toAlignedRect();
    QDBusMessage call = kwinscreenshot::method(u"CaptureArea"_s);
    call << area.x() << area.y() << uint(area.width()) << uint(area.height())
         << QVariantMap{{u"native-resolution"_s, true}};
    take(call, [completion](QImage image, double, std::optional<QString> error) {
        completion(std::move(image), std::move(error));
    });
}

void KWinScreenCapturer::take(const QDBusMessage &call, Taken taken)
{
    kwinscreenshot::take(m_bus, call, this, [taken](std::variant<kwinscreenshot::Shot, kwinscreenshot::Failure> result) {
        if (const auto *failure = std::get_if<kwinscreenshot::Failure>(&result)) {
            taken({}, 0, failure->description);
            return;
        }
        const auto &shot = std::get<kwinscreenshot::Shot>(result);
        std::variant<QImage, QString> decoded = decode(shot);
        if (const QString *failure = std::get_if<QString>(&decoded))
            taken({}, 0, *failure);
        else
            taken(std::get<QImage>(std::move(decoded)), shot.scale, std::nullopt);
    });
}
