#pragma once

#include "platform/Cursor.h"

class FakeCursor final : public Cursor
{
public:
    QPointF location() const override { return position; }
    void hide() override { ++hideCount; }
    void unhide() override { ++unhideCount; }

    // Hides not yet balanced by an unhide; the pointer shows when this is 0.
    int hiddenLevel() const { return hideCount - unhideCount; }

    QPointF position;
    int hideCount = 0;
    int unhideCount = 0;
};
