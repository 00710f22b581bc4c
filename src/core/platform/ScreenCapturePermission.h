#pragma once

// Permission to record the screen (CGPreflightScreenCaptureAccess / CGRequestScreenCaptureAccess on
// macOS). An X11 session is always permitted; a session that offers no way to read the screen is refused.
class ScreenCapturePermission
{
public:
    virtual ~ScreenCapturePermission() = default;

    // Whether recording is permitted now. Never prompts; callable on the main thread.
    virtual bool preflight() = 0;
    // Asks the user where the system can (once per application); true when permitted. May block, so it
    // is called on a worker thread.
    virtual bool request() = 0;
};
