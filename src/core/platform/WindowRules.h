#pragma once

#include "geometry/Rect.h"

#include <QString>

// Rules shared by the settings and editor windows.
namespace windowrules {

struct KeyEquivalentEvent
{
    bool isKeyDown = true;
    // Command on macOS; Control on Linux, where it plays that role in windows.
    bool hasCommand = false;
    QString charactersIgnoringModifiers;
};

// Command-Q (with any further modifiers) closes the window it is pressed in instead of quitting.
bool isCloseWindowShortcut(const KeyEquivalentEvent &event);

// The window shrunk to fit the visible frame and centred in it.
Rect fittedFrame(const Rect &windowFrame, const Rect &visibleFrame);

} // namespace windowrules
