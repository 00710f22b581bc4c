#pragma once

#include "InputGrab.h"

// Wayland has no grabs: the compositor gives the keyboard to the window it activates. Asking for the
// activation of the overlay is all a client can do; a new full-screen window is activated by sway and
// KWin anyway. Main thread.
class WaylandInputGrab final : public InputGrab
{
public:
    void grab(QWindow &window) override;
    void release() override {}
};
