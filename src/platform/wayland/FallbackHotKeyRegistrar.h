#pragma once

#include "platform/HotKeyRegistrar.h"

#include <QMap>

#include <memory>

// Two ways to bind the hot keys, the first preferred: registrations go to the first until it proves
// unable to bind them (it is absent, or it reports that nobody binds the keys), then all of them move
// to the second, for good. On Wayland the first is the GlobalShortcuts portal, the second the desktop's
// own shortcut service (kglobalaccel on KDE Plasma, whose 5.27 portal binds nothing). Handlers get the
// presses of either. Main thread only, as the registrars it holds.
class FallbackHotKeyRegistrar final : public HotKeyRegistrar
{
public:
    FallbackHotKeyRegistrar(std::unique_ptr<HotKeyRegistrar> first, std::unique_ptr<HotKeyRegistrar> second);

    Result installHandler(Handler handler) override;
    void removeHandler(Handle handler) override;
    Result registerHotKey(quint32 keyCode, quint32 carbonModifiers, Identifier identifier) override;
    void unregisterHotKey(Handle hotKey) override;
    Binder binder() const override;
    void setBinderObserver(BinderObserver observer) override { m_observer = std::move(observer); }

private:
    struct Registration
    {
        quint32 keyCode = 0;
        quint32 carbonModifiers = 0;
        Identifier identifier;
        // In the registrar in use; 0 where it refused the keys.
        Handle inner = 0;
    };

    HotKeyRegistrar &current() const { return m_onSecond ? *m_second : *m_first; }
    // Moves every registration to the second; `notify` tells the observer what the second's binder is.
    void fallBack(bool notify);

    std::unique_ptr<HotKeyRegistrar> m_first;
    std::unique_ptr<HotKeyRegistrar> m_second;
    bool m_onSecond = false;
    // Ours, to the handles of the first and the second.
    QMap<Handle, std::pair<Handle, Handle>> m_handlers;
    QMap<Handle, Registration> m_registrations;
    Handle m_nextHandle = 1;
    BinderObserver m_observer;
};
