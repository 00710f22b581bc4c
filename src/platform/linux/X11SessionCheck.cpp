#include "X11SessionCheck.h"

#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

namespace x11session {

std::optional<QString> missingDisplayMessage(const QProcessEnvironment &environment)
{
    if (!environment.value(u"DISPLAY"_s).trimmed().isEmpty())
        return std::nullopt;
    const QString waylandDisplay = environment.value(u"WAYLAND_DISPLAY"_s);
    const QString sessionType = environment.value(u"XDG_SESSION_TYPE"_s);
    if (!waylandDisplay.isEmpty() || sessionType == u"wayland"_s) {
        const QString evidence = !waylandDisplay.isEmpty() ? u"WAYLAND_DISPLAY is set"_s
                                                           : u"XDG_SESSION_TYPE=wayland"_s;
        return u"Vistrel needs an X11 display, but this is a Wayland-only session (%1, DISPLAY is not set). "
               "Log in to an X11 session, or enable Xwayland so that DISPLAY is set."_s.arg(evidence);
    }
    if (sessionType == u"tty"_s) {
        return u"DISPLAY is not set: Vistrel needs an X11 display, and this is a text console session "
               "(XDG_SESSION_TYPE=tty). Start it from an X11 desktop session."_s;
    }
    return u"DISPLAY is not set: Vistrel needs an X11 display. Start it from an X11 desktop session, or set "
           "DISPLAY to the display to use (for example DISPLAY=:0)."_s;
}

std::optional<QString> unreachableDisplayMessage(const QString &display)
{
    xcb_connection_t *connection = xcb_connect(display.toLocal8Bit().constData(), nullptr);
    const int error = xcb_connection_has_error(connection);
    xcb_disconnect(connection);
    if (error == 0)
        return std::nullopt;
    return unreachableDisplayText(display);
}

QString unreachableDisplayText(const QString &display)
{
    return u"Cannot open the X display \"%1\": no X server answers there, or this user may not connect to it "
           "(check DISPLAY and XAUTHORITY)."_s.arg(display);
}

} // namespace x11session
