#pragma once

#include "platform/ScreenCapturePermission.h"

class SystemLog;

// On Wayland the screen can be read where the compositor offers a way (wlr-screencopy); there is nothing
// to ask the user. Where it offers none, every capture is refused and the system log says what to
// install. Called by the capture's permission gate.
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
