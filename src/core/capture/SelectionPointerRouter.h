#pragma once

#include <QPointF>

#include <optional>

class SelectionView;
class SelectionWindowPool;

// Pointer input over the overlay windows, in the global space (bottom-left origin, y upwards, points),
// so it holds for any layout of displays and any window system. A drag belongs to the window it started
// in until the button is released, wherever the pointer goes, and that window's view clamps it to its
// display; every other event goes to the shown window under the pointer. The windows hand their
// pointer events here, and the router hands each on to one view in that view's coordinates. Part of the
// window pool; main thread only.
class SelectionPointerRouter final
{
public:
    enum class Kind { Press, Move, Release };

    explicit SelectionPointerRouter(const SelectionWindowPool &pool) : m_pool(pool) {}

    // `receiver` is the view of the window the event reached; `buttonHeld` tells a drag from a move.
    // Events at windows not shown now are dropped.
    void route(const SelectionView &receiver, Kind kind, QPointF global, bool buttonHeld);
    // Forgets a drag in progress: the windows were shown again or closed.
    void reset() { m_dragOwner.reset(); }

private:
    int windowAt(QPointF global, int receiver) const;
    bool holds(int index, QPointF global) const;

    const SelectionWindowPool &m_pool;
    std::optional<int> m_dragOwner;
};
