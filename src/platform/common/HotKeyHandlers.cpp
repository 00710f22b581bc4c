#include "HotKeyHandlers.h"

HotKeyRegistrar::Result HotKeyHandlers::install(HotKeyRegistrar::Handler handler)
{
    const HotKeyRegistrar::Handle handle = m_nextHandle++;
    m_handlers.insert(handle, std::move(handler));
    return {HotKeyRegistrar::noErr, handle};
}

void HotKeyHandlers::dispatch(std::optional<HotKeyRegistrar::Identifier> identifier) const
{
    // A copy: the map may change under the calls.
    const QList<HotKeyRegistrar::Handler> handlers = m_handlers.values();
    for (const HotKeyRegistrar::Handler &handler : handlers)
        handler(identifier);
}
