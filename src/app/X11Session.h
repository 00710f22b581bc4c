#pragma once

#include "SessionAdapters.h"

#include <xcb/xcb.h>

// The adapters of an X11 session, on Qt's own connection to the X server.
namespace x11session {

SessionAdapters adapters(xcb_connection_t *connection);

} // namespace x11session
