#pragma once

#include "platform/Cursor.h"

class QtScreensDisplayProvider;

// The pointer, where the display provider finds it (the X server on X11; on Wayland, where Qt last saw
// it). Hiding puts a blank cursor on every window of ours, counted like the system's hide and unhide:
// while a selection runs the pointer is over our overlay windows, so that is the cursor the user sees.
// Main thread.
class QtCursor final : public Cursor
{
public:
    explicit QtCursor(const QtScreensDisplayProvider &displays);
    ~QtCursor() override;

    QPointF location() const override;
    void hide() override;
    void unhide() override;

private:
    const QtScreensDisplayProvider &m_displays;
    int m_hideCount = 0;
};
