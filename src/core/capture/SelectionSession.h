#pragma once

#include "platform/DisplayProvider.h"

#include <QList>
#include <QString>

#include <functional>

class DisplayFreezer;
class PermissionGate;
class SelectionViewDelegate;
struct CaptureServices;
struct CaptureState;

// The interactive selection from its start to the closing of the overlay: the permission check, the
// freezing of the displays, one overlay window per display, Escape, the pointer's visibility, and the
// reaction to display changes. Main thread.
class SelectionSession final
{
public:
    SelectionSession(CaptureState &state, const CaptureServices &services, PermissionGate &permission,
                     DisplayFreezer &freezer, SelectionViewDelegate &viewDelegate);

    // Ignored while a selection or capture is under way.
    void startSelection();
    void captureFrozenDisplayImages(std::function<void()> completion);
    void showSelectionWindow();
    void installSelectionEscapeMonitorIfNeeded();
    void removeSelectionEscapeMonitorIfNeeded();
    void closeSelectionWindows(bool keepFrozenImages, bool restoreCursor);
    void cancelSelection();

    void selectionCursorDidHide();
    void selectionCursorDidRestore();
    // Every view shows the pointer again, and any hide still owed is balanced.
    void restoreSelectionCursorIfNeeded();

    void screenParametersDidChange();
    QString currentDisplayLayoutDescription() const;
    static QString layoutDescription(const QList<DisplayInfo> &screens);

private:
    void beginSelection();
    void presentWindow(int index, const DisplayInfo &screen);

    CaptureState &m_state;
    const CaptureServices &m_services;
    PermissionGate &m_permission;
    DisplayFreezer &m_freezer;
    SelectionViewDelegate &m_viewDelegate;
};
