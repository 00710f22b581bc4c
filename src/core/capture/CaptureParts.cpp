#include "capture/CaptureParts.h"

#include "capture/CaptureServices.h"
#include "platform/DisplayProvider.h"

CaptureParts::CaptureParts(const CaptureServices &services)
    : state(services.settings, services.windowFactory),
      permission(services),
      attempts(services),
      freezer(services, attempts),
      saver(services),
      // The executor is made further down; the session only keeps it for the captures to come.
      session(state, services, permission, freezer, execution),
      windowUnderCursor(state, services),
      execution(state, services, session, permission, attempts, saver, windowUnderCursor),
      repeat(state, services, permission, attempts, saver)
{
    services.displays.observeScreenParameters([this] { session.screenParametersDidChange(); });
}
