#pragma once

#include <QString>

class AlertPresenter;
class ApplicationControl;
class Clock;
class Cursor;
class CustomKeybindingStore;
class DisplayProvider;
class EditorWindowFactory;
class HotKeyRegistrar;
class KeyEventMonitor;
class KeyValueStore;
class LegacyPreferencesSource;
class LoginItemService;
class OpenPanel;
class Pasteboard;
class PngWriter;
class Scheduler;
class ScreenCapturePermission;
class ScreenCapturer;
class SelectionWindowFactory;
class SoundPlayer;
class SoftwareUpdater;
class StatusItem;
class SystemLog;
class UserNotifier;
class WindowList;
class Workspace;

// The set of OS services of the running application. main() builds the set for its system and installs
// it once, before the first process-wide instance (Type::shared()) is made; those instances, built in
// app/SharedInstances.cpp, take their services from here. Tests never install it: they build their own
// instances with fakes.
//
// The services are owned by main() and outlive every instance built from them.
struct PlatformServices
{
    QString diagnosticsLogFolder;
    // Installs the handler of the system's own uncaught exceptions (NSException); null where the system
    // has none besides C++ exceptions. Called once by CrashDiagnostics::install().
    void (*installUncaughtExceptionHandler)() = nullptr;

    AlertPresenter *alerts = nullptr;
    ApplicationControl *application = nullptr;
    Clock *clock = nullptr;
    Cursor *cursor = nullptr;
    // The desktop's custom shortcuts; null where Vistrel does not write them.
    CustomKeybindingStore *desktopKeybindings = nullptr;
    DisplayProvider *displays = nullptr;
    EditorWindowFactory *editorWindows = nullptr;
    HotKeyRegistrar *hotKeys = nullptr;
    KeyEventMonitor *keyMonitor = nullptr;
    KeyValueStore *store = nullptr;
    // Null where there are no older installations to migrate from.
    const LegacyPreferencesSource *legacyPreferences = nullptr;
    LoginItemService *loginItem = nullptr;
    OpenPanel *openPanel = nullptr;
    Pasteboard *pasteboard = nullptr;
    const PngWriter *pngWriter = nullptr;
    Scheduler *scheduler = nullptr;
    ScreenCapturePermission *screenCapturePermission = nullptr;
    ScreenCapturer *screenCapturer = nullptr;
    SelectionWindowFactory *selectionWindows = nullptr;
    SoundPlayer *sounds = nullptr;
    SoftwareUpdater *updater = nullptr;
    StatusItem *statusItem = nullptr;
    SystemLog *systemLog = nullptr;
    UserNotifier *notifier = nullptr;
    WindowList *windowList = nullptr;
    Workspace *workspace = nullptr;

    static void install(const PlatformServices &services);
    // The installed set. Using it before install() is a programming error and stops the program.
    static const PlatformServices &shared();
};
