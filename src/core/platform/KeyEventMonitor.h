#pragma once

#include <QtGlobal>

#include <functional>

// Watches key-down events on their way to the application's own windows (NSEvent
// addLocalMonitorForEventsMatchingMask:handler: on macOS; an application-wide event filter elsewhere).
class KeyEventMonitor
{
public:
    using Handle = quint64;
    // Gets the macOS virtual key code of each key-down event (adapters of other systems translate,
    // e.g. Escape is 53, Space 49), before any window sees it. Returns true to swallow the event.
    using Handler = std::function<bool(int keyCode)>;

    virtual ~KeyEventMonitor() = default;

    virtual Handle addLocalKeyDownMonitor(Handler handler) = 0;
    // Also allowed from inside that monitor's own handler.
    virtual void removeMonitor(Handle monitor) = 0;
};
