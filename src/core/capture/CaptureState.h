#pragma once

#include "capture/CaptureRecords.h"
#include "capture/SelectionWindowPool.h"
#include "platform/KeyEventMonitor.h"

#include <QMap>

#include <optional>

class AppSettings;

// The capture controller's state, shared by its parts. Main thread only.
//
// Idle: every flag false. Preparing: from an accepted start until the overlay shows (or permission is
// refused). Selecting: the overlay is up. Capturing: from a capture request until its image is handled
// or it is abandoned; it overlaps Selecting only while the overlay is being closed.
struct CaptureState
{
    CaptureState(AppSettings &appSettings, SelectionWindowFactory &windowFactory)
        : settings(appSettings), selectionWindows(windowFactory)
    {
    }

    AppSettings &settings;
    // Freezing is not a user setting; the live-only branch is kept working all the same.
    bool useFrozenBackground = true;
    SelectionWindowPool selectionWindows;
    bool isSelecting = false;
    bool isCapturing = false;
    bool isPreparingSelection = false;
    std::optional<KeyEventMonitor::Handle> selectionEscapeMonitor;
    QMap<quint32, FrozenDisplaySnapshot> frozenDisplaySnapshots;
    std::optional<LastSelectionRegion> lastSelectionRegion;
    // A view hid the pointer and the hide has not been balanced yet.
    bool didHideSelectionCursor = false;

    bool isBusy() const { return isSelecting || isCapturing || isPreparingSelection; }
};
