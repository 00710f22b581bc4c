#pragma once

#include "platform/HotKeyRegistrar.h"

#include <QMap>

// The handlers installed on a hot-key registrar, under the handles it gives out for them. Each
// registrar keeps one and calls every handler on a press. Main thread.
class HotKeyHandlers final
{
public:
    HotKeyRegistrar::Result install(HotKeyRegistrar::Handler handler);
    void remove(HotKeyRegistrar::Handle handle) { m_handlers.remove(handle); }
    // Every handler, with the pressed key's identifier; a handler may install, remove or re-register
    // while this runs.
    void dispatch(std::optional<HotKeyRegistrar::Identifier> identifier) const;

private:
    QMap<HotKeyRegistrar::Handle, HotKeyRegistrar::Handler> m_handlers;
    HotKeyRegistrar::Handle m_nextHandle = 1;
};
