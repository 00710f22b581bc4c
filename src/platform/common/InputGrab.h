#pragma once

class QWindow;

// Takes all pointer and keyboard input for one window while a selection runs, so Escape and Space
// arrive although no window of ours had the focus (active grabs on X11). Systems whose key window gets
// the keys anyway implement it as nothing. Main thread.
class InputGrab
{
public:
    virtual ~InputGrab() = default;

    // The window must be shown. Pointer events over our other windows still go to them.
    virtual void grab(QWindow &window) = 0;
    // Gives the focus back to whoever had it; nothing when no grab is held.
    virtual void release() = 0;
};
