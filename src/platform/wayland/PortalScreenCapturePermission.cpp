#include "PortalScreenCapturePermission.h"

#include "PortalScreenCapturer.h"

bool PortalScreenCapturePermission::request()
{
    return m_capturer.takeImageAndWait();
}
