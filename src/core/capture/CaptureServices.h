#pragma once

class AppSettings;
class Clock;
class Cursor;
class DiagnosticsLog;
class DisplayProvider;
class KeyEventMonitor;
class Pasteboard;
class PngWriter;
class Scheduler;
class ScreenCapturePermission;
class ScreenCapturer;
class SelectionWindowFactory;
class SoundPlayer;
class SystemLog;
class WindowList;
class Workspace;

// The services the capture flow runs on; each outlives the capture controller.
struct CaptureServices
{
    AppSettings &settings;
    DiagnosticsLog &diagnostics;
    SystemLog &systemLog;
    Scheduler &scheduler;
    Clock &clock;
    DisplayProvider &displays;
    ScreenCapturer &capturer;
    ScreenCapturePermission &permission;
    WindowList &windowList;
    Pasteboard &pasteboard;
    SoundPlayer &sounds;
    Workspace &workspace;
    Cursor &cursor;
    KeyEventMonitor &keyMonitor;
    SelectionWindowFactory &windowFactory;
    const PngWriter &pngWriter;
};
