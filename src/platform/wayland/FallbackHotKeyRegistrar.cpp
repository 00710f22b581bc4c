#include "FallbackHotKeyRegistrar.h"

namespace {
// The first registrar's status for "there is no such service here".
constexpr HotKeyRegistrar::Status unimpErr = -4;
} // namespace

FallbackHotKeyRegistrar::FallbackHotKeyRegistrar(std::unique_ptr<HotKeyRegistrar> first,
                                                 std::unique_ptr<HotKeyRegistrar> second)
    : m_first(std::move(first)), m_second(std::move(second))
{
    m_first->setBinderObserver([this](Binder binder) {
        if (m_onSecond)
            return;
        if (binder == Binder::Nobody && !m_registrations.isEmpty())
            fallBack(true);
        else if (m_observer)
            m_observer(binder);
    });
    m_second->setBinderObserver([this](Binder binder) {
        if (m_onSecond && m_observer)
            m_observer(binder);
    });
}

HotKeyRegistrar::Result FallbackHotKeyRegistrar::installHandler(Handler handler)
{
    const Result first = m_first->installHandler(handler);
    if (first.status != noErr)
        return first;
    const Result second = m_second->installHandler(std::move(handler));
    if (second.status != noErr) {
        m_first->removeHandler(first.handle);
        return second;
    }
    const Handle handle = m_nextHandle++;
    m_handlers.insert(handle, {first.handle, second.handle});
    return {noErr, handle};
}

void FallbackHotKeyRegistrar::removeHandler(Handle handler)
{
    const auto found = m_handlers.constFind(handler);
    if (found == m_handlers.cend())
        return;
    m_first->removeHandler(found->first);
    m_second->removeHandler(found->second);
    m_handlers.erase(found);
}

HotKeyRegistrar::Result FallbackHotKeyRegistrar::registerHotKey(quint32 keyCode, quint32 carbonModifiers,
                                                                Identifier identifier)
{
    Result result = current().registerHotKey(keyCode, carbonModifiers, identifier);
    if (result.status == unimpErr && !m_onSecond) {
        // The caller reads the binder once it has registered; the second reports its own changes.
        fallBack(false);
        result = m_second->registerHotKey(keyCode, carbonModifiers, identifier);
    }
    if (result.status != noErr)
        return {result.status, 0};
    const Handle handle = m_nextHandle++;
    m_registrations.insert(handle, {keyCode, carbonModifiers, identifier, result.handle});
    return {noErr, handle};
}

void FallbackHotKeyRegistrar::unregisterHotKey(Handle hotKey)
{
    const auto found = m_registrations.constFind(hotKey);
    if (found == m_registrations.cend())
        return;
    if (found->inner != 0)
        current().unregisterHotKey(found->inner);
    m_registrations.erase(found);
}

HotKeyRegistrar::Binder FallbackHotKeyRegistrar::binder() const
{
    return current().binder();
}

void FallbackHotKeyRegistrar::fallBack(bool notify)
{
    if (m_onSecond)
        return;
    for (Registration &registration : m_registrations) {
        m_first->unregisterHotKey(registration.inner);
        const Result moved =
            m_second->registerHotKey(registration.keyCode, registration.carbonModifiers, registration.identifier);
        registration.inner = moved.status == noErr ? moved.handle : 0;
    }
    m_onSecond = true;
    if (notify && m_observer)
        m_observer(m_second->binder());
}
