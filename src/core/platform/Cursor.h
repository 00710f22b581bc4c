#pragma once

#include <QPointF>

// The mouse pointer (NSEvent.mouseLocation and NSCursor.hide/unhide on macOS; XFixes on X11).
class Cursor
{
public:
    virtual ~Cursor() = default;

    // In the bottom-left-origin global space, y upwards, in points.
    virtual QPointF location() const = 0;
    // Hiding is counted by the system: each hide() needs its own unhide() before the pointer shows again.
    virtual void hide() = 0;
    virtual void unhide() = 0;
};
