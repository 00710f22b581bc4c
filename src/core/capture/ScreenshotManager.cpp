#include "capture/ScreenshotManager.h"

#include "platform/DiagnosticsLog.h"
#include "platform/SoundPlayer.h"

using namespace Qt::StringLiterals;

ScreenshotManager::ScreenshotManager(const CaptureServices &services)
    : m_services(services),
      m_state(services.settings, services.windowFactory),
      m_permission(m_services),
      m_attempts(m_services),
      m_freezer(m_services, m_attempts),
      m_saver(m_services),
      m_session(m_state, m_services, m_permission, m_freezer, *this),
      m_execution(m_state, m_services, m_session, m_permission, m_attempts, m_saver),
      m_repeat(m_state, m_services, m_permission, m_attempts, m_saver),
      m_windowUnderCursor(m_state, m_services)
{
    m_services.displays.observeScreenParameters([this] { screenParametersDidChange(); });
}

ScreenshotManager::~ScreenshotManager() = default;

void ScreenshotManager::startSelection() { m_session.startSelection(); }

void ScreenshotManager::ensureScreenCapturePermission(std::function<void(bool granted)> completion)
{
    m_permission.ensureScreenCapturePermission(std::move(completion));
}

void ScreenshotManager::showPermissionAlert() { m_permission.showPermissionAlert(); }

void ScreenshotManager::captureFrozenDisplayImages(std::function<void()> completion)
{
    m_session.captureFrozenDisplayImages(std::move(completion));
}

void ScreenshotManager::showSelectionWindow() { m_session.showSelectionWindow(); }
void ScreenshotManager::installSelectionEscapeMonitorIfNeeded() { m_session.installSelectionEscapeMonitorIfNeeded(); }
void ScreenshotManager::removeSelectionEscapeMonitorIfNeeded() { m_session.removeSelectionEscapeMonitorIfNeeded(); }

void ScreenshotManager::closeSelectionWindows(bool keepFrozenImages, bool restoreCursor)
{
    m_session.closeSelectionWindows(keepFrozenImages, restoreCursor);
}

void ScreenshotManager::cancelSelection() { m_session.cancelSelection(); }
void ScreenshotManager::selectionCursorDidHide() { m_session.selectionCursorDidHide(); }
void ScreenshotManager::selectionCursorDidRestore() { m_session.selectionCursorDidRestore(); }
void ScreenshotManager::restoreSelectionCursorIfNeeded() { m_session.restoreSelectionCursorIfNeeded(); }
void ScreenshotManager::screenParametersDidChange() { m_session.screenParametersDidChange(); }

QString ScreenshotManager::currentDisplayLayoutDescription() const
{
    return m_session.currentDisplayLayoutDescription();
}

void ScreenshotManager::capture(const Rect &rect, SelectionWindow *window) { m_execution.capture(rect, window); }

void ScreenshotManager::performCaptureAttempts(std::optional<quint32> targetDisplayID, const Rect &localRect,
                                               const Rect &screenFrame, double scale, const QString &logPrefix,
                                               std::function<void(QImage image)> completion)
{
    m_attempts.performCaptureAttempts(targetDisplayID, localRect, screenFrame, scale, logPrefix,
                                      std::move(completion));
}

void ScreenshotManager::captureUsingDisplayFilter(quint32 targetID, const Rect &localRect, const Rect &screenFrame,
                                                  double scale, CaptureAttempts::ImageCompletion completion)
{
    m_attempts.captureUsingDisplayFilter(targetID, localRect, screenFrame, scale, std::move(completion));
}

void ScreenshotManager::completeCapture(const QImage &image, QSizeF logicalSize)
{
    m_saver.completeCapture(image, logicalSize);
}

void ScreenshotManager::playShutterSound() { m_saver.playShutterSound(); }
void ScreenshotManager::copyImageToClipboard(const QImage &image) { m_saver.copyImageToClipboard(image); }

std::optional<QString> ScreenshotManager::saveImage(const QImage &image)
{
    return m_saver.saveImage(image, m_saver.currentSaveSettings());
}

QString ScreenshotManager::makeFileName() const { return m_saver.makeFileName(m_saver.currentSaveSettings()); }

void ScreenshotManager::captureLastSelection() { m_repeat.captureLastSelection(); }

void ScreenshotManager::captureWindowUnderCursor()
{
    if (!m_state.isSelecting || m_state.isCapturing)
        return;
    const std::optional<CursorWindowSelection> selection = m_windowUnderCursor.makeWindowSelectionUnderCursor();
    if (!selection) {
        m_services.sounds.beep();
        m_services.diagnostics.write(u"window selection skipped: no target window under cursor"_s);
        return;
    }
    capture(selection->localRect, selection->overlayWindow);
}

std::optional<CursorWindowSelection> ScreenshotManager::makeWindowSelectionUnderCursor() const
{
    return m_windowUnderCursor.makeWindowSelectionUnderCursor();
}

std::optional<WindowUnderCursor::WindowInfo> ScreenshotManager::windowInfoUnderCursor(QPointF point) const
{
    return m_windowUnderCursor.windowInfoUnderCursor(point);
}
