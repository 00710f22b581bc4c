#pragma once

#include "geometry/Rect.h"

class SelectionWindow;

// What a selection view reports to the selection session that shows it. Main thread.
class SelectionViewDelegate
{
public:
    virtual ~SelectionViewDelegate() = default;

    // A finished drag: `rect` in the window's own coordinates (bottom-left origin, y up).
    virtual void capture(const Rect &rect, SelectionWindow *window) = 0;
    // Space: the window under the pointer instead of a dragged rectangle.
    virtual void captureWindowUnderCursor() = 0;
    virtual void cancelSelection() = 0;
    // The view hid the pointer for its drag, or showed it again.
    virtual void selectionCursorDidHide() = 0;
    virtual void selectionCursorDidRestore() = 0;
};
