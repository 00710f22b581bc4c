#pragma once

#include "platform/ScreenCapturePermission.h"

// The screen-recording permission of macOS (System Settings > Privacy & Security > Screen Recording).
// The system remembers it per code signature, so an unsigned or ad-hoc signed build asks again after
// every rebuild.
class MacScreenCapturePermission final : public ScreenCapturePermission
{
public:
    // CGPreflightScreenCaptureAccess: never prompts.
    bool preflight() override;
    // CGRequestScreenCaptureAccess: prompts the first time only; later refusals return at once.
    bool request() override;
};
