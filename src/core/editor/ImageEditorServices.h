#pragma once

class AlertPresenter;
class AppSettings;
class ApplicationControl;
class Clock;
class DiagnosticsLog;
class DisplayProvider;
class EditorWindowFactory;
class KeyValueStore;
class OpenPanel;
class Pasteboard;
class PngWriter;
class Scheduler;
class SystemLog;
class UserNotifier;

// The services the editor windows run on; each outlives the window manager.
struct ImageEditorServices
{
    AppSettings &settings;
    // Where the editor's remembered styles live.
    KeyValueStore &store;
    DiagnosticsLog &diagnostics;
    SystemLog &systemLog;
    Scheduler &scheduler;
    Clock &clock;
    DisplayProvider &displays;
    ApplicationControl &application;
    UserNotifier &notifier;
    Pasteboard &pasteboard;
    const PngWriter &pngWriter;
    EditorWindowFactory &windows;
    AlertPresenter &alerts;
    OpenPanel &openPanel;
};
