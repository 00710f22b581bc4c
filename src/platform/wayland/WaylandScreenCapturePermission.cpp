#include "WaylandScreenCapturePermission.h"

#include "platform/SystemLog.h"

using namespace Qt::StringLiterals;

WaylandScreenCapturePermission::WaylandScreenCapturePermission(bool compositorCopiesScreens, SystemLog &log)
    : m_compositorCopiesScreens(compositorCopiesScreens), m_log(log)
{
}

bool WaylandScreenCapturePermission::request()
{
    if (!m_compositorCopiesScreens)
        m_log.log(u"Vistrel: this Wayland compositor offers no way to read the screen (no wlr-screencopy). On "
                  "sway, Hyprland and other wlroots desktops update the compositor; elsewhere install "
                  "xdg-desktop-portal with a backend for this desktop, and xdg-desktop-portal-gtk beside "
                  "xdg-desktop-portal-wlr."_s);
    return m_compositorCopiesScreens;
}
