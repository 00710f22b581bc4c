#include "KWinScreenCapturer.h"

#include "DesktopSpace.h"
#include "PipeReader.h"
#include "WaylandDisplayProvider.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QGuiApplication>
#include <QScreen>

#include <cerrno>
#include <cmath>
#include <memory>
#include <variant>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString service = u"org.kde.KWin"_s;
const QString path = u"/org/kde/KWin/ScreenShot2"_s;
const QString interface = u"org.kde.KWin.ScreenShot2"_s;
constexpr int probeTimeoutMs = 3000;
constexpr int replyTimeoutMs = 5000;
constexpr int pixelsTimeoutMs = 5000;

QDBusMessage method(const QString &name)
{
    return QDBusMessage::createMethodCall(service, path, interface, name);
}

// Points from the output's top-left corner to its pixels, rounded outward.
QRect pixelRect(const Rect &points, double perPoint)
{
    const int left = int(std::floor(points.minX() * perPoint + 1e-9));
    const int top = int(std::floor(points.minY() * perPoint + 1e-9));
    const int right = int(std::ceil(points.maxX() * perPoint - 1e-9));
    const int bottom = int(std::ceil(points.maxY() * perPoint - 1e-9));
    return QRect(left, top, right - left, bottom - top);
}

// KWin's pixels as its reply describes them.
std::variant<QImage, QString> decode(const QVariantMap &reply, const QByteArray &bytes)
{
    const int width = reply.value(u"width"_s).toInt();
    const int height = reply.value(u"height"_s).toInt();
    const qsizetype stride = reply.value(u"stride"_s).toLongLong();
    const int format = reply.value(u"format"_s).toInt();
    if (width <= 0 || height <= 0 || format <= QImage::Format_Invalid || format >= QImage::NImageFormats)
        return u"KWin described its picture as %1x%2 in format %3"_s.arg(width).arg(height).arg(format);
    const int bitsPerPixel = QImage::toPixelFormat(QImage::Format(format)).bitsPerPixel();
    if (stride * 8 < qsizetype(width) * bitsPerPixel || bytes.size() < stride * height)
        return u"KWin sent %1 bytes for a %2x%3 picture of stride %4"_s.arg(bytes.size()).arg(width).arg(height).arg(stride);
    const QImage view(reinterpret_cast<const uchar *>(bytes.constData()), width, height, stride, QImage::Format(format));
    // Either way a copy: the view's bytes go with the pipe's buffer.
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
    QDBusMessage call = method(u"CaptureArea"_s);
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
    const QString name = reply.errorName();
    if (name == u"org.freedesktop.DBus.Error.ServiceUnknown"_s || name == u"org.freedesktop.DBus.Error.UnknownObject"_s
        || name == u"org.freedesktop.DBus.Error.UnknownInterface"_s || name == u"org.freedesktop.DBus.Error.UnknownMethod"_s
        || name == u"org.freedesktop.DBus.Error.NoReply"_s || name == u"org.freedesktop.DBus.Error.Disconnected"_s)
        return {Offer::Absent, {}};
    return {Offer::Refuses, name % u": "_s % reply.errorMessage()};
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
    QDBusMessage call = method(u"CaptureScreen"_s);
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
    QDBusMessage call = method(u"CaptureArea"_s);
    call << area.x() << area.y() << uint(area.width()) << uint(area.height())
         << QVariantMap{{u"native-resolution"_s, true}};
    take(call, [completion](QImage image, double, std::optional<QString> error) {
        completion(std::move(image), std::move(error));
    });
}

void KWinScreenCapturer::take(QDBusMessage call, Taken taken)
{
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        taken({}, 0, u"no pipe for KWin's pixels: %1"_s.arg(qt_error_string(errno)));
        return;
    }
    call << QVariant::fromValue(QDBusUnixFileDescriptor(fds[1]));
    close(fds[1]);

    // KWin replies and writes the pixels independently; the picture is made once both are in.
    struct Gathering
    {
        std::optional<QVariantMap> reply;
        std::optional<QString> refusal;
        std::optional<std::optional<QByteArray>> bytes;
    };
    auto gathering = std::make_shared<Gathering>();
    auto finishWhenComplete = [gathering, taken] {
        if (!gathering->bytes || (!gathering->reply && !gathering->refusal))
            return;
        if (gathering->refusal) {
            taken({}, 0, gathering->refusal);
            return;
        }
        if (!*gathering->bytes) {
            taken({}, 0, u"KWin's pixels did not arrive in time"_s);
            return;
        }
        std::variant<QImage, QString> decoded = decode(*gathering->reply, **gathering->bytes);
        if (const QString *failure = std::get_if<QString>(&decoded)) {
            taken({}, 0, *failure);
            return;
        }
        taken(std::get<QImage>(std::move(decoded)), gathering->reply->value(u"scale"_s, 1.0).toDouble(), std::nullopt);
    };
    new PipeReader(fds[0], pixelsTimeoutMs, [gathering, finishWhenComplete](std::optional<QByteArray> bytes) {
        gathering->bytes = std::move(bytes);
        finishWhenComplete();
    }, this);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call, replyTimeoutMs), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, gathering, finishWhenComplete] {
        watcher->deleteLater();
        const QDBusMessage reply = watcher->reply();
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
            gathering->reply = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
        else
            gathering->refusal = u"KWin gave no screenshot: "_s % reply.errorName() % u": "_s % reply.errorMessage();
        finishWhenComplete();
    });
}
