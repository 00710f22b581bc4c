#include "WaylandSession.h"

#include "CanberraSoundPlayer.h"
#include "FallbackHotKeyRegistrar.h"
#include "KGlobalAccelHotKeyRegistrar.h"
#include "KWinWindowList.h"
#include "MutterDisplayConfig.h"
#include "PortalHotKeyRegistrar.h"
#include "PortalScreenCapturePermission.h"
#include "QtCursor.h"
#include "QtPasteboard.h"
#include "SwayWindowList.h"
#include "WaylandCaptureChoice.h"
#include "WaylandClipboard.h"
#include "WaylandConnection.h"
#include "WaylandDisplayProvider.h"
#include "WaylandInputGrab.h"

#include <QDBusConnection>

namespace waylandsession {

std::variant<SessionAdapters, QString> adapters(SystemLog &log)
{
    auto opened = WaylandConnection::open();
    if (QString *failure = std::get_if<QString>(&opened))
        return *failure;
    std::unique_ptr<WaylandConnection> connection = std::move(std::get<std::unique_ptr<WaylandConnection>>(opened));

    // GNOME's word on its monitors over Qt's, whose sizes of scaled monitors are in mixed units there.
    if (std::shared_ptr<MutterDisplayConfig> mutter = MutterDisplayConfig::whereMutterRuns(QDBusConnection::sessionBus()))
        DesktopSpace::setCompositorLayout([mutter](const QList<DesktopScreen> &qt) { return mutter->outputs(qt); });

    SessionAdapters set;
    auto displays = std::make_unique<WaylandDisplayProvider>();
    set.cursor = std::make_unique<QtCursor>(*displays);
    WaylandCaptureChoice capture =
        WaylandCaptureChoice::choose(std::move(connection), *displays, QDBusConnection::sessionBus(), log);
    set.portalReadsScreen = dynamic_cast<PortalScreenCapturePermission *>(capture.permission.get()) != nullptr;
    set.permission = std::move(capture.permission);
    set.screenCapturer = std::move(capture.capturer);
    set.displays = std::move(displays);
    std::unique_ptr<KWinWindowList> kwin = KWinWindowList::whereKWinRuns(QDBusConnection::sessionBus());
    const bool onKWin = kwin != nullptr;
    if (kwin) {
        set.setTrace = [list = kwin.get()](const std::function<void(const QString &)> &trace) { list->setTrace(trace); };
        set.windowList = std::move(kwin);
    } else {
        std::unique_ptr<SwayWindowList> windows = SwayWindowList::fromEnvironment();
        set.setTrace = [list = windows.get()](const std::function<void(const QString &)> &trace) { list->setTrace(trace); };
        set.windowList = std::move(windows);
    }
    // Served by us through the compositor's data control where it has one, so a capture stays on the
    // clipboard with no window of ours focused; else through Qt.
    if (std::unique_ptr<WaylandClipboard> clipboard = WaylandClipboard::create())
        set.pasteboard = std::move(clipboard);
    else
        set.pasteboard = std::make_unique<QtPasteboard>();
    set.sounds = std::make_unique<CanberraSoundPlayer>(nullptr);
    // The portal first; on KDE Plasma, where it binds nothing (5.27), KDE's own shortcut service. Not
    // elsewhere: a kglobalaccel the bus starts on another desktop accepts keys that never fire.
    auto portal = std::make_unique<PortalHotKeyRegistrar>(QDBusConnection::sessionBus(), log);
    if (onKWin)
        set.hotKeys = std::make_unique<FallbackHotKeyRegistrar>(
            std::move(portal), std::make_unique<KGlobalAccelHotKeyRegistrar>(QDBusConnection::sessionBus(), log));
    else
        set.hotKeys = std::move(portal);
    set.inputGrab = std::make_unique<WaylandInputGrab>(qEnvironmentVariable("SWAYSOCK"));
    set.overlaysFillScreens = true;
    return set;
}

} // namespace waylandsession
