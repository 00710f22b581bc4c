#pragma once

#include "ScreenPixels.h"

#include <QRect>
#include <QSize>

#include <memory>
#include <optional>
#include <vector>

#include <xcb/xcb.h>
#include <xcb/shm.h>

// Shared-memory segments the X server copies screen pixels into (MIT-SHM), kept and reused: making a
// segment costs more than the grab itself. Pixels handed out keep reading their segment; the segment
// stays out of reuse until the last copy of them is gone, on whichever thread that is.
// Making, reusing and dropping segments happens on the main thread only.
class X11ShmSegments final
{
public:
    explicit X11ShmSegments(xcb_connection_t *connection);
    ~X11ShmSegments();

    X11ShmSegments(const X11ShmSegments &) = delete;
    X11ShmSegments &operator=(const X11ShmSegments &) = delete;

    // False when the server has no MIT-SHM (a remote display) or attaching failed once.
    bool isAvailable() const { return m_isAvailable; }

    // The pixels of `rect` of `drawable` (32 bits per pixel, as the root's format is checked to be),
    // reading straight from a segment; null when the server refused.
    ScreenPixels grab(xcb_drawable_t drawable, const QRect &rect);
    // Keeps at most `count` unused segments, dropping the others.
    void trim(size_t count);

    // Whether the server makes pixmaps over our segments (MIT-SHM shared pixmaps); asked once.
    bool sharesPixmaps();
    // A pixmap of the server's that reads the `size` pixels at `data` (rows without padding) straight
    // from one of our segments, so the server can draw pixels it handed us without their coming back.
    // Kept with the segment; 0 when `data` lies in none of them or the server shares no pixmaps.
    xcb_pixmap_t pixmapOver(const uchar *data, QSize size, xcb_drawable_t root, quint8 depth);

private:
    struct Segment;
    std::shared_ptr<Segment> acquire(size_t bytes);
    std::shared_ptr<Segment> create(size_t bytes);

    void freePixmap(Segment &segment);

    xcb_connection_t *m_connection;
    bool m_isAvailable = false;
    // Asked of the server at the first pixmap wanted.
    std::optional<bool> m_sharesPixmaps;
    std::vector<std::shared_ptr<Segment>> m_segments;
};
