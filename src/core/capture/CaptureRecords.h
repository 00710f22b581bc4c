#pragma once

#include "geometry/Rect.h"

#include <QImage>

class SelectionWindow;

// The value records shared by the capture flow. Rectangles are in points: "global" is the
// bottom-left-origin desktop space (y upwards), "display-local" has its origin at the display's
// bottom-left corner (y upwards).

// A display's image taken when a selection session started, with the display's global frame at that
// moment. Kept from freezing until the session is cancelled or a capture ends.
struct FrozenDisplaySnapshot
{
    QImage image;
    Rect logicalFrame;
};

// The region of the last successful capture, for the repeat shortcut. `localRect` is display-local and
// pixel-aligned; `screenFrame` is the display's global frame at the time of the capture.
struct LastSelectionRegion
{
    quint32 displayID = 0;
    Rect localRect;
    Rect screenFrame;
};

// The window under the pointer cut to the overlay window of the pointer's display, in that overlay
// window's own coordinates.
struct CursorWindowSelection
{
    SelectionWindow *overlayWindow = nullptr;
    Rect localRect;
};

// One display to freeze: its id, global frame and backing scale.
struct FrozenCaptureTarget
{
    quint32 id = 0;
    Rect frame;
    double scale = 1;
};
