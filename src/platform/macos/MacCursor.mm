#include "MacCursor.h"

#import <AppKit/AppKit.h>

QPointF MacCursor::location() const
{
    const NSPoint point = [NSEvent mouseLocation];
    return QPointF(point.x, point.y);
}

void MacCursor::hide()
{
    // Unverified: whether AppKit hides the pointer while Vistrel is not the active application (the
    // overlay is a non-activating panel); the pointer is still over our key window then.
    [NSCursor hide];
}

void MacCursor::unhide()
{
    [NSCursor unhide];
}
