#include "WaylandCaptureChoice.h"

#include "KWinScreenCapturer.h"
#include "PortalScreenCapturePermission.h"
#include "PortalScreenCapturer.h"
#include "WaylandConnection.h"
#include "WaylandScreenCapturePermission.h"
#include "WlrScreenCapturer.h"
#include "platform/SystemLog.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

WaylandCaptureChoice WaylandCaptureChoice::choose(std::unique_ptr<WaylandConnection> connection,
                                                  const WaylandDisplayProvider &displays,
                                                  const QDBusConnection &bus, SystemLog &log)
{
    const QString forced = qEnvironmentVariable("VISTREL_WAYLAND_CAPTURE");
    if (!forced.isEmpty() && forced != u"screencopy"_s && forced != u"kwin"_s && forced != u"portal"_s)
        log.log(u"Vistrel: VISTREL_WAYLAND_CAPTURE=%1 is neither screencopy, kwin nor portal; the desktop decides"_s
                    .arg(forced));
    const bool any = forced != u"screencopy"_s && forced != u"kwin"_s && forced != u"portal"_s;
    const bool screencopy = connection->screencopy() != nullptr && (any || forced == u"screencopy"_s);

    WaylandCaptureChoice choice;
    if (!screencopy && (any || forced == u"kwin"_s)) {
        const KWinScreenCapturer::Probe kwin = KWinScreenCapturer::probe(bus);
        if (kwin.offer == KWinScreenCapturer::Offer::Answers) {
            log.log(u"Vistrel: wayland capture via KWin's ScreenShot2"_s);
            choice.capturer = std::make_unique<KWinScreenCapturer>(bus, displays);
            choice.permission = std::make_unique<WaylandScreenCapturePermission>(true, log);
            return choice;
        }
        // KWin grants its screenshots by the executable's desktop entry: say what is missing.
        if (kwin.offer == KWinScreenCapturer::Offer::Refuses)
            log.log(u"Vistrel: KWin refused screenshots (%1); a desktop entry whose Exec is %2 with "
                    "X-KDE-DBUS-Restricted-Interfaces=org.kde.KWin.ScreenShot2 lets Vistrel read the screen "
                    "through KWin"_s.arg(kwin.error, QCoreApplication::applicationFilePath()));
    }
    const bool portal = !screencopy && (any || forced == u"portal"_s) && PortalScreenCapturer::isOffered(bus);
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
