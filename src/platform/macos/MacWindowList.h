#pragma once

#include "platform/WindowList.h"

// The windows on screen from CGWindowListCopyWindowInfo (on-screen only, without desktop elements),
// front to back. Bounds are in the top-left global space already. The owner name is the application's
// name as the window server knows it, so our own windows come back as "Vistrel" (the bundle's name).
// Reading names and bounds needs no screen-recording permission. Main thread.
class MacWindowList final : public WindowList
{
public:
    std::optional<QList<Entry>> onScreenWindows() const override;
};
