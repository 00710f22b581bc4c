#pragma once

#include <QString>

#include <functional>
#include <memory>

class CanberraSoundPlayer;
class Cursor;
class DirectWindowPainter;
class HotKeyRegistrar;
class InputGrab;
class Pasteboard;
class QtScreensDisplayProvider;
class ScreenCapturePermission;
class ScreenCapturer;
class WindowList;

// The adapters that differ between an X11 and a Wayland session; the rest of the Linux platform set is
// the same on both. Made by x11session::adapters() or waylandsession::adapters() on the main thread,
// after the QApplication.
struct SessionAdapters
{
    std::unique_ptr<QtScreensDisplayProvider> displays;
    std::unique_ptr<Cursor> cursor;
    std::unique_ptr<ScreenCapturer> screenCapturer;
    // Paints the overlay windows where the window system holds the frozen screen (X11); may be null.
    // Reads the capturer's segments, so it goes first.
    std::unique_ptr<DirectWindowPainter> overlayPainter;
    std::unique_ptr<ScreenCapturePermission> permission;
    std::unique_ptr<WindowList> windowList;
    std::unique_ptr<Pasteboard> pasteboard;
    std::unique_ptr<CanberraSoundPlayer> sounds;
    std::unique_ptr<HotKeyRegistrar> hotKeys;
    // The grab outlives the overlay windows, which release it as they go.
    std::unique_ptr<InputGrab> inputGrab;
    // Where the adapters explain what the desktop lacks (the diagnostics log, once it exists).
    std::function<void(const std::function<void(const QString &line)> &trace)> setTrace;
    // Readies what the first capture would otherwise make then, showing nothing; empty where there is
    // nothing to ready.
    std::function<void()> prepareCapture;
    // On Wayland each overlay window is made full screen on its output: the compositor places windows.
    bool overlaysFillScreens = false;
    // The desktop portal reads the screen, so the desktop may ask the user once for permission.
    bool portalReadsScreen = false;

    SessionAdapters();
    SessionAdapters(SessionAdapters &&) noexcept;
    SessionAdapters &operator=(SessionAdapters &&) noexcept;
    ~SessionAdapters();
};
