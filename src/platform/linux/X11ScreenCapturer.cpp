#include "X11ScreenCapturer.h"

#include "DesktopSpace.h"
#include "X11DisplayProvider.h"

#include <cmath>
#include <cstdlib>
#include <cstring>

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
    : m_connection(connection), m_displays(displays), m_useSharedMemory(transfer == Transfer::SharedMemoryIfAvailable),
      m_segments(connection)
{
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const xcb_screen_t *screen = xcb_setup_roots_iterator(setup).data;
    m_root = screen->root;
    m_rootSize = QSize(screen->width_in_pixels, screen->height_in_pixels);
    int bitsPerPixel = 0;
    for (auto it = xcb_setup_pixmap_formats_iterator(setup); it.rem; xcb_format_next(&it)) {
        if (it.data->depth == screen->root_depth)
            bitsPerPixel = it.data->bits_per_pixel;
    }
    // Every desktop in use today is 24-bit colour in 32-bit pixels; anything else is refused plainly.
    if (bitsPerPixel != 32 || (screen->root_depth != 24 && screen->root_depth != 32)
        || setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) {
        m_formatProblem = u"unsupported screen format depth=%1 bpp=%2"_s.arg(screen->root_depth).arg(bitsPerPixel);
    }
}

void X11ScreenCapturer::shareableDisplays(ContentCompletion completion)
{
    QList<ShareableDisplay> displays;
    const DesktopSpace space = DesktopSpace::current();
    for (const DesktopScreen &screen : space.screens()) {
        if (const std::optional<quint32> id = m_displays.displayID(screen.name))
            displays.append({*id, screen.native.width(), screen.native.height()});
    }
    completion(displays, std::nullopt);
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

X11ScreenCapturer::Grab X11ScreenCapturer::grabRoot(const QRect &requested, bool keepShared)
{
    if (m_formatProblem)
        return {{}, m_formatProblem};
    const QRect native = requested.intersected(QRect(QPoint(0, 0), m_rootSize));
    if (native.isEmpty())
        return {{}, u"rectangle %1,%2 %3x%4 is outside the screen"_s.arg(requested.x()).arg(requested.y())
                        .arg(requested.width()).arg(requested.height())};
    QImage image = m_useSharedMemory ? m_segments.grab(m_root, native, QImage::Format_RGB32) : QImage();
    if (!image.isNull() && !keepShared)
        image = image.copy();
    if (image.isNull())
        image = getImage(native);
    m_segments.trim(size_t(std::max<qsizetype>(1, DesktopSpace::current().screens().size())));
    if (image.isNull())
        return {{}, u"the X server refused to read the screen"_s};
    return {std::move(image), std::nullopt};
}

QImage X11ScreenCapturer::getImage(const QRect &native) const
{
    xcb_get_image_reply_t *reply = xcb_get_image_reply(
        m_connection,
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, qint16(native.x()), qint16(native.y()),
                      quint16(native.width()), quint16(native.height()), ~0u),
        nullptr);
    if (!reply)
        return {};
    QImage image(native.size(), QImage::Format_RGB32);
    const qsizetype stride = qsizetype(native.width()) * 4;
    if (xcb_get_image_data_length(reply) >= stride * native.height()) {
        const uint8_t *data = xcb_get_image_data(reply);
        for (int y = 0; y < native.height(); ++y)
            std::memcpy(image.scanLine(y), data + y * stride, size_t(stride));
    } else {
        image = QImage();
    }
    std::free(reply);
    return image;
}
