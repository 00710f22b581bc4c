#pragma once

#include "X11ShmSegments.h"

#include "platform/ScreenCapturer.h"

#include <xcb/xcb.h>

class DesktopSpace;
class X11DisplayProvider;

// Screen images on X11, read from the root window at the displays' own pixel size: through a reused
// MIT-SHM segment, or with a plain GetImage where the server has no shared memory. A whole display is
// handed out still in its segment (the frozen background of a selection, read in a few milliseconds
// even at 4K); any part of the screen is copied out so the segment is free again at once.
//
// Everything runs on the main thread, on Qt's own connection, and completes before returning.
class X11ScreenCapturer final : public ScreenCapturer
{
public:
    // GetImage only is what a server without MIT-SHM gets; asking for it serves comparisons.
    enum class Transfer { SharedMemoryIfAvailable, GetImageOnly };

    X11ScreenCapturer(xcb_connection_t *connection, const X11DisplayProvider &displays,
                      Transfer transfer = Transfer::SharedMemoryIfAvailable);

    void shareableDisplays(ContentCompletion completion) override;
    void captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                        ImageCompletion completion) override;
    void captureRect(const Rect &globalRect, ImageCompletion completion) override;

    // Pixels of the root window; the error says why there are none.
    struct Grab
    {
        QImage image;
        std::optional<QString> error;
    };
    // `keepShared`: the image may keep reading the shared segment instead of owning its pixels.
    Grab grabRoot(const QRect &native, bool keepShared);
    bool usesSharedMemory() const { return m_useSharedMemory && m_segments.isAvailable(); }

private:
    QImage getImage(const QRect &native) const;

    xcb_connection_t *m_connection;
    const X11DisplayProvider &m_displays;
    xcb_window_t m_root = 0;
    QSize m_rootSize;
    std::optional<QString> m_formatProblem;
    bool m_useSharedMemory = true;
    X11ShmSegments m_segments;
};
