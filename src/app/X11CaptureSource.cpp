#include "X11CaptureSource.h"

#include "DesktopSession.h"
#include "X11Monitors.h"
#include "X11RootReader.h"

#include <memory>

using namespace Qt::StringLiterals;

namespace x11capturesource {

namespace {

QString describe(const QRect &r)
{
    return u"%1,%2 %3x%4"_s.arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

// The part of the root window to read, or why there is none.
std::variant<QRect, QString> area(const commandline::CaptureOptions &options, xcb_connection_t *connection,
                                  QSize rootSize)
{
    const QRect screen(QPoint(0, 0), rootSize);
    if (options.region) {
        if (!screen.contains(*options.region))
            return u"region %1 is not within the screen (%2x%3)"_s.arg(describe(*options.region))
                .arg(rootSize.width()).arg(rootSize.height());
        return *options.region;
    }
    if (!options.display)
        return screen;
    const QList<x11monitors::Monitor> monitors = x11monitors::list(connection);
    // Without RandR the whole screen is the one display.
    if (monitors.isEmpty() && *options.display == 0)
        return screen;
    if (*options.display >= monitors.size()) {
        QStringList known;
        for (qsizetype i = 0; i < monitors.size(); ++i)
            known.append(u"%1 %2 %3"_s.arg(i).arg(monitors.at(i).name, describe(monitors.at(i).native)));
        return u"there is no display %1; the displays are: %2"_s.arg(*options.display)
            .arg(known.isEmpty() ? u"0 (the whole screen)"_s : known.join(u", "_s));
    }
    const QRect native = monitors.at(*options.display).native.intersected(screen);
    if (native.isEmpty())
        return u"display %1 lies outside the screen"_s.arg(*options.display);
    return native;
}

} // namespace

CaptureRead read(const commandline::CaptureOptions &options, const QProcessEnvironment &environment)
{
    std::shared_ptr<xcb_connection_t> connection(xcb_connect(nullptr, nullptr), &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()))
        return desktopsession::unreachableDisplayText(environment.value(u"DISPLAY"_s));
    auto reader = std::make_shared<X11RootReader>(connection.get());
    const std::variant<QRect, QString> rect = area(options, connection.get(), reader->rootSize());
    if (const QString *failure = std::get_if<QString>(&rect))
        return *failure;
    // Read once and written from where the server put it: the segment is not needed again.
    X11RootReader::Read read = reader->read(std::get<QRect>(rect), true);
    if (read.pixels.isNull())
        return u"cannot read the screen: "_s + read.error.value_or(u"unknown error"_s);
    const ScreenPixels &p = read.pixels;
    // The pixels, the reader that made them and the connection it reads through go together, and go in
    // that order (members end in the reverse order of their declaration).
    struct Hold
    {
        std::shared_ptr<xcb_connection_t> connection;
        std::shared_ptr<X11RootReader> reader;
        std::shared_ptr<const void> pixels;
    };
    auto owner = std::make_shared<Hold>(Hold{connection, reader, p.owner});
    return CapturedPixels{owner, PngPixels{p.data, p.width, p.height, p.bytesPerLine, PngPixels::Layout::Opaque32,
                                           true}};
}

} // namespace x11capturesource
