#include "capture/CaptureExecution.h"

#include "platform/DiagnosticsLog.h"
#include "capture/CaptureAttempts.h"
#include "capture/CaptureGeometry.h"
#include "capture/CaptureSaver.h"
#include "capture/CaptureServices.h"
#include "capture/CaptureState.h"
#include "capture/PermissionGate.h"
#include "capture/SelectionSession.h"
#include "capture/WindowUnderCursor.h"
#include "geometry/TraceFormat.h"
#include "platform/DisplayProvider.h"
#include "platform/Scheduler.h"
#include "platform/SelectionWindow.h"
#include "platform/SoundPlayer.h"
#include "platform/SystemLog.h"

using namespace Qt::StringLiterals;

CaptureExecution::CaptureExecution(CaptureState &state, const CaptureServices &services, SelectionSession &session,
                                   PermissionGate &permission, CaptureAttempts &attempts, CaptureSaver &saver,
                                   const WindowUnderCursor &windowUnderCursor)
    : m_state(state), m_services(services), m_session(session), m_permission(permission), m_attempts(attempts),
      m_saver(saver), m_windowUnderCursor(windowUnderCursor)
{
}

void CaptureExecution::captureWindowUnderCursor()
{
    if (!m_state.isSelecting() || m_state.isCapturing())
        return;
    const std::optional<CursorWindowSelection> selection = m_windowUnderCursor.makeWindowSelectionUnderCursor();
    if (!selection) {
        m_services.sounds.beep();
        m_services.diagnostics.write(u"window selection skipped: no target window under cursor"_s);
        return;
    }
    capture(selection->localRect, selection->overlayWindow);
}

void CaptureExecution::capture(const Rect &rect, SelectionWindow *window)
{
    if (!m_state.isSelecting()) {
        m_services.diagnostics.write(u"capture ignored: selection inactive"_s);
        return;
    }
    if (!(rect.width() > 0) || !(rect.height() > 0) || m_state.isCapturing() || !window)
        return;
    m_state.beginCapturing();
    m_services.diagnostics.write(u"capture begin rect="_s % trace::rect(rect));

    std::optional<DisplayInfo> screen = window->screen();
    if (!screen)
        screen = m_services.displays.mainScreen();
    if (!screen) {
        m_services.diagnostics.write(u"capture aborted: target screen not found"_s);
        abort();
        return;
    }

    // Clamped to the display also where the window stands: a window whose display was unplugged
    // under the overlay is moved to another display by name only, and keeps its old place.
    const Rect inView = rect.intersected(capturegeometry::localBounds(screen->frame));
    const Rect onScreen = window->convertRectToScreen(inView);
    const Rect clamped = onScreen.intersected(screen->frame)
                             .translated(inView.minX() - onScreen.minX(), inView.minY() - onScreen.minY());
    const Rect aligned = capturegeometry::pixelAlignedRect(clamped, screen->backingScale);
    if (aligned.isEmpty() || !aligned.isFinite()) {
        m_services.systemLog.log(u"Vistrel: 無効なキャプチャ範囲のため処理を中断しました。"_s);
        m_services.diagnostics.write(u"capture aborted invalid clampedLocalRect"_s);
        abort();
        return;
    }

    const Rect appKitScreenRect = window->convertRectToScreen(aligned);
    Target target;
    target.displayID = screen->id;
    target.localRect = appKitScreenRect.translated(-screen->frame.minX(), -screen->frame.minY());
    target.screenFrame = screen->frame;
    target.scale = screen->backingScale;
    const Rect cgGlobalRect = capturegeometry::cgGlobalRect(appKitScreenRect, m_attempts.desktopTopY());
    m_services.diagnostics.write(u"capture localRect="_s % trace::rect(target.localRect) % u" appKitScreenRect="_s
                                 % trace::rect(appKitScreenRect) % u" cgGlobalRect="_s % trace::rect(cgGlobalRect)
                                 % u" screenFrame="_s % trace::rect(screen->frame) % u" displayID="_s
                                 % trace::displayID(screen->id));
    if (target.displayID)
        target.candidateRegion = LastSelectionRegion{*target.displayID, target.localRect, screen->frame};

    QImage cropped;
    if (m_state.useFrozenBackground && target.displayID) {
        const auto snapshot = m_state.frozenDisplaySnapshots.constFind(*target.displayID);
        if (snapshot != m_state.frozenDisplaySnapshots.constEnd())
            cropped = capturegeometry::cropFrozenImage(target.localRect, *snapshot);
    }
    // A capture from the frozen image reaches the clipboard while the overlay still has the keyboard:
    // GNOME takes a clipboard only from the focused window. A live one reads the screen once the overlay
    // has left it. The pointer stays hidden until the end.
    if (!cropped.isNull())
        finish(cropped, target);
    window->orderOut();
    m_session.closeSelectionWindows(m_state.useFrozenBackground, false);
    if (cropped.isNull())
        m_services.scheduler.postToMainAfter(overlaySettleDelay, [this, target] { captureLive(target); });
}

void CaptureExecution::abort()
{
    m_session.restoreSelectionCursorIfNeeded();
    m_state.endCapturing();
}

void CaptureExecution::captureLive(const Target &target)
{
    m_permission.ensureScreenCapturePermission([this, target](bool granted) {
        if (!granted) {
            m_permission.showPermissionAlert();
            abort();
            return;
        }
        m_attempts.performCaptureAttempts(
            target.displayID, target.localRect, target.screenFrame, target.scale, u"capture"_s,
            [this, target](QImage image) {
                if (image.isNull())
                    m_services.diagnostics.write(u"capture attempts exhausted display="_s
                                                 % trace::displayID(target.displayID));
                m_services.scheduler.postToMain(
                    [this, image = std::move(image), target] { finish(image, target); });
            });
    });
}

void CaptureExecution::finish(const QImage &image, const Target &target)
{
    if (!image.isNull()) {
        m_state.lastSelectionRegion = target.candidateRegion;
        m_saver.completeCapture(image, target.localRect.size());
    }
    m_state.endCapturing();
    m_state.frozenDisplaySnapshots.clear();
    m_session.restoreSelectionCursorIfNeeded();
}
