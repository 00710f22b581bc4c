#include "capture/RepeatCapture.h"

#include "platform/DiagnosticsLog.h"
#include "capture/CaptureAttempts.h"
#include "capture/CaptureGeometry.h"
#include "capture/CaptureSaver.h"
#include "capture/CaptureServices.h"
#include "capture/CaptureState.h"
#include "capture/PermissionGate.h"
#include "geometry/TraceFormat.h"
#include "platform/DisplayProvider.h"
#include "platform/Scheduler.h"
#include "platform/SoundPlayer.h"

using namespace Qt::StringLiterals;

void RepeatCapture::captureLastSelection()
{
    m_services.scheduler.postToMain([this] { run(); });
}

void RepeatCapture::refuse(const QString &line)
{
    m_services.sounds.beep();
    m_services.diagnostics.write(line);
}

void RepeatCapture::run()
{
    if (m_state.isBusy())
        return;
    if (!m_state.lastSelectionRegion) {
        refuse(u"repeat capture skipped: no previous selection"_s);
        return;
    }
    const LastSelectionRegion region = *m_state.lastSelectionRegion;
    const QString display = QString::number(region.displayID);
    m_state.beginCapturing();

    std::optional<DisplayInfo> screen;
    for (const DisplayInfo &candidate : m_services.displays.screens()) {
        if (candidate.id == region.displayID) {
            screen = candidate;
            break;
        }
    }
    if (!screen) {
        m_state.endCapturing();
        m_state.lastSelectionRegion.reset();
        refuse(u"repeat capture skipped: display="_s % display % u" is no longer connected"_s);
        return;
    }

    const Rect frame = screen->frame;
    const double scale = screen->backingScale;
    if (frame.size() != region.screenFrame.size()) {
        m_services.diagnostics.write(u"repeat capture warning: display="_s % display % u" size changed stored="_s
                                     % trace::size(region.screenFrame.size()) % u" current="_s
                                     % trace::size(frame.size()));
    }

    const Rect clamped = region.localRect.intersected(capturegeometry::localBounds(frame));
    const Rect aligned = capturegeometry::pixelAlignedRect(clamped, scale);
    if (aligned.isEmpty() || !aligned.isFinite()) {
        m_state.endCapturing();
        refuse(u"repeat capture skipped: stored rect out of current screen bounds"_s);
        return;
    }

    const Rect appKitScreenRect = aligned.translated(frame.minX(), frame.minY());
    m_services.diagnostics.write(
        u"repeat capture begin display="_s % display % u" localRect="_s % trace::rect(aligned)
        % u" appKitScreenRect="_s % trace::rect(appKitScreenRect) % u" cgGlobalRect="_s
        % trace::rect(capturegeometry::cgGlobalRect(appKitScreenRect, m_attempts.desktopTopY()))
        % u" screenFrame="_s % trace::rect(frame));

    m_permission.ensureScreenCapturePermission([this, region, aligned, frame, scale, display](bool granted) {
        if (!granted) {
            m_permission.showPermissionAlert();
            m_state.endCapturing();
            return;
        }
        m_attempts.performCaptureAttempts(region.displayID, aligned, frame, scale, u"repeat capture"_s,
                                          [this, aligned, display](QImage image) {
                                              if (image.isNull())
                                                  refuse(u"repeat capture attempts exhausted display="_s % display);
                                              else
                                                  m_saver.completeCapture(image, aligned.size());
                                              m_state.endCapturing();
                                          });
    });
}
