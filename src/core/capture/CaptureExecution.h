#pragma once

#include "capture/CaptureRecords.h"
#include "capture/CaptureRequests.h"
#include "geometry/Rect.h"

#include <QImage>

#include <optional>

class CaptureAttempts;
class CaptureSaver;
class PermissionGate;
class SelectionSession;
class SelectionWindow;
class WindowUnderCursor;
struct CaptureServices;
struct CaptureState;

// Turns a rectangle chosen in a selection window into an image: aligned to the display's pixels, cut
// from the frozen image of the display when there is one, otherwise taken live once the overlay has
// left the screen; or the window under the pointer. Main thread.
class CaptureExecution final : public CaptureRequests
{
public:
    // Time for the overlay to leave the screen before a live capture.
    static constexpr double overlaySettleDelay = 0.06;

    CaptureExecution(CaptureState &state, const CaptureServices &services, SelectionSession &session,
                     PermissionGate &permission, CaptureAttempts &attempts, CaptureSaver &saver,
                     const WindowUnderCursor &windowUnderCursor);

    // `rect` is in the window's own coordinates.
    void capture(const Rect &rect, SelectionWindow *window) override;
    // The window under the pointer, cut to its display's overlay; a beep when there is none.
    void captureWindowUnderCursor() override;

private:
    struct Target
    {
        std::optional<quint32> displayID;
        Rect localRect;
        Rect screenFrame;
        double scale = 1;
        // Becomes the repeat region once an image arrives.
        std::optional<LastSelectionRegion> candidateRegion;
    };

    void abort();
    void captureLive(const Target &target);
    void finish(const QImage &image, const Target &target);

    CaptureState &m_state;
    const CaptureServices &m_services;
    SelectionSession &m_session;
    PermissionGate &m_permission;
    CaptureAttempts &m_attempts;
    CaptureSaver &m_saver;
    const WindowUnderCursor &m_windowUnderCursor;
};
