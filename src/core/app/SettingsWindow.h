#pragma once

#include "geometry/Rect.h"

#include <optional>

class ShortcutGuidance;

// The settings window as the application controller drives it. Frames are in the global bottom-left
// space of the displays. Closing only hides it; the same window comes back.
class SettingsWindow
{
public:
    virtual ~SettingsWindow() = default;

    virtual bool isVisible() const = 0;
    virtual Rect frame() const = 0;
    // The visible frame of the display the window is on, if it is on one.
    virtual std::optional<Rect> screenVisibleFrame() const = 0;
    virtual void setFrame(const Rect &frame) = 0;
    virtual void makeKeyAndOrderFront() = 0;
    // The shortcut rows say from now on what binds each shortcut; a window without such rows ignores it.
    virtual void showShortcutBindings(const ShortcutGuidance &guidance) { Q_UNUSED(guidance); }
};
