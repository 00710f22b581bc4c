#include "capture/SelectionPointerRouter.h"

#include "capture/SelectionView.h"
#include "capture/SelectionWindowPool.h"
#include "platform/SelectionWindow.h"

void SelectionPointerRouter::route(const SelectionView &receiver, Kind kind, QPointF global, bool buttonHeld)
{
    // Input that reaches a window after the overlay closed (or that was never shown) is late: dropped.
    const int from = m_pool.indexOfView(&receiver);
    if (from < 0 || from >= m_pool.shownCount())
        return;
    int target = from;
    if (kind == Kind::Press) {
        target = windowAt(global, from);
        m_dragOwner = target;
    } else if (m_dragOwner && (buttonHeld || kind == Kind::Release)) {
        target = *m_dragOwner;
    } else {
        target = windowAt(global, from);
    }
    if (kind == Kind::Release)
        m_dragOwner.reset();

    const SelectionWindowPool::Entry &entry = m_pool.entries().at(size_t(target));
    if (!entry.view)
        return;
    SelectionView &view = *entry.view;
    const QPointF location = entry.window->convertPointFromScreen(global);
    switch (kind) {
    case Kind::Press: view.mouseDown(location); break;
    case Kind::Move:
        if (buttonHeld)
            view.mouseDragged(location);
        else
            view.mouseMoved(location);
        break;
    case Kind::Release: view.mouseUp(location); break;
    }
}

// The shown window whose frame holds the point; the receiver's first, since neighbouring frames share
// their edges. The receiver when none holds it (a gap between displays of different scales).
int SelectionPointerRouter::windowAt(QPointF global, int receiver) const
{
    if (holds(receiver, global))
        return receiver;
    for (int i = 0; i < m_pool.shownCount(); ++i) {
        if (holds(i, global))
            return i;
    }
    return receiver;
}

bool SelectionPointerRouter::holds(int index, QPointF global) const
{
    if (index >= m_pool.shownCount() || !m_pool.entries().at(size_t(index)).view)
        return false;
    const Rect frame = m_pool.entries().at(size_t(index)).window->frame();
    return global.x() >= frame.minX() && global.x() <= frame.maxX() && global.y() >= frame.minY()
        && global.y() <= frame.maxY();
}
