#pragma once

#include <QList>
#include <QPointF>
#include <QPointer>

class SelectionOverlayWidget;

// Pointer input across the overlay windows. A drag belongs to the view it started in until the button
// is released, wherever the pointer goes (the view clamps it to its display); moves without a button go
// to the window under the pointer. Positions are in Qt's logical space. Main thread.
class SelectionOverlayRouter final
{
public:
    enum class Kind { Press, Move, Release };

    void add(SelectionOverlayWidget *widget);
    void remove(SelectionOverlayWidget *widget);

    // `receiver` got the event; `logical` is where it happened.
    void route(SelectionOverlayWidget &receiver, Kind kind, QPointF logical, bool buttonHeld);

private:
    SelectionOverlayWidget *widgetAt(QPointF logical, SelectionOverlayWidget &fallback) const;

    QList<SelectionOverlayWidget *> m_widgets;
    QPointer<SelectionOverlayWidget> m_dragOwner;
};
