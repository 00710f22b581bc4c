#include "capture/SelectionSession.h"

#include "platform/DiagnosticsLog.h"
#include "capture/CaptureGeometry.h"
#include "capture/CaptureRequests.h"
#include "capture/CaptureServices.h"
#include "capture/CaptureState.h"
#include "capture/DisplayFreezer.h"
#include "capture/PermissionGate.h"
#include "capture/SelectionView.h"
#include "geometry/TraceFormat.h"
#include "platform/Cursor.h"
#include "platform/KeyEventMonitor.h"
#include "platform/SelectionWindow.h"

#include <QStringList>

using namespace Qt::StringLiterals;

SelectionSession::SelectionSession(CaptureState &state, const CaptureServices &services, PermissionGate &permission,
                                   DisplayFreezer &freezer, CaptureRequests &captures)
    : m_state(state), m_services(services), m_permission(permission), m_freezer(freezer), m_captures(captures)
{
}

void SelectionSession::startSelection()
{
    if (m_state.isBusy())
        return;
    m_state.beginPreparing();
    m_services.diagnostics.write(u"startSelection accepted"_s);
    m_permission.ensureScreenCapturePermission([this](bool granted) {
        if (!granted) {
            m_state.cancelPreparing();
            m_permission.showPermissionAlert();
            return;
        }
        if (!m_state.useFrozenBackground) {
            m_state.frozenDisplaySnapshots.clear();
            showSelectionWindow();
            return;
        }
        captureFrozenDisplayImages([this] { readLiveBackgrounds([this] { showSelectionWindow(); }); });
    });
}

void SelectionSession::readLiveBackgrounds(std::function<void()> completion)
{
    // Without a compositor an overlay cannot let the desktop show through, so a display without a
    // frozen image gets what it shows now as its background; it is still captured live.
    QList<FrozenCaptureTarget> unfrozen;
    for (const DisplayInfo &screen : m_services.displays.screens()) {
        if (screen.id && !m_state.frozenDisplaySnapshots.contains(*screen.id))
            unfrozen.append({*screen.id, screen.frame, screen.backingScale});
    }
    m_freezer.captureLiveImages(unfrozen, [this, completion = std::move(completion)](DisplayFreezer::Snapshots live) {
        m_liveBackgrounds.clear();
        for (auto it = live.cbegin(); it != live.cend(); ++it)
            m_liveBackgrounds.insert(it.key(), it->image);
        completion();
    });
}

void SelectionSession::captureFrozenDisplayImages(std::function<void()> completion)
{
    m_state.frozenDisplaySnapshots.clear();
    m_freezer.captureFrozenDisplayImages(
        [this, completion = std::move(completion)](DisplayFreezer::Snapshots snapshots) {
            m_state.frozenDisplaySnapshots = std::move(snapshots);
            completion();
        });
}

void SelectionSession::showSelectionWindow()
{
    m_state.beginSelecting();
    installSelectionEscapeMonitorIfNeeded();

    const QList<DisplayInfo> screens = m_services.displays.screens();
    m_services.diagnostics.write(u"showSelectionWindow screens="_s % QString::number(screens.size())
                                 % u" layout="_s % layoutDescription(screens));
    if (screens.isEmpty()) {
        // Nothing to select on, and no window that could take the Escape: end the session at once so
        // that the next request is not refused as busy.
        cancelSelection();
        return;
    }
    SelectionWindowPool &pool = m_state.selectionWindows;
    pool.growTo(int(screens.size()));
    for (int i = 0; i < screens.size(); ++i)
        presentWindow(i, screens.at(i));
    for (int i = int(screens.size()); i < pool.size(); ++i)
        pool.at(i).window->orderOut();
    pool.setShownCount(int(screens.size()));
    m_liveBackgrounds.clear();
}

void SelectionSession::presentWindow(int index, const DisplayInfo &screen)
{
    SelectionWindowPool &pool = m_state.selectionWindows;
    SelectionWindow &window = *pool.at(index).window;
    window.setFrame(screen.frame);

    const Rect viewFrame = capturegeometry::localBounds(screen.frame);
    if (SelectionView *view = pool.at(index).view.get()) {
        view->setFrame(viewFrame);
        view->setDelegate(this);
    } else {
        pool.setView(index, std::make_unique<SelectionView>(viewFrame, this, m_services.cursor,
                                                            m_services.displays));
    }
    SelectionView &view = *pool.at(index).view;

    const FrozenDisplaySnapshot *snapshot = nullptr;
    if (m_state.useFrozenBackground && screen.id) {
        const auto found = m_state.frozenDisplaySnapshots.constFind(*screen.id);
        if (found != m_state.frozenDisplaySnapshots.constEnd())
            snapshot = &*found;
    }
    view.setFrozenBackgroundImage(snapshot ? snapshot->image
                                  : screen.id ? m_liveBackgrounds.value(*screen.id) : QImage());
    view.resetForPresentation();

    QString line = u"selection window display="_s % trace::displayID(screen.id) % u" frame="_s
        % trace::rect(screen.frame);
    if (screen.id) {
        line += snapshot ? u" frozen=%1x%2"_s.arg(snapshot->image.width()).arg(snapshot->image.height())
                         : u" frozen=nil"_s;
    }
    m_services.diagnostics.write(line);

    window.displayIfNeeded();
    if (index == 0)
        window.makeKeyAndOrderFront();
    else
        window.orderFront();
}

void SelectionSession::installSelectionEscapeMonitorIfNeeded()
{
    if (m_state.selectionEscapeMonitor)
        return;
    m_state.selectionEscapeMonitor = m_services.keyMonitor.addLocalKeyDownMonitor([this](int keyCode) {
        if (!m_state.isSelecting() || keyCode != SelectionView::escapeKeyCode)
            return false;
        cancelSelection();
        return true;
    });
}

void SelectionSession::removeSelectionEscapeMonitorIfNeeded()
{
    if (!m_state.selectionEscapeMonitor)
        return;
    m_services.keyMonitor.removeMonitor(*m_state.selectionEscapeMonitor);
    m_state.selectionEscapeMonitor.reset();
}

void SelectionSession::closeSelectionWindows(bool keepFrozenImages, bool restoreCursor)
{
    removeSelectionEscapeMonitorIfNeeded();
    for (const SelectionWindowPool::Entry &entry : m_state.selectionWindows.entries()) {
        if (entry.view) {
            entry.view->resetInteractionState(restoreCursor);
            // A hidden view shows nothing; a full-display image held until the next session would
            // only keep its memory (a capture crops from the snapshots, which stay as asked).
            entry.view->setFrozenBackgroundImage(QImage());
        }
        entry.window->orderOut();
    }
    m_state.selectionWindows.setShownCount(0);
    if (!keepFrozenImages)
        m_state.frozenDisplaySnapshots.clear();
    m_state.endSelecting();
}

void SelectionSession::cancelSelection()
{
    closeSelectionWindows(false, true);
}

void SelectionSession::capture(const Rect &rect, SelectionWindow *window)
{
    m_captures.capture(rect, window);
}

void SelectionSession::captureWindowUnderCursor()
{
    m_captures.captureWindowUnderCursor();
}

void SelectionSession::selectionCursorDidHide()
{
    m_state.setSelectionCursorHidden(true);
}

void SelectionSession::selectionCursorDidRestore()
{
    m_state.setSelectionCursorHidden(false);
}

void SelectionSession::restoreSelectionCursorIfNeeded()
{
    for (const SelectionWindowPool::Entry &entry : m_state.selectionWindows.entries()) {
        if (entry.view)
            entry.view->restoreCursorIfNeeded();
    }
    if (m_state.didHideSelectionCursor()) {
        m_services.cursor.unhide();
        m_state.setSelectionCursorHidden(false);
    }
}

void SelectionSession::screenParametersDidChange()
{
    m_services.diagnostics.write(u"screen parameters changed: "_s % currentDisplayLayoutDescription());
    if (!m_state.lastSelectionRegion)
        return;
    const quint32 id = m_state.lastSelectionRegion->displayID;
    for (const DisplayInfo &screen : m_services.displays.screens()) {
        if (screen.id == id)
            return;
    }
    m_state.lastSelectionRegion.reset();
    m_services.diagnostics.write(u"repeat region discarded: display="_s % QString::number(id) % u" disconnected"_s);
}

QString SelectionSession::currentDisplayLayoutDescription() const
{
    return layoutDescription(m_services.displays.screens());
}

QString SelectionSession::layoutDescription(const QList<DisplayInfo> &screens)
{
    QStringList entries;
    for (const DisplayInfo &screen : screens) {
        entries.append(u"[id="_s % trace::displayID(screen.id) % u" frame="_s % trace::rect(screen.frame)
                       % u" scale="_s % trace::number(screen.backingScale) % u']');
    }
    return entries.join(u' ');
}
