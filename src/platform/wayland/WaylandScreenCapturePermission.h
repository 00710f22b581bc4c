#pragma once

#include "platform/ScreenCapturePermission.h"

class SystemLog;

// On Wayland the screen can be read where the desktop offers a way (wlr-screencopy, the Screenshot
// portal, which asks the user itself); there is nothing to ask here. Where it offers none, every capture
// is refused and the system log says what to install. Called by the capture's permission gate.
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
