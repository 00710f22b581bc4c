#include "MacHotKeyRegistrar.h"

#include <Carbon/Carbon.h>

namespace {

// Carbon's headers have a Handle type of their own; ours is always spelled with its class.
HotKeyRegistrar::Handle toHandle(const void *reference)
{
    return HotKeyRegistrar::Handle(reinterpret_cast<quintptr>(reference));
}

template<typename Reference>
Reference fromHandle(HotKeyRegistrar::Handle handle)
{
    return reinterpret_cast<Reference>(quintptr(handle));
}

OSStatus hotKeyEventHandler(EventHandlerCallRef, EventRef event, void *userData)
{
    if (!userData)
        return noErr;
    EventHotKeyID hotKeyID{};
    const OSStatus status = GetEventParameter(event, kEventParamDirectObject, typeEventHotKeyID, nullptr,
                                              sizeof hotKeyID, nullptr, &hotKeyID);
    std::optional<HotKeyRegistrar::Identifier> identifier;
    if (status == noErr)
        identifier = HotKeyRegistrar::Identifier{hotKeyID.signature, hotKeyID.id};
    // A copy: the handler may re-register the hot keys and so remove itself.
    const HotKeyRegistrar::Handler handler = *static_cast<HotKeyRegistrar::Handler *>(userData);
    handler(identifier);
    // Handled in every case: the press never goes on to other handlers.
    return noErr;
}

} // namespace

MacHotKeyRegistrar::~MacHotKeyRegistrar()
{
    for (const auto &entry : m_handlers)
        RemoveEventHandler(fromHandle<EventHandlerRef>(entry.first));
}

HotKeyRegistrar::Result MacHotKeyRegistrar::installHandler(Handler handler)
{
    auto function = std::make_unique<Handler>(std::move(handler));
    const EventTypeSpec pressed{kEventClassKeyboard, kEventHotKeyPressed};
    EventHandlerRef reference = nullptr;
    const OSStatus status = InstallEventHandler(GetApplicationEventTarget(), &hotKeyEventHandler, 1, &pressed,
                                                function.get(), &reference);
    if (status != noErr)
        return {status, 0};
    m_handlers[toHandle(reference)] = std::move(function);
    return {noErr, toHandle(reference)};
}

void MacHotKeyRegistrar::removeHandler(Handle handler)
{
    const auto found = m_handlers.find(handler);
    if (found == m_handlers.end())
        return;
    RemoveEventHandler(fromHandle<EventHandlerRef>(handler));
    m_handlers.erase(found);
}

HotKeyRegistrar::Result MacHotKeyRegistrar::registerHotKey(quint32 keyCode, quint32 carbonModifiers,
                                                           Identifier identifier)
{
    const EventHotKeyID hotKeyID{identifier.signature, identifier.id};
    EventHotKeyRef reference = nullptr;
    const OSStatus status = RegisterEventHotKey(keyCode, carbonModifiers, hotKeyID, GetApplicationEventTarget(), 0,
                                                &reference);
    if (status != noErr)
        return {status, 0};
    return {noErr, toHandle(reference)};
}

void MacHotKeyRegistrar::unregisterHotKey(Handle hotKey)
{
    if (hotKey)
        UnregisterEventHotKey(fromHandle<EventHotKeyRef>(hotKey));
}
