#include "MacKeyEventMonitor.h"

#import <AppKit/AppKit.h>

#include <map>

struct MacKeyEventMonitor::Monitors
{
    // The tokens AppKit returned, by our handle.
    std::map<Handle, id> tokens;
    Handle next = 1;
};

MacKeyEventMonitor::MacKeyEventMonitor() : m_monitors(std::make_unique<Monitors>()) {}

MacKeyEventMonitor::~MacKeyEventMonitor()
{
    for (const auto &entry : m_monitors->tokens)
        [NSEvent removeMonitor:entry.second];
}

KeyEventMonitor::Handle MacKeyEventMonitor::addLocalKeyDownMonitor(Handler handler)
{
    id token = [NSEvent addLocalMonitorForEventsMatchingMask:NSEventMaskKeyDown
                                                     handler:^NSEvent *(NSEvent *event) {
                                                         // A copy: the handler may remove this monitor,
                                                         // and with it the block that holds it.
                                                         const Handler current = handler;
                                                         return current(int(event.keyCode)) ? nil : event;
                                                     }];
    const Handle handle = m_monitors->next++;
    if (token)
        m_monitors->tokens[handle] = token;
    return handle;
}

void MacKeyEventMonitor::removeMonitor(Handle monitor)
{
    const auto found = m_monitors->tokens.find(monitor);
    if (found == m_monitors->tokens.end())
        return;
    [NSEvent removeMonitor:found->second];
    m_monitors->tokens.erase(found);
}
