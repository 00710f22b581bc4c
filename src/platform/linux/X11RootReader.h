#pragma once

#include "ScreenPixels.h"
#include "X11ShmSegments.h"

#include <QRect>
#include <QSize>
#include <QString>

#include <optional>

#include <xcb/xcb.h>

// Reads pixels of the root window at its own pixel size: through a reused MIT-SHM segment, or with a
// plain GetImage where the server has no shared memory. Only 24-bit colour in 32-bit pixels is read;
// anything else is refused plainly. Needs nothing of Qt's GUI classes, so the command-line capture
// reads the screen exactly as the application does, without them.
//
// Calls complete before returning; one thread at a time.
class X11RootReader final
{
public:
    // GetImage only is what a server without MIT-SHM gets; asking for it serves comparisons.
    enum class Transfer { SharedMemoryIfAvailable, GetImageOnly };

    struct Read
    {
        ScreenPixels pixels;
        // Why there are no pixels.
        std::optional<QString> error;
    };

    X11RootReader(xcb_connection_t *connection, Transfer transfer = Transfer::SharedMemoryIfAvailable);

    xcb_window_t root() const { return m_root; }
    QSize rootSize() const { return m_rootSize; }
    bool usesSharedMemory() const { return m_useSharedMemory && m_segments.isAvailable(); }

    // The part of `native` that lies on the root window, in device pixels. `mayKeepSegment`: the
    // pixels may go on reading the shared segment (which stays out of reuse until they are released)
    // instead of being copied out at once.
    Read read(const QRect &native, bool mayKeepSegment);
    // Keeps at most `count` unused segments.
    void trim(size_t count) { m_segments.trim(count); }
    // Whether the server can read images handed out in a segment itself (pixmapOver()).
    bool serverReadsSegments() { return usesSharedMemory() && !m_formatProblem && m_segments.sharesPixmaps(); }
    // A pixmap of the server's over the `size` pixels at `data`, when they are still those a shared
    // segment got from the root; 0 otherwise. It has the root's depth.
    xcb_pixmap_t pixmapOver(const uchar *data, QSize size, qsizetype bytesPerLine);
    quint8 depth() const { return m_depth; }

private:
    ScreenPixels getImage(const QRect &native) const;

    xcb_connection_t *m_connection;
    xcb_window_t m_root = 0;
    QSize m_rootSize;
    quint8 m_depth = 0;
    std::optional<QString> m_formatProblem;
    bool m_useSharedMemory = true;
    X11ShmSegments m_segments;
};
