#pragma once

#include "platform/KeyEventMonitor.h"

#include <memory>

// Local key-down monitors (NSEvent addLocalMonitorForEventsMatchingMask:handler:): every key-down event
// on its way to one of our windows passes the handlers first, with its virtual key code; a handler that
// takes the event keeps it from the window. Main thread.
class MacKeyEventMonitor final : public KeyEventMonitor
{
public:
    MacKeyEventMonitor();
    ~MacKeyEventMonitor() override;

    Handle addLocalKeyDownMonitor(Handler handler) override;
    void removeMonitor(Handle monitor) override;

private:
    struct Monitors;
    std::unique_ptr<Monitors> m_monitors;
};
