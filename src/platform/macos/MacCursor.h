#pragma once

#include "platform/Cursor.h"

// The pointer on macOS: NSEvent.mouseLocation (already in the bottom-left global space, in points)
// and NSCursor's counted hide and unhide. Main thread.
class MacCursor final : public Cursor
{
public:
    QPointF location() const override;
    void hide() override;
    void unhide() override;
};
