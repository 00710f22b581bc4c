#pragma once

#include <QString>

class CaptureAttempts;
class CaptureSaver;
class PermissionGate;
struct CaptureServices;
struct CaptureState;

// Captures the region of the last successful capture again, live and without the overlay, on the same
// display. Every refusal beeps and is logged, so a press of the shortcut never passes unnoticed.
// Main thread.
class RepeatCapture final
{
public:
    RepeatCapture(CaptureState &state, const CaptureServices &services, PermissionGate &permission,
                  CaptureAttempts &attempts, CaptureSaver &saver)
        : m_state(state), m_services(services), m_permission(permission), m_attempts(attempts), m_saver(saver)
    {
    }

    void captureLastSelection();

private:
    void run();
    void refuse(const QString &line);

    CaptureState &m_state;
    const CaptureServices &m_services;
    PermissionGate &m_permission;
    CaptureAttempts &m_attempts;
    CaptureSaver &m_saver;
};
