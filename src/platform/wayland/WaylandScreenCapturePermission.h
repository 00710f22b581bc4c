#pragma once

#include "platform/ScreenCapturePermission.h"

class SystemLog;

// On a compositor that lets clients copy its outputs (wlr-screencopy) there is nothing to ask. Where the
// desktop offers no way to read the screen, every capture is refused and the system log says what to
// install. (The portal's own permission is PortalScreenCapturePermission.) Called by the capture's
// permission gate.
class WaylandScreenCapturePermission final : public ScreenCapturePermission
{
public:
    WaylandScreenCapturePermission(bool compositorCopiesScreens, SystemLog &log);

    bool preflight() override { return m_compositorCopiesScreens; }
    bool request() override;

private:
    bool m_compositorCopiesScreens;
    SystemLog &m_log;
};
