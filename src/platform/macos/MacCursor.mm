#include "MacCursor.h"

#import <AppKit/AppKit.h>

QPointF MacCursor::location() const
{
    const NSPoint point = [NSEvent mouseLocation];
    return QPointF(point.x, point.y);
}

void MacCursor::hide()
{
    [NSCursor hide];
}

void MacCursor::unhide()
{
    [NSCursor unhide];
}
