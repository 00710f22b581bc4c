#pragma once

#include <QByteArray>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <variant>

class QObject;

// KWin's org.kde.KWin.ScreenShot2 without Qt's GUI library, for the tray application's KWinScreenCapturer
// and the command line's capture alike: the calls, the pipe KWin writes the raw pixels into, and the reply
// that describes them. KWin replies and writes independently; the pipe is read as the data comes, with a
// time limit. Main thread; a completion runs there once the reply and all the pixels are in.
namespace kwinscreenshot {

// The pixels as KWin's reply describes them; `format` is a QImage::Format.
struct Shot
{
    int width = 0;
    int height = 0;
    qsizetype stride = 0;
    int format = 0;
    double scale = 1;
    QByteArray bytes;
};

struct Failure
{
    // KWin's D-Bus error where it answered with one; empty when the pixels failed to come.
    QString errorName;
    QString description;
};

using Taken = std::function<void(std::variant<Shot, Failure> result)>;

QDBusMessage method(const QString &name);

// Whether a D-Bus error means no KWin, or a KWin without ScreenShot2, rather than a refusal.
bool isAbsence(const QString &errorName);

// Sends `call` with a pipe's writing end appended. The reader and the reply's watcher are children of
// `context`.
void take(const QDBusConnection &bus, const QDBusMessage &call, QObject *context, Taken taken);

// The shot KWin's reply and its bytes make, or why they make none.
std::variant<Shot, Failure> described(const QVariantMap &reply, QByteArray bytes);

} // namespace kwinscreenshot
