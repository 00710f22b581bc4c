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
        m_log.log(u"Vistrel: this Wayland desktop offers no way to read the screen: the compositor has no "
                  "wlr-screencopy and the session bus no Screenshot portal. Install xdg-desktop-portal with the "
                  "backend of this desktop (xdg-desktop-portal-gnome, xdg-desktop-portal-kde, or "
                  "xdg-desktop-portal-wlr with xdg-desktop-portal-gtk beside it and PipeWire running)."_s);
    return m_compositorCopiesScreens;
}
