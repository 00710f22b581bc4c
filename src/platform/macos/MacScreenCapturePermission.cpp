#include "MacScreenCapturePermission.h"

#include <CoreGraphics/CoreGraphics.h>

bool MacScreenCapturePermission::preflight()
{
    return CGPreflightScreenCaptureAccess();
}

bool MacScreenCapturePermission::request()
{
    return CGRequestScreenCaptureAccess();
}
