#pragma once

#include "geometry/Rect.h"

class SelectionWindow;

// What the user picked in the overlay, to be captured: a dragged rectangle, or the window under the
// pointer. The selection session passes these on from its views. Main thread.
class CaptureRequests
{
public:
    virtual ~CaptureRequests() = default;

    // `rect` is in the window's own coordinates (bottom-left origin, y up).
    virtual void capture(const Rect &rect, SelectionWindow *window) = 0;
    virtual void captureWindowUnderCursor() = 0;
};
