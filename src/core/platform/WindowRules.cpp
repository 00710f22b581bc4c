#include "platform/WindowRules.h"

#include <algorithm>

namespace windowrules {

bool isCloseWindowShortcut(const KeyEquivalentEvent &event)
{
    return event.isKeyDown && event.hasCommand && event.charactersIgnoringModifiers.toLower() == u"q";
}

Rect fittedFrame(const Rect &windowFrame, const Rect &visibleFrame)
{
    const double width = std::min(windowFrame.width(), visibleFrame.width());
    const double height = std::min(windowFrame.height(), visibleFrame.height());
    return Rect(visibleFrame.minX() + (visibleFrame.width() - width) / 2,
                visibleFrame.minY() + (visibleFrame.height() - height) / 2, width, height);
}

} // namespace windowrules
