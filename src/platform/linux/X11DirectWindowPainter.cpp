#include "X11DirectWindowPainter.h"

#include "X11ScreenCapturer.h"

#include <QColor>
#include <QCoreApplication>
#include <QImage>
#include <QRegion>
#include <QWindow>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <vector>

namespace {

QHash<xcb_visualid_t, xcb_render_pictformat_t> visualFormats(xcb_connection_t *connection)
{
    QHash<xcb_visualid_t, xcb_render_pictformat_t> formats;
    xcb_render_query_pict_formats_reply_t *reply =
        xcb_render_query_pict_formats_reply(connection, xcb_render_query_pict_formats(connection), nullptr);
    if (!reply)
        return formats;
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(reply); screen.rem;
         xcb_render_pictscreen_next(&screen)) {
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem;
             xcb_render_pictdepth_next(&depth)) {
            for (auto visual = xcb_render_pictdepth_visuals_iterator(depth.data); visual.rem;
                 xcb_render_pictvisual_next(&visual))
                formats.insert(visual.data->visual, visual.data->format);
        }
    }
    std::free(reply);
    return formats;
}

// Render colours are premultiplied, 16 bits a channel.
xcb_render_color_t renderColor(const QColor &color)
{
    const QRgb premultiplied = qPremultiply(color.rgba());
    return {quint16(qRed(premultiplied) * 257), quint16(qGreen(premultiplied) * 257),
            quint16(qBlue(premultiplied) * 257), quint16(qAlpha(premultiplied) * 257)};
}

} // namespace

std::unique_ptr<X11DirectWindowPainter> X11DirectWindowPainter::make(xcb_connection_t *connection,
                                                                     X11ScreenCapturer &capturer)
{
    const xcb_query_extension_reply_t *render = xcb_get_extension_data(connection, &xcb_render_id);
    if (!render || !render->present || !capturer.serverDrawsFrames())
        return nullptr;
    QHash<xcb_visualid_t, xcb_render_pictformat_t> formats = visualFormats(connection);
    if (formats.isEmpty())
        return nullptr;
    return std::unique_ptr<X11DirectWindowPainter>(new X11DirectWindowPainter(connection, capturer, std::move(formats)));
}

X11DirectWindowPainter::X11DirectWindowPainter(xcb_connection_t *connection, X11ScreenCapturer &capturer,
                                               QHash<xcb_visualid_t, xcb_render_pictformat_t> formats)
    : m_connection(connection), m_capturer(capturer), m_formats(std::move(formats))
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11DirectWindowPainter::~X11DirectWindowPainter()
{
    if (QCoreApplication *application = QCoreApplication::instance())
        application->removeNativeEventFilter(this);
    for (const Target &target : std::as_const(m_targets)) {
        if (target.gc)
            xcb_free_gc(m_connection, target.gc);
    }
    xcb_flush(m_connection);
}

X11DirectWindowPainter::Target X11DirectWindowPainter::target(xcb_window_t window) const
{
    if (const auto known = m_targets.constFind(window); known != m_targets.cend())
        return *known;
    Target found;
    xcb_get_geometry_cookie_t geometryCookie = xcb_get_geometry(m_connection, window);
    xcb_get_window_attributes_cookie_t attributesCookie = xcb_get_window_attributes(m_connection, window);
    xcb_get_geometry_reply_t *geometry = xcb_get_geometry_reply(m_connection, geometryCookie, nullptr);
    xcb_get_window_attributes_reply_t *attributes =
        xcb_get_window_attributes_reply(m_connection, attributesCookie, nullptr);
    if (geometry && attributes) {
        found.depth = geometry->depth;
        found.format = m_formats.value(attributes->visual);
        // Copies from a pixmap never need exposing again: no GraphicsExpose or NoExpose events for Qt.
        found.gc = xcb_generate_id(m_connection);
        const quint32 noExposures = 0;
        xcb_create_gc(m_connection, found.gc, window, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    }
    std::free(geometry);
    std::free(attributes);
    m_targets.insert(window, found);
    return found;
}

bool X11DirectWindowPainter::canDrawFrame(QWindow &window, const QImage &frame) const
{
    const Target into = target(xcb_window_t(window.winId()));
    return into.format && into.depth == m_capturer.rootDepth() && m_capturer.serverPixmapOf(frame);
}

void X11DirectWindowPainter::drawFrame(QWindow &window, const QImage &frame, const QRegion &region,
                                       const QColor &dimming)
{
    const xcb_pixmap_t pixmap = m_capturer.serverPixmapOf(frame);
    const auto id = xcb_window_t(window.winId());
    const Target into = target(id);
    if (!pixmap || !into.format || region.isEmpty())
        return;
    std::vector<xcb_rectangle_t> rectangles;
    std::optional<quint32> first;
    for (const QRect &rect : region) {
        const xcb_void_cookie_t copy =
            xcb_copy_area(m_connection, pixmap, id, into.gc, qint16(rect.x()), qint16(rect.y()), qint16(rect.x()),
                          qint16(rect.y()), quint16(rect.width()), quint16(rect.height()));
        first = first.value_or(copy.sequence);
        rectangles.push_back({qint16(rect.x()), qint16(rect.y()), quint16(rect.width()), quint16(rect.height())});
    }
    const xcb_render_picture_t picture = xcb_generate_id(m_connection);
    xcb_render_create_picture(m_connection, picture, id, into.format, 0, nullptr);
    xcb_render_fill_rectangles(m_connection, XCB_RENDER_PICT_OP_OVER, picture, renderColor(dimming),
                               quint32(rectangles.size()), rectangles.data());
    xcb_render_free_picture(m_connection, picture);
    xcb_flush(m_connection);
    remember(id, *first, region);
}

void X11DirectWindowPainter::putPixels(QWindow &window, const QImage &pixels, const QPoint &at)
{
    const auto id = xcb_window_t(window.winId());
    const Target into = target(id);
    if (!into.gc || pixels.isNull())
        return;
    const QImage rows = pixels.format() == QImage::Format_RGB32 ? pixels : pixels.convertToFormat(QImage::Format_RGB32);
    const auto stride = size_t(rows.bytesPerLine());
    // One request may carry only so much; taller pictures go in bands.
    const size_t room = size_t(xcb_get_maximum_request_length(m_connection)) * 4 - sizeof(xcb_put_image_request_t);
    const int band = std::max(1, int(room / stride));
    std::optional<quint32> first;
    for (int top = 0; top < rows.height(); top += band) {
        const int height = std::min(band, rows.height() - top);
        const xcb_void_cookie_t put =
            xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, id, into.gc, quint16(rows.width()),
                          quint16(height), qint16(at.x()), qint16(at.y() + top), 0, into.depth,
                          quint32(stride * size_t(height)), rows.constScanLine(top));
        first = first.value_or(put.sequence);
    }
    xcb_flush(m_connection);
    if (first)
        remember(id, *first, QRect(at, rows.size()));
}

void X11DirectWindowPainter::remember(xcb_window_t window, quint32 sequence, const QRegion &region)
{
    // A handful is plenty: the events in question arrive within a few requests of the drawing.
    constexpr qsizetype kept = 16;
    QList<Drawing> &drawings = m_drawings[window];
    drawings.append({sequence, region});
    if (drawings.size() > kept)
        drawings.removeFirst();
}

bool X11DirectWindowPainter::drawnSince(xcb_window_t window, quint32 sequence, const QRect &area) const
{
    QRegion covered;
    for (const Drawing &drawing : m_drawings.value(window)) {
        // Sequence numbers wrap; the difference says which came first.
        if (qint32(drawing.sequence - sequence) > 0)
            covered |= drawing.region;
    }
    return (QRegion(area) - covered).isEmpty();
}

bool X11DirectWindowPainter::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) != XCB_EXPOSE)
        return false;
    const auto *expose = reinterpret_cast<const xcb_expose_event_t *>(event);
    const auto watcher = m_watchers.constFind(expose->window);
    const QRect area(expose->x, expose->y, expose->width, expose->height);
    if (watcher != m_watchers.cend() && !drawnSince(expose->window, event->full_sequence, area))
        (*watcher)(area);
    // Qt sees every event: it keeps its own account of what is shown.
    return false;
}

void X11DirectWindowPainter::watchLosses(QWindow &window, std::function<void(const QRegion &lost)> lost)
{
    const auto id = xcb_window_t(window.winId());
    if (lost) {
        m_watchers.insert(id, std::move(lost));
        return;
    }
    // The window is going: what is kept for it goes too.
    m_watchers.remove(id);
    m_drawings.remove(id);
    if (const Target gone = m_targets.take(id); gone.gc)
        xcb_free_gc(m_connection, gone.gc);
}
