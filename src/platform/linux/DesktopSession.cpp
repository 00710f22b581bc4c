#include "DesktopSession.h"

#include <xcb/xcb.h>

using namespace Qt::StringLiterals;

namespace desktopsession {

namespace {

bool isSet(const QProcessEnvironment &environment, const QString &name)
{
    return !environment.value(name).trimmed().isEmpty();
}

} // namespace

std::variant<Kind, QString> choose(const QProcessEnvironment &environment)
{
    const bool hasX = isSet(environment, u"DISPLAY"_s);
    const bool hasWayland = isSet(environment, u"WAYLAND_DISPLAY"_s);
    const QString forced = environment.value(u"VISTREL_SESSION"_s).trimmed().toLower();
    if (forced == u"x11"_s) {
        if (hasX)
            return Kind::X11;
        return u"VISTREL_SESSION=x11, but DISPLAY is not set: set DISPLAY to the X display to use (for example "
               "DISPLAY=:0)."_s;
    }
    if (forced == u"wayland"_s) {
        if (hasWayland)
            return Kind::Wayland;
        return u"VISTREL_SESSION=wayland, but WAYLAND_DISPLAY is not set: set it to the compositor's socket "
               "(for example WAYLAND_DISPLAY=wayland-0)."_s;
    }
    if (!forced.isEmpty())
        return u"VISTREL_SESSION=%1 is not a session Vistrel knows: use x11 or wayland."_s.arg(forced);
    const QString sessionType = environment.value(u"XDG_SESSION_TYPE"_s);
    if (hasWayland)
        return Kind::Wayland;
    if (sessionType == u"wayland"_s) {
        return u"This is a Wayland session (XDG_SESSION_TYPE=wayland), but WAYLAND_DISPLAY is not set: start "
               "Vistrel from the desktop session, or set WAYLAND_DISPLAY (for example WAYLAND_DISPLAY=wayland-0)."_s;
    }
    if (hasX)
        return Kind::X11;
    if (sessionType == u"tty"_s) {
        return u"Neither DISPLAY nor WAYLAND_DISPLAY is set: this is a text console session "
               "(XDG_SESSION_TYPE=tty). Start Vistrel from a desktop session."_s;
    }
    return u"Neither DISPLAY nor WAYLAND_DISPLAY is set: Vistrel needs a desktop session. Start it from one, or "
           "set DISPLAY (for example DISPLAY=:0) or WAYLAND_DISPLAY."_s;
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

} // namespace desktopsession
