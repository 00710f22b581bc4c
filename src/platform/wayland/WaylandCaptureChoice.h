#pragma once

#include "platform/ScreenCapturePermission.h"
#include "platform/ScreenCapturer.h"

#include <QDBusConnection>

#include <memory>

class SystemLog;
class WaylandConnection;
class WaylandDisplayProvider;

// How a Wayland session reads the screen: wlr-screencopy where the compositor has it, else KWin's own
// ScreenShot2 where KWin lets us use it, else the desktop portal's Screenshot, else not at all (every
// capture is refused and the system log says what to install). VISTREL_WAYLAND_CAPTURE=screencopy, =kwin
// or =portal forces one. The system log names the way chosen, and why KWin refused where it did. Made
// once by the session's adapters, on the main thread.
struct WaylandCaptureChoice
{
    std::unique_ptr<ScreenCapturer> capturer;
    std::unique_ptr<ScreenCapturePermission> permission;

    static WaylandCaptureChoice choose(std::unique_ptr<WaylandConnection> connection,
                                       const WaylandDisplayProvider &displays, const QDBusConnection &bus,
                                       SystemLog &log);
};
