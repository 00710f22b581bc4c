#include "X11Session.h"

#include "CanberraSoundPlayer.h"
#include "QtCursor.h"
#include "QtPasteboard.h"
#include "X11DirectWindowPainter.h"
#include "X11DisplayProvider.h"
#include "X11HotKeyRegistrar.h"
#include "X11InputGrab.h"
#include "X11ScreenCapturePermission.h"
#include "X11ScreenCapturer.h"
#include "X11WindowList.h"

SessionAdapters::SessionAdapters() = default;
SessionAdapters::SessionAdapters(SessionAdapters &&) noexcept = default;
SessionAdapters &SessionAdapters::operator=(SessionAdapters &&) noexcept = default;
SessionAdapters::~SessionAdapters() = default;

namespace x11session {

SessionAdapters adapters(xcb_connection_t *connection)
{
    SessionAdapters set;
    auto displays = std::make_unique<X11DisplayProvider>(connection);
    set.cursor = std::make_unique<QtCursor>(*displays);
    auto capturer = std::make_unique<X11ScreenCapturer>(connection, *displays);
    set.prepareCapture = [reader = capturer.get()] { reader->prepare(); };
    set.overlayPainter = X11DirectWindowPainter::make(connection, *capturer);
    set.screenCapturer = std::move(capturer);
    set.displays = std::move(displays);
    set.permission = std::make_unique<X11ScreenCapturePermission>();
    set.windowList = std::make_unique<X11WindowList>(connection);
    set.pasteboard = std::make_unique<QtPasteboard>();
    set.sounds = std::make_unique<CanberraSoundPlayer>(connection);
    set.hotKeys = std::make_unique<X11HotKeyRegistrar>(connection);
    set.inputGrab = std::make_unique<X11InputGrab>(connection);
    return set;
}

} // namespace x11session
