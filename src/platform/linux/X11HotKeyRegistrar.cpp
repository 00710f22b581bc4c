#include "X11HotKeyRegistrar.h"

#include "X11KeyTable.h"

#include <QCoreApplication>

#include <X11/keysym.h>
#include <xcb/xcb_keysyms.h>

#include <cstdlib>

namespace {
// The bits of a key event's state that can be part of a shortcut; pointer buttons are above them.
constexpr quint16 keyboardModifierBits = 0xff;

QList<xcb_keycode_t> keycodesFor(xcb_key_symbols_t *symbols, quint32 keysym)
{
    QList<xcb_keycode_t> keycodes;
    xcb_keycode_t *found = xcb_key_symbols_get_keycode(symbols, keysym);
    for (xcb_keycode_t *k = found; k && *k != XCB_NO_SYMBOL; ++k) {
        if (!keycodes.contains(*k))
            keycodes.append(*k);
    }
    std::free(found);
    return keycodes;
}
} // namespace

X11HotKeyRegistrar::X11HotKeyRegistrar(xcb_connection_t *connection)
    : m_connection(connection), m_symbols(xcb_key_symbols_alloc(connection), xcb_key_symbols_free)
{
    m_root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    updateNumLockMask();
    QCoreApplication::instance()->installNativeEventFilter(this);
}

X11HotKeyRegistrar::~X11HotKeyRegistrar()
{
    QCoreApplication::instance()->removeNativeEventFilter(this);
    for (const Registration &registration : std::as_const(m_registrations))
        ungrab(registration);
    xcb_flush(m_connection);
}

HotKeyRegistrar::Result X11HotKeyRegistrar::registerHotKey(quint32 keyCode, quint32 carbonModifiers,
                                                           Identifier identifier)
{
    const std::optional<quint32> keysym = x11keys::keysymForMacKeyCode(keyCode);
    if (!keysym)
        return {paramErr, 0};
    Registration registration{*keysym, x11keys::modifierMask(carbonModifiers), identifier, {}};
    for (const Registration &existing : std::as_const(m_registrations)) {
        if (existing.keysym == registration.keysym && existing.modifiers == registration.modifiers)
            return {eventHotKeyExistsErr, 0};
    }
    if (const Status status = grab(registration); status != noErr)
        return {status, 0};
    const Handle handle = m_nextHandle++;
    m_registrations.insert(handle, registration);
    return {noErr, handle};
}

void X11HotKeyRegistrar::unregisterHotKey(Handle hotKey)
{
    const auto it = m_registrations.constFind(hotKey);
    if (it == m_registrations.constEnd())
        return;
    ungrab(*it);
    xcb_flush(m_connection);
    m_registrations.erase(it);
}

HotKeyRegistrar::Status X11HotKeyRegistrar::grab(Registration &registration)
{
    registration.keycodes = keycodesFor(m_symbols.get(), registration.keysym);
    if (registration.keycodes.isEmpty())
        return paramErr;
    // Send every grab first and then collect the replies: one round trip instead of one per variant.
    QList<xcb_void_cookie_t> cookies;
    for (const xcb_keycode_t keycode : std::as_const(registration.keycodes)) {
        for (const quint16 variant : lockVariants()) {
            cookies.append(xcb_grab_key_checked(m_connection, 1, m_root, registration.modifiers | variant, keycode,
                                                XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        }
    }
    Status status = noErr;
    for (const xcb_void_cookie_t cookie : std::as_const(cookies)) {
        if (xcb_generic_error_t *error = xcb_request_check(m_connection, cookie)) {
            if (status == noErr)
                status = error->error_code;
            std::free(error);
        }
    }
    if (status != noErr) {
        // Ungrabbing touches only our own grabs, so the variants another client holds stay its own.
        ungrab(registration);
        registration.keycodes.clear();
        xcb_flush(m_connection);
    }
    return status;
}

void X11HotKeyRegistrar::ungrab(const Registration &registration)
{
    for (const xcb_keycode_t keycode : registration.keycodes) {
        for (const quint16 variant : lockVariants())
            xcb_ungrab_key(m_connection, keycode, m_root, registration.modifiers | variant);
    }
}

QList<quint16> X11HotKeyRegistrar::lockVariants() const
{
    if (m_numLockMask == 0)
        return {0, x11keys::LockMask};
    return {0, x11keys::LockMask, m_numLockMask, quint16(m_numLockMask | x11keys::LockMask)};
}

void X11HotKeyRegistrar::updateNumLockMask()
{
    m_numLockMask = 0;
    const QList<xcb_keycode_t> numLockKeys = keycodesFor(m_symbols.get(), XK_Num_Lock);
    xcb_get_modifier_mapping_reply_t *reply =
        xcb_get_modifier_mapping_reply(m_connection, xcb_get_modifier_mapping(m_connection), nullptr);
    if (!reply)
        return;
    const xcb_keycode_t *map = xcb_get_modifier_mapping_keycodes(reply);
    const int perModifier = reply->keycodes_per_modifier;
    for (int modifier = 0; modifier < 8; ++modifier) {
        for (int i = 0; i < perModifier; ++i) {
            const xcb_keycode_t keycode = map[modifier * perModifier + i];
            if (keycode != 0 && numLockKeys.contains(keycode))
                m_numLockMask |= quint16(1u << modifier);
        }
    }
    std::free(reply);
}

bool X11HotKeyRegistrar::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
    if (eventType != "xcb_generic_event_t")
        return false;
    auto *event = static_cast<xcb_generic_event_t *>(message);
    switch (event->response_type & ~0x80) {
    case XCB_KEY_PRESS: {
        auto *press = reinterpret_cast<xcb_key_press_event_t *>(event);
        return press->event == m_root && handleKeyPress(press->detail, press->state);
    }
    case XCB_KEY_RELEASE:
        // Whichever window the release goes to (our own grabs may have taken the keyboard meanwhile).
        if (m_heldKeycode == reinterpret_cast<xcb_key_release_event_t *>(event)->detail)
            m_heldKeycode.reset();
        return false;
    case XCB_MAPPING_NOTIFY:
        handleMappingNotify(event);
        return false;
    default:
        return false;
    }
}

bool X11HotKeyRegistrar::handleKeyPress(xcb_keycode_t keycode, quint16 state)
{
    const quint16 modifiers = state & keyboardModifierBits & ~(x11keys::LockMask | m_numLockMask);
    for (const Registration &registration : std::as_const(m_registrations)) {
        if (registration.modifiers != modifiers || !registration.keycodes.contains(keycode))
            continue;
        if (m_heldKeycode == keycode)
            return true;
        m_heldKeycode = keycode;
        // After the event, so handlers may open windows and grab the keyboard outside Qt's dispatch.
        QMetaObject::invokeMethod(
            &m_context, [this, identifier = registration.identifier] { m_handlers.dispatch(identifier); },
            Qt::QueuedConnection);
        return true;
    }
    return false;
}

void X11HotKeyRegistrar::handleMappingNotify(void *event)
{
    auto *notify = static_cast<xcb_mapping_notify_event_t *>(event);
    if (notify->request == XCB_MAPPING_POINTER)
        return;
    for (const Registration &registration : std::as_const(m_registrations))
        ungrab(registration);
    xcb_refresh_keyboard_mapping(m_symbols.get(), notify);
    updateNumLockMask();
    // A key that vanished leaves its registration in place without grabs, ready for the next change.
    for (Registration &registration : m_registrations)
        grab(registration);
}
