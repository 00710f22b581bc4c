#pragma once

#include <QString>

#include <functional>

struct CaptureServices;

// The screen-recording permission check in front of every capture, and what the user is shown when it
// is refused (the system's privacy settings, no dialog). Main thread; the request itself runs on a worker.
class PermissionGate final
{
public:
    static inline const QString alertMessage =
        QStringLiteral("Vistrel: 画面収録の許可が必要です。システム設定を開きます。");
    static inline const QString privacySettingsURL =
        QStringLiteral("x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture");

    explicit PermissionGate(const CaptureServices &services) : m_services(services) {}

    // Completes at once when recording is already permitted; otherwise asks on a worker thread and
    // completes on the main thread.
    void ensureScreenCapturePermission(std::function<void(bool granted)> completion);
    void showPermissionAlert();

private:
    const CaptureServices &m_services;
};
