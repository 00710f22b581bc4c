#pragma once

#include <QtGlobal>

#include <functional>
#include <optional>

// System-wide hot keys, in the shape of the Carbon hot-key service: one event handler for the
// application, and registrations of a virtual key code plus a Carbon modifier word under an identifier.
// Linux grabs the same combinations on the X root window, or asks the desktop's GlobalShortcuts portal.
//
// Statuses are the platform's own numbers; 0 (noErr) is success.
class HotKeyRegistrar
{
public:
    using Status = qint32;
    using Handle = quint64;
    static constexpr Status noErr = 0;

    struct Identifier
    {
        quint32 signature = 0;
        quint32 id = 0;
    };
    struct Result
    {
        Status status = noErr;
        Handle handle = 0;
    };
    // Called on the main thread for every press of a registered key. The identifier is absent when the
    // event's identifier could not be read.
    using Handler = std::function<void(std::optional<Identifier>)>;

    // What delivers the presses of registered keys. A registrar that learns it only later (a portal
    // answers after registration) reports Pending until then and each change through the observer,
    // on the main thread. Nobody: nothing binds the keys, so no press will come.
    enum class Binder { System, XServer, Portal, Pending, Nobody };
    using BinderObserver = std::function<void(Binder)>;

    virtual ~HotKeyRegistrar() = default;

    virtual Result installHandler(Handler handler) = 0;
    virtual void removeHandler(Handle handler) = 0;
    virtual Result registerHotKey(quint32 keyCode, quint32 carbonModifiers, Identifier identifier) = 0;
    virtual void unregisterHotKey(Handle hotKey) = 0;

    virtual Binder binder() const { return Binder::System; }
    virtual void setBinderObserver(BinderObserver observer) { Q_UNUSED(observer); }
};
