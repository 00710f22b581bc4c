#include "X11ScreenCapturer.h"

#include "DesktopSpace.h"
#include "X11DisplayProvider.h"

#include <algorithm>
#include <cmath>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// Display-local points (top-left, y down) to device pixels of the root window, rounded outward.
QRect nativeSourceRect(const DesktopScreen &screen, const Rect &sourceRect)
{
    const double sx = screen.native.width() / double(screen.logical.width());
    const double sy = screen.native.height() / double(screen.logical.height());
    const int left = int(std::floor(sourceRect.minX() * sx + 1e-9));
    const int top = int(std::floor(sourceRect.minY() * sy + 1e-9));
    const int right = int(std::ceil(sourceRect.maxX() * sx - 1e-9));
    const int bottom = int(std::ceil(sourceRect.maxY() * sy - 1e-9));
    return QRect(screen.native.left() + left, screen.native.top() + top, right - left, bottom - top);
}

} // namespace

X11ScreenCapturer::X11ScreenCapturer(xcb_connection_t *connection, const X11DisplayProvider &displays,
                                     Transfer transfer)
    : m_displays(displays), m_reader(connection, transfer)
{
}

void X11ScreenCapturer::shareableDisplays(ContentCompletion completion)
{
    completion(m_displays.shareableDisplays(), std::nullopt);
}

void X11ScreenCapturer::captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                                       ImageCompletion completion)
{
    const DesktopSpace space = DesktopSpace::current();
    for (const DesktopScreen &screen : space.screens()) {
        if (m_displays.displayID(screen.name) != displayID)
            continue;
        const QRect native = nativeSourceRect(screen, sourceRect);
        Grab grab = grabRoot(native, native == screen.native);
        if (!grab.image.isNull() && grab.image.size() != outputSize)
            grab.image = grab.image.scaled(outputSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        completion(std::move(grab.image), std::move(grab.error));
        return;
    }
    completion({}, u"display %1 is not connected"_s.arg(displayID));
}

void X11ScreenCapturer::captureRect(const Rect &globalRect, ImageCompletion completion)
{
    Grab grab = grabRoot(DesktopSpace::current().topLeftGlobalToNative(globalRect), false);
    completion(std::move(grab.image), std::move(grab.error));
}

void X11ScreenCapturer::prepare()
{
    // All held at once, as a freeze holds them, so each display gets a segment of its own.
    const DesktopSpace space = DesktopSpace::current();
    std::vector<X11RootReader::Read> reads;
    for (const DesktopScreen &screen : space.screens()) {
        reads.push_back(m_reader.read(screen.native, true));
        // And the server's pixmap over each, which the overlay is drawn from.
        const ScreenPixels &pixels = reads.back().pixels;
        m_reader.pixmapOver(pixels.data, QSize(pixels.width, pixels.height), pixels.bytesPerLine);
    }
}

X11ScreenCapturer::Grab X11ScreenCapturer::grabRoot(const QRect &requested, bool keepShared)
{
    X11RootReader::Read read = m_reader.read(requested, keepShared);
    m_reader.trim(size_t(std::max<qsizetype>(1, DesktopSpace::current().screens().size())));
    if (read.pixels.isNull())
        return {{}, std::move(read.error)};
    return {read.pixels.image(), std::nullopt};
}
