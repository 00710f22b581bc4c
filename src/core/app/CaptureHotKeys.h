#pragma once

#include "platform/HotKeyRegistrar.h"

#include <optional>

class AppSettings;
class CaptureCommands;
class DiagnosticsLog;
class SystemLog;

// The two global capture shortcuts: registered from the settings at launch and after every settings
// change, dispatched to the capture subsystem, removed at termination. Owned by the application
// controller; main thread only.
class CaptureHotKeys final
{
public:
    static constexpr quint32 captureHotKeyID = 1;
    static constexpr quint32 repeatCaptureHotKeyID = 2;
    // 'VSTL' as a big-endian four-character code.
    static constexpr quint32 signature = (quint32('V') << 24) | (quint32('S') << 16) | (quint32('T') << 8) | 'L';

    CaptureHotKeys(HotKeyRegistrar &registrar, const AppSettings &settings, CaptureCommands &capture,
                   DiagnosticsLog &diagnostics, SystemLog &systemLog);
    ~CaptureHotKeys();

    // For desktops that list an application's shortcuts: the name of the shortcut with this identifier,
    // which is its command on the command line ("select", "repeat"), and what it does.
    static QString shortcutName(quint32 id);
    static QString shortcutDescription(quint32 id);

    // Tears down whatever is registered, then registers both shortcuts from the current settings.
    void registerHotKey();
    void unregisterHotKey();

    // The platform's callback for one press. The press is always consumed.
    HotKeyRegistrar::Status hotKeyEventHandler(std::optional<HotKeyRegistrar::Identifier> identifier);
    void handleHotKey(quint32 id);

private:
    HotKeyRegistrar &m_registrar;
    const AppSettings &m_settings;
    CaptureCommands &m_capture;
    DiagnosticsLog &m_diagnostics;
    SystemLog &m_systemLog;

    std::optional<HotKeyRegistrar::Handle> m_hotKeyRef;
    std::optional<HotKeyRegistrar::Handle> m_repeatHotKeyRef;
    std::optional<HotKeyRegistrar::Handle> m_eventHandler;
};
