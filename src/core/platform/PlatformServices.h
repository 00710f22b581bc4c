#pragma once

#include <QString>

class ApplicationControl;
class Clock;
class DisplayProvider;
class HotKeyRegistrar;
class KeyValueStore;
class LegacyPreferencesSource;
class LoginItemService;
class PngWriter;
class Scheduler;
class StatusItem;
class SystemLog;
class UserNotifier;

// The set of OS services of the running application. main() builds the set for its system and installs
// it once, before the first process-wide instance (Type::shared()) is made; those instances take their
// services from here. Tests never install it: they build their own instances with fakes.
//
// The services are owned by main() and outlive every instance built from them.
struct PlatformServices
{
    QString diagnosticsLogFolder;

    ApplicationControl *application = nullptr;
    Clock *clock = nullptr;
    DisplayProvider *displays = nullptr;
    HotKeyRegistrar *hotKeys = nullptr;
    KeyValueStore *store = nullptr;
    // Null where there are no older installations to migrate from.
    const LegacyPreferencesSource *legacyPreferences = nullptr;
    LoginItemService *loginItem = nullptr;
    const PngWriter *pngWriter = nullptr;
    Scheduler *scheduler = nullptr;
    StatusItem *statusItem = nullptr;
    SystemLog *systemLog = nullptr;
    UserNotifier *notifier = nullptr;

    static void install(const PlatformServices &services);
    // The installed set. Using it before install() is a programming error and stops the program.
    static const PlatformServices &shared();
};
