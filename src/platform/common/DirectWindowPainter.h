#pragma once

#include <QtGlobal>

#include <functional>

class QColor;
class QImage;
class QPoint;
class QRegion;
class QWindow;

// Draws into a native window itself, with no backing store of Qt's in between. The selection overlay
// uses it where the window system still holds the frozen screen it read (X11's shared segments): the
// server then lays that frame into the window darkened, and we neither paint a full-display picture
// nor send it over. What is drawn over the frame is painted by us and put in as pixels.
// Main thread.
class DirectWindowPainter
{
public:
    virtual ~DirectWindowPainter() = default;

    // Whether the window system can draw `frame` into `window` on its own: it holds the frame's pixels
    // and the window shows them as they are.
    virtual bool canDrawFrame(QWindow &window, const QImage &frame) const = 0;
    // Lays `region` (device pixels) of `frame` into the window at the same place, with `dimming` laid
    // over it. Only for a frame canDrawFrame() accepted.
    virtual void drawFrame(QWindow &window, const QImage &frame, const QRegion &region, const QColor &dimming) = 0;
    // Puts `pixels` (32 bits each, opaque) into the window with their top-left corner at `at` (device
    // pixels).
    virtual void putPixels(QWindow &window, const QImage &pixels, const QPoint &at) = 0;
    // What is drawn stays until the window system loses it (another window drew over it): then `lost`
    // gets that part of the window, in device pixels, to be drawn again. An empty function stops it
    // and forgets the window, which is about to go.
    virtual void watchLosses(QWindow &window, std::function<void(const QRegion &lost)> lost) = 0;
};
