#pragma once

#include "platform/ScreenCapturePermission.h"

class PortalScreenCapturer;

// Permission to read the screen through the desktop portal, which decides on each call (GNOME asks the
// user once and remembers the answer). So the request is the call itself: it takes the screen image the
// next freeze or live capture then uses, and a refusal or cancel ends the session before any overlay
// shows. Called by the capture's permission gate: preflight on the main thread, the request on a worker.
class PortalScreenCapturePermission final : public ScreenCapturePermission
{
public:
    explicit PortalScreenCapturePermission(PortalScreenCapturer &capturer) : m_capturer(capturer) {}

    bool preflight() override { return false; }
    bool request() override;

private:
    PortalScreenCapturer &m_capturer;
};
