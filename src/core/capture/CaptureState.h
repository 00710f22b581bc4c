#pragma once

#include "capture/CaptureRecords.h"
#include "capture/SelectionWindowPool.h"
#include "platform/KeyEventMonitor.h"

#include <QMap>

#include <optional>

class AppSettings;

// The capture controller's state, shared by its parts. Main thread only.
//
// Idle: no phase. Preparing: from an accepted start until the overlay shows (or permission is refused).
// Selecting: the overlay is up. Capturing: from a capture request until its image is handled or it is
// abandoned. Capturing overlaps Selecting from the request until the overlay is closed, or until a
// request abandoned with the overlay still up ends. The phases change only through the operations below.
struct CaptureState
{
    CaptureState(AppSettings &appSettings, SelectionWindowFactory &windowFactory)
        : settings(appSettings), selectionWindows(windowFactory)
    {
    }

    bool isPreparingSelection() const { return m_isPreparingSelection; }
    bool isSelecting() const { return m_isSelecting; }
    bool isCapturing() const { return m_isCapturing; }
    bool isBusy() const { return m_isSelecting || m_isCapturing || m_isPreparingSelection; }

    void beginPreparing() { m_isPreparingSelection = true; }
    // Permission refused, or the overlay closed before it showed.
    void cancelPreparing() { m_isPreparingSelection = false; }
    void beginSelecting()
    {
        m_isPreparingSelection = false;
        m_isSelecting = true;
    }
    void endSelecting()
    {
        m_isPreparingSelection = false;
        m_isSelecting = false;
    }
    void beginCapturing()
    {
        m_isPreparingSelection = false;
        m_isCapturing = true;
    }
    void endCapturing() { m_isCapturing = false; }

    // A view hid the pointer and the hide has not been balanced yet.
    bool didHideSelectionCursor() const { return m_didHideSelectionCursor; }
    void setSelectionCursorHidden(bool hidden) { m_didHideSelectionCursor = hidden; }

    AppSettings &settings;
    // Freezing is not a user setting; the live-only branch is kept working all the same.
    bool useFrozenBackground = true;
    SelectionWindowPool selectionWindows;
    std::optional<KeyEventMonitor::Handle> selectionEscapeMonitor;
    QMap<quint32, FrozenDisplaySnapshot> frozenDisplaySnapshots;
    std::optional<LastSelectionRegion> lastSelectionRegion;

private:
    bool m_isSelecting = false;
    bool m_isCapturing = false;
    bool m_isPreparingSelection = false;
    bool m_didHideSelectionCursor = false;
};
