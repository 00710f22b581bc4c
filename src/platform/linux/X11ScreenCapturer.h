#pragma once

#include "X11RootReader.h"

#include "platform/ScreenCapturer.h"

#include <xcb/xcb.h>

class DesktopSpace;
class X11DisplayProvider;

// Screen images on X11, read from the root window at the displays' own pixel size (X11RootReader). A
// whole display is handed out still in its shared segment (the frozen background of a selection, read
// in a few milliseconds even at 4K); any part of the screen is copied out so the segment is free again
// at once.
//
// Everything runs on the main thread, on Qt's own connection, and completes before returning.
class X11ScreenCapturer final : public ScreenCapturer
{
public:
    using Transfer = X11RootReader::Transfer;

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
    // Reads every display once and lets the pixels go: the shared segments a freeze needs, and the
    // server's pixmaps over them, are then made and mapped on both sides before the first one.
    void prepare();
    bool usesSharedMemory() const { return m_reader.usesSharedMemory(); }
    // Whether the server can draw the display images this capturer hands out without their coming back.
    bool serverDrawsFrames() { return m_reader.serverReadsSegments(); }
    // The server's own pixmap over a display image this capturer handed out still in its segment;
    // 0 for any other image.
    xcb_pixmap_t serverPixmapOf(const QImage &image)
    {
        return m_reader.pixmapOver(image.constBits(), image.size(), image.bytesPerLine());
    }
    quint8 rootDepth() const { return m_reader.depth(); }

private:
    const X11DisplayProvider &m_displays;
    X11RootReader m_reader;
};
