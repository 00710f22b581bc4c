#pragma once

#include "geometry/Rect.h"
#include "platform/DisplayProvider.h"

#include <QPointF>

#include <optional>

class SelectionPointerRouter;
class SelectionView;

// One borderless overlay window covering a display during a selection (an NSWindow subclass on macOS,
// a frameless top-level widget on X11). It is created hidden, borderless, transparent (clear
// background, not opaque, no shadow), above ordinary windows and the menu bar (status-window level
// 25), on every virtual desktop including full-screen ones, without appearing in window lists or task
// bars, without animations, accepting mouse events, and able to become the key window although it has
// no title bar.
//
// Frames are in the bottom-left-origin global space, y upwards, in points. All calls are made on the
// main thread.
class SelectionWindow
{
public:
    virtual ~SelectionWindow() = default;

    virtual Rect frame() const = 0;
    // Moves and resizes the window and redraws it at once.
    virtual void setFrame(const Rect &frame) = 0;
    // The display showing most of the window, or nothing when it is on none.
    virtual std::optional<DisplayInfo> screen() const = 0;
    // Between the window's own space (bottom-left of the window, y upwards) and the global space.
    virtual Rect convertRectToScreen(const Rect &rect) const = 0;
    virtual QPointF convertPointFromScreen(QPointF point) const = 0;

    // Makes `view` the window's whole content: the window forwards every key event to it, gives it
    // keyboard focus, and paints it through SelectionView::draw. The view is owned elsewhere and outlives
    // its time in the window; null detaches.
    virtual void setContentView(SelectionView *view) = 0;
    // Where the window sends every pointer event (button presses and releases, drags, and moves without
    // a button, including the first click while the window is inactive), in the global space, together
    // with its content view. Set by the pool that owns the window; null detaches.
    virtual void setPointerRouter(SelectionPointerRouter *router) = 0;
    // The content needs repainting; coalesced with other requests.
    virtual void setNeedsDisplay() = 0;
    // Only `rect` of the content (in the view's coordinates) needs repainting; coalesced likewise.
    virtual void setNeedsDisplayInRect(const Rect &rect) = 0;
    // Repaints now if a repaint is pending.
    virtual void displayIfNeeded() = 0;

    // Shows the window in front and gives it keyboard focus.
    virtual void makeKeyAndOrderFront() = 0;
    // Shows the window in front without changing the focus.
    virtual void orderFront() = 0;
    // Hides the window; it keeps its frame and content for the next session.
    virtual void orderOut() = 0;
};
