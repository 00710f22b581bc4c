#pragma once

#include "HotKeyHandlers.h"
#include "platform/HotKeyRegistrar.h"

#include <QAbstractNativeEventFilter>
#include <QList>
#include <QMap>
#include <QObject>

#include <memory>
#include <optional>

#include <xcb/xcb.h>

typedef struct _XCBKeySymbols xcb_key_symbols_t;

// Global hot keys on X11: each registration is a passive grab of its key on the root window, once
// for every state of Caps Lock and Num Lock, so the shortcut works whatever the lock keys show.
//
// It works on Qt's own X connection and watches its events through a native event filter; presses
// reach the installed handlers on the main thread, after the event has been handled. A keyboard
// mapping change re-grabs every registration on the keys that now carry its keysym.
//
// Statuses: the X error code of a failed grab (BadAccess 10 when another client holds the key),
// paramErr (-50) for a key code outside the table or a keysym no key produces, and
// eventHotKeyExistsErr (-9878) for a combination this registrar already holds, as Carbon reports it.
class X11HotKeyRegistrar final : public HotKeyRegistrar, private QAbstractNativeEventFilter
{
public:
    static constexpr Status paramErr = -50;
    static constexpr Status eventHotKeyExistsErr = -9878;

    // The connection must be the application's (QNativeInterface::QX11Application::connection()).
    explicit X11HotKeyRegistrar(xcb_connection_t *connection);
    ~X11HotKeyRegistrar() override;

    Result installHandler(Handler handler) override { return m_handlers.install(std::move(handler)); }
    void removeHandler(Handle handler) override { m_handlers.remove(handler); }
    Result registerHotKey(quint32 keyCode, quint32 carbonModifiers, Identifier identifier) override;
    void unregisterHotKey(Handle hotKey) override;
    Binder binder() const override { return Binder::XServer; }

private:
    struct Registration
    {
        quint32 keysym = 0;
        quint16 modifiers = 0;
        Identifier identifier;
        // The keys grabbed for it; empty while the keyboard has no key for the keysym.
        QList<xcb_keycode_t> keycodes;
    };

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    bool handleKeyPress(xcb_keycode_t keycode, quint16 state);
    void handleMappingNotify(void *event);

    Status grab(Registration &registration);
    void ungrab(const Registration &registration);
    QList<quint16> lockVariants() const;
    void updateNumLockMask();

    xcb_connection_t *m_connection;
    xcb_window_t m_root = 0;
    std::unique_ptr<xcb_key_symbols_t, void (*)(xcb_key_symbols_t *)> m_symbols;
    quint16 m_numLockMask = 0;
    HotKeyHandlers m_handlers;
    QMap<Handle, Registration> m_registrations;
    Handle m_nextHandle = 1;
    // The key of the last press we took, until it is released: a held key repeats its press, and
    // one press is one shortcut.
    std::optional<xcb_keycode_t> m_heldKeycode;
    QObject m_context;
};
