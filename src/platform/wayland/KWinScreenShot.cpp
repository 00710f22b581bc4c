#include "KWinScreenShot.h"

#include "PipeReader.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusUnixFileDescriptor>
#include <QImage>

#include <cerrno>
#include <memory>
#include <optional>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kwinscreenshot {

namespace {

constexpr int replyTimeoutMs = 5000;
constexpr int pixelsTimeoutMs = 5000;

} // namespace

QDBusMessage method(const QString &name)
{
    return QDBusMessage::createMethodCall(u"org.kde.KWin"_s, u"/org/kde/KWin/ScreenShot2"_s,
                                          u"org.kde.KWin.ScreenShot2"_s, name);
}

bool isAbsence(const QString &errorName)
{
    return errorName == u"org.freedesktop.DBus.Error.ServiceUnknown"_s
           || errorName == u"org.freedesktop.DBus.Error.UnknownObject"_s
           || errorName == u"org.freedesktop.DBus.Error.UnknownInterface"_s
           || errorName == u"org.freedesktop.DBus.Error.UnknownMethod"_s
           || errorName == u"org.freedesktop.DBus.Error.NoReply"_s
           || errorName == u"org.freedesktop.DBus.Error.Disconnected"_s;
}

std::variant<Shot, Failure> described(const QVariantMap &reply, QByteArray bytes)
{
    Shot shot;
    shot.width = reply.value(u"width"_s).toInt();
    shot.height = reply.value(u"height"_s).toInt();
    shot.stride = reply.value(u"stride"_s).toLongLong();
    shot.format = reply.value(u"format"_s).toInt();
    shot.scale = reply.value(u"scale"_s, 1.0).toDouble();
    // Only the enumeration of QImage's formats is used here, none of its code.
    if (shot.width <= 0 || shot.height <= 0 || shot.format <= QImage::Format_Invalid
        || shot.format >= QImage::NImageFormats)
        return Failure{{}, u"KWin described its picture as %1x%2 in format %3"_s.arg(shot.width).arg(shot.height).arg(shot.format)};
    if (shot.stride < shot.width || bytes.size() < shot.stride * shot.height)
        return Failure{{}, u"KWin sent %1 bytes for a %2x%3 picture of stride %4"_s.arg(bytes.size())
                               .arg(shot.width).arg(shot.height).arg(shot.stride)};
    shot.bytes = std::move(bytes);
    return shot;
}

void take(const QDBusConnection &bus, const QDBusMessage &call, QObject *context, Taken taken)
{
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0) {
        taken(Failure{{}, u"no pipe for KWin's pixels: %1"_s.arg(qt_error_string(errno))});
        return;
    }
    // A message of its own: copies of a QDBusMessage share their arguments, and the pipe's writing end in
    // them must close once the call is answered, or the reading end never sees the end of the pixels.
    QDBusMessage sent = QDBusMessage::createMethodCall(call.service(), call.path(), call.interface(), call.member());
    sent.setArguments(call.arguments() << QVariant::fromValue(QDBusUnixFileDescriptor(fds[1])));
    close(fds[1]);

    struct Gathering
    {
        std::optional<QVariantMap> reply;
        std::optional<Failure> refusal;
        std::optional<std::optional<QByteArray>> bytes;
    };
    auto gathering = std::make_shared<Gathering>();
    auto finishWhenComplete = [gathering, taken] {
        if (!gathering->bytes || (!gathering->reply && !gathering->refusal))
            return;
        if (gathering->refusal)
            taken(*gathering->refusal);
        else if (!*gathering->bytes)
            taken(Failure{{}, u"KWin's pixels did not arrive in time"_s});
        else
            taken(described(*gathering->reply, std::move(**gathering->bytes)));
    };
    new PipeReader(fds[0], pixelsTimeoutMs, [gathering, finishWhenComplete](std::optional<QByteArray> bytes) {
        gathering->bytes = std::move(bytes);
        finishWhenComplete();
    }, context);
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(sent, replyTimeoutMs), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context, [watcher, gathering, finishWhenComplete] {
        watcher->deleteLater();
        const QDBusMessage reply = watcher->reply();
        if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
            gathering->reply = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
        else
            gathering->refusal = Failure{reply.errorName(), u"KWin gave no screenshot: "_s % reply.errorName()
                                                                % u": "_s % reply.errorMessage()};
        finishWhenComplete();
    });
}

} // namespace kwinscreenshot
