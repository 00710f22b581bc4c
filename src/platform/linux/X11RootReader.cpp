#include "X11RootReader.h"

#include <cstdlib>
#include <cstring>
#include <new>

using namespace Qt::StringLiterals;

X11RootReader::X11RootReader(xcb_connection_t *connection, Transfer transfer)
    : m_connection(connection), m_useSharedMemory(transfer == Transfer::SharedMemoryIfAvailable),
      m_segments(connection)
{
    const xcb_setup_t *setup = xcb_get_setup(connection);
    const xcb_screen_t *screen = xcb_setup_roots_iterator(setup).data;
    m_root = screen->root;
    m_rootSize = QSize(screen->width_in_pixels, screen->height_in_pixels);
    m_depth = screen->root_depth;
    int bitsPerPixel = 0;
    for (auto it = xcb_setup_pixmap_formats_iterator(setup); it.rem; xcb_format_next(&it)) {
        if (it.data->depth == screen->root_depth)
            bitsPerPixel = it.data->bits_per_pixel;
    }
    // Every desktop in use today is 24-bit colour in 32-bit pixels.
    if (bitsPerPixel != 32 || (screen->root_depth != 24 && screen->root_depth != 32)
        || setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST) {
        m_formatProblem = u"unsupported screen format depth=%1 bpp=%2"_s.arg(screen->root_depth).arg(bitsPerPixel);
    }
}

X11RootReader::Read X11RootReader::read(const QRect &requested, bool mayKeepSegment)
{
    if (m_formatProblem)
        return {{}, m_formatProblem};
    const QRect native = requested.intersected(QRect(QPoint(0, 0), m_rootSize));
    if (native.isEmpty())
        return {{}, u"rectangle %1,%2 %3x%4 is outside the screen"_s.arg(requested.x()).arg(requested.y())
                        .arg(requested.width()).arg(requested.height())};
    ScreenPixels pixels = m_useSharedMemory ? m_segments.grab(m_root, native) : ScreenPixels();
    if (!pixels.isNull() && !mayKeepSegment) {
        // Copied out, so the segment is free again at once.
        const size_t bytes = size_t(pixels.bytesPerLine) * size_t(pixels.height);
        std::shared_ptr<uchar[]> own(new (std::nothrow) uchar[bytes]);
        if (own)
            std::memcpy(own.get(), pixels.data, bytes);
        pixels = own ? ScreenPixels{own, own.get(), pixels.width, pixels.height, pixels.bytesPerLine} : ScreenPixels();
    }
    if (pixels.isNull())
        pixels = getImage(native);
    if (pixels.isNull())
        return {{}, u"the X server refused to read the screen"_s};
    return {std::move(pixels), std::nullopt};
}

xcb_pixmap_t X11RootReader::pixmapOver(const uchar *data, QSize size, qsizetype bytesPerLine)
{
    if (m_formatProblem || !data || bytesPerLine != qsizetype(size.width()) * 4)
        return 0;
    return m_segments.pixmapOver(data, size, m_root, m_depth);
}

ScreenPixels X11RootReader::getImage(const QRect &native) const
{
    xcb_get_image_reply_t *reply = xcb_get_image_reply(
        m_connection,
        xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_root, qint16(native.x()), qint16(native.y()),
                      quint16(native.width()), quint16(native.height()), ~0u),
        nullptr);
    if (!reply)
        return {};
    // The reply itself holds the pixels, rows of 32-bit pixels without padding.
    const std::shared_ptr<xcb_get_image_reply_t> owner(reply, [](xcb_get_image_reply_t *r) { std::free(r); });
    const qsizetype stride = qsizetype(native.width()) * 4;
    if (xcb_get_image_data_length(reply) < stride * native.height())
        return {};
    return {owner, xcb_get_image_data(reply), native.width(), native.height(), stride};
}
