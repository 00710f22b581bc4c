#include "WaylandCaptureChoice.h"

#include "PortalScreenCapturePermission.h"
#include "PortalScreenCapturer.h"
#include "WaylandConnection.h"
#include "WaylandScreenCapturePermission.h"
#include "WlrScreenCapturer.h"
#include "platform/SystemLog.h"

using namespace Qt::StringLiterals;

WaylandCaptureChoice WaylandCaptureChoice::choose(std::unique_ptr<WaylandConnection> connection,
                                                  const WaylandDisplayProvider &displays,
                                                  const QDBusConnection &bus, SystemLog &log)
{
    const QString forced = qEnvironmentVariable("VISTREL_WAYLAND_CAPTURE");
    if (!forced.isEmpty() && forced != u"screencopy"_s && forced != u"portal"_s)
        log.log(u"Vistrel: VISTREL_WAYLAND_CAPTURE=%1 is neither screencopy nor portal; the desktop decides"_s
                    .arg(forced));
    const bool screencopy = connection->screencopy() != nullptr && forced != u"portal"_s;
    const bool portal = !screencopy && forced != u"screencopy"_s && PortalScreenCapturer::isOffered(bus);

    WaylandCaptureChoice choice;
    if (portal) {
        log.log(u"Vistrel: wayland capture via the Screenshot portal"_s);
        auto capturer = std::make_unique<PortalScreenCapturer>(bus, displays, log);
        choice.permission = std::make_unique<PortalScreenCapturePermission>(*capturer);
        choice.capturer = std::move(capturer);
        return choice;
    }
    if (screencopy)
        log.log(u"Vistrel: wayland capture via wlr-screencopy"_s);
    choice.capturer = std::make_unique<WlrScreenCapturer>(std::move(connection), displays);
    choice.permission = std::make_unique<WaylandScreenCapturePermission>(screencopy, log);
    return choice;
}
