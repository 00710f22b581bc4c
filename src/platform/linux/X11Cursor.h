#pragma once

#include "platform/Cursor.h"

#include <optional>

#include <xcb/xcb.h>

// The pointer on X11. Its position is read from the server and converted through the desktop space;
// hiding puts a blank cursor on every window of ours, counted like the system's hide and unhide. While
// a selection runs the pointer is over our overlay windows and grabbed by them, so that is the cursor
// the user sees. Main thread.
class X11Cursor final : public Cursor
{
public:
    explicit X11Cursor(xcb_connection_t *connection);
    ~X11Cursor() override;

    QPointF location() const override;
    void hide() override;
    void unhide() override;

    // Where the pointer is, in device pixels of the root window; nothing when the server did not say.
    static std::optional<QPoint> nativePosition(xcb_connection_t *connection);

private:
    xcb_connection_t *m_connection;
    int m_hideCount = 0;
};
