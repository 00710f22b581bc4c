#include "KWinCaptureSource.h"

#include "KWinScreenShot.h"
#include "WaylandConnection.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFileInfo>
#include <QImage>
#include <QStringList>

#include <memory>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace kwincapturesource {

namespace {

using Output = WaylandConnection::Output;
using Result = std::variant<kwinscreenshot::Shot, kwinscreenshot::Failure>;

QString describe(const QRect &r)
{
    return u"%1,%2 %3x%4"_s.arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

// QtDBus delivers replies through an application's event loop; the command line has none of its own.
Result takeWaiting(const QDBusMessage &call)
{
    static int argc = 1;
    static char name[] = "vistrel";
    static char *argv[] = {name, nullptr};
    std::optional<QCoreApplication> application;
    if (!QCoreApplication::instance())
        application.emplace(argc, argv);
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return kwinscreenshot::Failure{u"org.freedesktop.DBus.Error.Disconnected"_s, {}};
    std::optional<Result> result;
    QEventLoop loop;
    {
        QObject context;
        kwinscreenshot::take(bus, call, &context, [&](Result taken) {
            result = std::move(taken);
            loop.quit();
        });
        if (!result)
            loop.exec();
    }
    return std::move(*result);
}

// KWin's 32-bit formats as 0xffRRGGBB words; the ones stored R, G, B, A in memory are turned round in
// place.
std::optional<PngPixels::Layout> opaque32(kwinscreenshot::Shot &shot)
{
    if (shot.stride < qsizetype(shot.width) * 4)
        return std::nullopt;
    switch (shot.format) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return PngPixels::Layout::Opaque32;
    case QImage::Format_RGBX8888:
    case QImage::Format_RGBA8888:
    case QImage::Format_RGBA8888_Premultiplied:
        break;
    default:
        return std::nullopt;
    }
    for (int y = 0; y < shot.height; ++y) {
        auto *pixel = reinterpret_cast<uchar *>(shot.bytes.data() + y * shot.stride);
        for (int x = 0; x < shot.width; ++x, pixel += 4)
            std::swap(pixel[0], pixel[2]);
    }
    return PngPixels::Layout::Opaque32;
}

} // namespace

CaptureRead read(const commandline::CaptureOptions &options, const WaylandConnection &connection)
{
    const auto &outputs = connection.outputs();
    if (outputs.empty())
        return u"the compositor reports no outputs"_s;
    QDBusMessage call;
    if (options.display) {
        if (size_t(*options.display) >= outputs.size()) {
            QStringList known;
            for (size_t i = 0; i < outputs.size(); ++i)
                known.append(u"%1 %2 %3"_s.arg(i).arg(outputs[i]->name, describe(outputs[i]->logical)));
            return u"there is no display %1; the displays are: %2"_s.arg(*options.display).arg(known.join(u", "_s));
        }
        call = kwinscreenshot::method(u"CaptureScreen"_s);
        call << outputs[size_t(*options.display)]->name << QVariantMap{{u"native-resolution"_s, true}};
    } else if (options.region) {
        QRect layout;
        for (const std::unique_ptr<Output> &output : outputs)
            layout |= output->logical;
        const QRect area = *options.region;
        if (!layout.contains(area))
            return u"region %1 is not within the layout of the outputs (%2)"_s.arg(describe(area), describe(layout));
        call = kwinscreenshot::method(u"CaptureArea"_s);
        call << area.x() << area.y() << uint(area.width()) << uint(area.height())
             << QVariantMap{{u"native-resolution"_s, true}};
    } else {
        call = kwinscreenshot::method(u"CaptureWorkspace"_s);
        call << QVariantMap{{u"native-resolution"_s, true}};
    }

    Result result = takeWaiting(call);
    if (const auto *failure = std::get_if<kwinscreenshot::Failure>(&result)) {
        if (kwinscreenshot::isAbsence(failure->errorName))
            return u"this compositor has neither wlr-screencopy nor KWin's screenshot interface; on GNOME use the "
                   "screenshot portal (Vistrel's tray application does)"_s;
        if (failure->errorName.isEmpty())
            return u"cannot read the screen: "_s + failure->description;
        return u"%1; a desktop entry whose Exec is %2 with X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2 "
               "lets Vistrel read the screen through KWin"_s.arg(failure->description, QFileInfo(u"/proc/self/exe"_s).canonicalFilePath());
    }
    auto shot = std::make_shared<kwinscreenshot::Shot>(std::get<kwinscreenshot::Shot>(std::move(result)));
    const std::optional<PngPixels::Layout> layout = opaque32(*shot);
    if (!layout)
        return u"KWin sent its picture as QImage format %1 with a stride of %2, which the command line does not read"_s
            .arg(shot->format).arg(shot->stride);
    return CapturedPixels{shot, PngPixels{reinterpret_cast<const uchar *>(shot->bytes.constData()), shot->width,
                                          shot->height, shot->stride, *layout, true}};
}

} // namespace kwincapturesource
