#pragma once

#include "DirectWindowPainter.h"

#include <QAbstractNativeEventFilter>
#include <QHash>
#include <QRegion>

#include <functional>
#include <memory>

#include <xcb/render.h>
#include <xcb/xcb.h>

class X11ScreenCapturer;

// Draws the selection overlay's frozen screen in the X server: the display image the capturer handed
// out still lies in a shared segment, the server reads it through a pixmap over that segment (MIT-SHM
// shared pixmaps), copies it into the window and lays the dimming over it with X Render. Decorations
// come as pixels from the client. Main thread, on Qt's own connection.
//
// Losses come from the server's Expose events. One sent before a drawing that covers its area (the one
// a window gets as it maps, say) is out of date once that drawing is done, and is not passed on.
class X11DirectWindowPainter final : public DirectWindowPainter, public QAbstractNativeEventFilter
{
public:
    // Null where the server has no Render extension or cannot read our shared segments itself: the
    // overlay then paints through Qt's backing store.
    static std::unique_ptr<X11DirectWindowPainter> make(xcb_connection_t *connection, X11ScreenCapturer &capturer);
    ~X11DirectWindowPainter() override;

    bool canDrawFrame(QWindow &window, const QImage &frame) const override;
    void drawFrame(QWindow &window, const QImage &frame, const QRegion &region, const QColor &dimming) override;
    void putPixels(QWindow &window, const QImage &pixels, const QPoint &at) override;
    void watchLosses(QWindow &window, std::function<void(const QRegion &lost)> lost) override;

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

private:
    struct Target
    {
        quint8 depth = 0;
        xcb_render_pictformat_t format = 0;
        // Made on the window, so it suits the window's depth.
        xcb_gcontext_t gc = 0;
    };
    // What a drawing covered, and the sequence number of its first request.
    struct Drawing
    {
        quint32 sequence = 0;
        QRegion region;
    };

    X11DirectWindowPainter(xcb_connection_t *connection, X11ScreenCapturer &capturer,
                           QHash<xcb_visualid_t, xcb_render_pictformat_t> formats);
    // What the server says of the window, asked once per window.
    Target target(xcb_window_t window) const;
    void remember(xcb_window_t window, quint32 sequence, const QRegion &region);
    // Whether drawings the server began after event `sequence` cover `area` of the window.
    bool drawnSince(xcb_window_t window, quint32 sequence, const QRect &area) const;

    xcb_connection_t *m_connection;
    X11ScreenCapturer &m_capturer;
    QHash<xcb_visualid_t, xcb_render_pictformat_t> m_formats;
    mutable QHash<xcb_window_t, Target> m_targets;
    // The latest drawings into each window, newest last.
    QHash<xcb_window_t, QList<Drawing>> m_drawings;
    QHash<xcb_window_t, std::function<void(const QRegion &lost)>> m_watchers;
};
