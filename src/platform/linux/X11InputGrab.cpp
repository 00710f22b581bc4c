#include "X11InputGrab.h"

#include <QTimer>
#include <QWindow>

#include <cstdlib>

namespace {
constexpr int retryIntervalMs = 20;
constexpr int retryAttempts = 25;
constexpr quint16 pointerEvents = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE
    | XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW;
} // namespace

X11InputGrab::X11InputGrab(xcb_connection_t *connection) : m_connection(connection) {}

X11InputGrab::~X11InputGrab()
{
    release();
}

void X11InputGrab::grab(QWindow &window)
{
    release();
    m_window = xcb_window_t(window.winId());
    xcb_get_input_focus_reply_t *focus =
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr);
    m_previousFocus = focus ? focus->focus : 0;
    std::free(focus);
    m_attemptsLeft = retryAttempts;
    tryGrab();
}

bool X11InputGrab::tryGrab()
{
    if (!m_window)
        return true;
    // Events over our other windows still go to them (owner events), so each overlay sees its own
    // pointer; only the rest of the desktop is shut out.
    if (!m_hasPointer) {
        xcb_grab_pointer_reply_t *reply = xcb_grab_pointer_reply(
            m_connection,
            xcb_grab_pointer(m_connection, 1, m_window, pointerEvents, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC,
                             XCB_NONE, XCB_NONE, XCB_CURRENT_TIME),
            nullptr);
        m_hasPointer = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
        std::free(reply);
    }
    if (!m_hasKeyboard) {
        xcb_grab_keyboard_reply_t *reply = xcb_grab_keyboard_reply(
            m_connection,
            xcb_grab_keyboard(m_connection, 1, m_window, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr);
        m_hasKeyboard = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
        std::free(reply);
        if (m_hasKeyboard)
            xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_POINTER_ROOT, m_window, XCB_CURRENT_TIME);
    }
    xcb_flush(m_connection);
    if (m_hasPointer && m_hasKeyboard)
        return true;
    if (--m_attemptsLeft > 0)
        QTimer::singleShot(retryIntervalMs, this, [this] { tryGrab(); });
    return false;
}

void X11InputGrab::release()
{
    if (!m_window)
        return;
    if (m_hasPointer)
        xcb_ungrab_pointer(m_connection, XCB_CURRENT_TIME);
    if (m_hasKeyboard) {
        xcb_ungrab_keyboard(m_connection, XCB_CURRENT_TIME);
        // The window that had the focus may be gone meanwhile; then the server's error is all.
        if (m_previousFocus > XCB_INPUT_FOCUS_PARENT)
            xcb_set_input_focus(m_connection, XCB_INPUT_FOCUS_POINTER_ROOT, m_previousFocus, XCB_CURRENT_TIME);
    }
    xcb_flush(m_connection);
    m_window = 0;
    m_hasPointer = false;
    m_hasKeyboard = false;
    m_attemptsLeft = 0;
}
