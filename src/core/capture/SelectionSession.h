#pragma once

#include "capture/SelectionViewDelegate.h"
#include "platform/DisplayProvider.h"

#include <QImage>
#include <QList>
#include <QMap>
#include <QString>

#include <functional>

class CaptureRequests;
class DisplayFreezer;
class PermissionGate;
struct CaptureServices;
struct CaptureState;

// The interactive selection from its start to the closing of the overlay: the permission check, the
// freezing of the displays, one overlay window per display, Escape, the pointer's visibility, and the
// reaction to display changes. It is its views' delegate: a cancel or the pointer's visibility is its
// own business, and what the user picked goes on to `captures`. Main thread.
class SelectionSession final : public SelectionViewDelegate
{
public:
    SelectionSession(CaptureState &state, const CaptureServices &services, PermissionGate &permission,
                     DisplayFreezer &freezer, CaptureRequests &captures);

    // Ignored while a selection or capture is under way.
    void startSelection();
    void captureFrozenDisplayImages(std::function<void()> completion);
    void showSelectionWindow();
    void installSelectionEscapeMonitorIfNeeded();
    void removeSelectionEscapeMonitorIfNeeded();
    void closeSelectionWindows(bool keepFrozenImages, bool restoreCursor);
    void cancelSelection() override;

    void capture(const Rect &rect, SelectionWindow *window) override;
    void captureWindowUnderCursor() override;
    void selectionCursorDidHide() override;
    void selectionCursorDidRestore() override;
    // Every view shows the pointer again, and any hide still owed is balanced.
    void restoreSelectionCursorIfNeeded();

    void screenParametersDidChange();
    QString currentDisplayLayoutDescription() const;
    static QString layoutDescription(const QList<DisplayInfo> &screens);

private:
    void readLiveBackgrounds(std::function<void()> completion);
    void presentWindow(int index, const DisplayInfo &screen);

    CaptureState &m_state;
    const CaptureServices &m_services;
    PermissionGate &m_permission;
    DisplayFreezer &m_freezer;
    CaptureRequests &m_captures;
    // What the displays whose freeze failed showed just before the overlay, until it is shown.
    QMap<quint32, QImage> m_liveBackgrounds;
};
