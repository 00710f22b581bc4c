#pragma once

#include "platform/KeyEventMonitor.h"

#include <QMap>

class FakeKeyEventMonitor final : public KeyEventMonitor
{
public:
    Handle addLocalKeyDownMonitor(Handler handler) override
    {
        ++addCount;
        const Handle handle = m_nextHandle++;
        monitors.insert(handle, std::move(handler));
        return handle;
    }
    void removeMonitor(Handle monitor) override
    {
        ++removeCount;
        monitors.remove(monitor);
    }

    // A key-down event on its way to a window: true when a monitor swallowed it.
    bool press(int keyCode)
    {
        const QList<Handler> handlers = monitors.values();
        for (const Handler &handler : handlers) {
            if (handler(keyCode))
                return true;
        }
        return false;
    }

    QMap<Handle, Handler> monitors;
    int addCount = 0;
    int removeCount = 0;

private:
    Handle m_nextHandle = 1;
};
