#pragma once

#include "InputGrab.h"

#include <QObject>

#include <xcb/xcb.h>

// Active pointer and keyboard grabs on one overlay window, with the input focus moved to it, so key
// presses reach us although the window manager never focuses an override-redirect window. Another
// client holding a grab (an open menu, a key still held in another program) is waited out for up to
// half a second. Releasing gives the focus back to the window that had it. Main thread.
class X11InputGrab final : public QObject, public InputGrab
{
public:
    explicit X11InputGrab(xcb_connection_t *connection);
    ~X11InputGrab() override;

    void grab(QWindow &window) override;
    void release() override;

private:
    bool tryGrab();

    xcb_connection_t *m_connection;
    xcb_window_t m_window = 0;
    xcb_window_t m_previousFocus = 0;
    bool m_hasPointer = false;
    bool m_hasKeyboard = false;
    int m_attemptsLeft = 0;
};
