#pragma once

#include "capture/CaptureAttempts.h"
#include "capture/CaptureCommands.h"
#include "capture/CaptureExecution.h"
#include "capture/CaptureSaver.h"
#include "capture/CaptureServices.h"
#include "capture/CaptureState.h"
#include "capture/DisplayFreezer.h"
#include "capture/PermissionGate.h"
#include "capture/RepeatCapture.h"
#include "capture/SelectionSession.h"
#include "capture/SelectionViewDelegate.h"
#include "capture/WindowUnderCursor.h"

#include <QImage>
#include <QPointF>
#include <QSizeF>
#include <QString>

#include <functional>
#include <optional>

class EditorHandOff;

// The one capture controller: the interactive selection over every display, the capture of the chosen
// region, its saving, the repeat capture of the last region and the capture of the window under the
// pointer. It holds the state (CaptureState) and delegates each concern to a part of its own; the
// operations below are the ones the shell, the selection views and the editor use. Main thread only;
// work started elsewhere (capture services, permission requests, file writing) posts back to it.
class ScreenshotManager final : public CaptureCommands, public SelectionViewDelegate
{
public:
    // Built in app/SharedInstances.cpp.
    static ScreenshotManager &shared();

    explicit ScreenshotManager(const CaptureServices &services);
    ~ScreenshotManager() override;

    ScreenshotManager(const ScreenshotManager &) = delete;
    ScreenshotManager &operator=(const ScreenshotManager &) = delete;

    // Where saved captures are offered for editing; null until the editor is set up.
    void setEditorHandOff(EditorHandOff *handOff) { m_saver.setEditorHandOff(handOff); }
    // On in the application; off shows the overlay over the live screen and captures live only.
    void setUseFrozenBackground(bool on) { m_state.useFrozenBackground = on; }

    const CaptureState &state() const { return m_state; }

    // Selection session.
    void startSelection() override;
    void ensureScreenCapturePermission(std::function<void(bool granted)> completion);
    void showPermissionAlert();
    void captureFrozenDisplayImages(std::function<void()> completion);
    void showSelectionWindow();
    void installSelectionEscapeMonitorIfNeeded();
    void removeSelectionEscapeMonitorIfNeeded();
    void closeSelectionWindows(bool keepFrozenImages, bool restoreCursor);
    void cancelSelection() override;
    void selectionCursorDidHide() override;
    void selectionCursorDidRestore() override;
    void restoreSelectionCursorIfNeeded();
    void screenParametersDidChange();
    QString currentDisplayLayoutDescription() const;

    // Capture.
    void capture(const Rect &rect, SelectionWindow *window) override;
    void performCaptureAttempts(std::optional<quint32> targetDisplayID, const Rect &localRect,
                                const Rect &screenFrame, double scale, const QString &logPrefix,
                                std::function<void(QImage image)> completion);
    void captureUsingDisplayFilter(quint32 targetID, const Rect &localRect, const Rect &screenFrame, double scale,
                                   CaptureAttempts::ImageCompletion completion);

    // Saving.
    void completeCapture(const QImage &image, QSizeF logicalSize);
    void playShutterSound();
    void copyImageToClipboard(const QImage &image);
    // Reads the settings now; may then run on any thread.
    std::optional<QString> saveImage(const QImage &image);
    QString makeFileName() const;

    // Repeat capture.
    void captureLastSelection() override;

    // Window under the pointer.
    void captureWindowUnderCursor() override;
    std::optional<CursorWindowSelection> makeWindowSelectionUnderCursor() const;
    std::optional<WindowUnderCursor::WindowInfo> windowInfoUnderCursor(QPointF point) const;

private:
    CaptureServices m_services;
    CaptureState m_state;
    PermissionGate m_permission;
    CaptureAttempts m_attempts;
    DisplayFreezer m_freezer;
    CaptureSaver m_saver;
    SelectionSession m_session;
    CaptureExecution m_execution;
    RepeatCapture m_repeat;
    WindowUnderCursor m_windowUnderCursor;
};
