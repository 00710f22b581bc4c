#include "SelectionOverlayRouter.h"

#include "SelectionOverlayWidget.h"

#include "capture/SelectionView.h"

void SelectionOverlayRouter::add(SelectionOverlayWidget *widget)
{
    m_widgets.append(widget);
}

void SelectionOverlayRouter::remove(SelectionOverlayWidget *widget)
{
    m_widgets.removeAll(widget);
}

void SelectionOverlayRouter::route(SelectionOverlayWidget &receiver, Kind kind, QPointF logical, bool buttonHeld)
{
    SelectionOverlayWidget *target = nullptr;
    if (kind == Kind::Press) {
        target = widgetAt(logical, receiver);
        m_dragOwner = target;
    } else if (m_dragOwner && (buttonHeld || kind == Kind::Release)) {
        target = m_dragOwner;
    } else {
        target = widgetAt(logical, receiver);
    }
    if (kind == Kind::Release)
        m_dragOwner.clear();

    SelectionView *view = target->view();
    if (!view)
        return;
    const QPointF location = target->viewPointFromLogical(logical);
    switch (kind) {
    case Kind::Press: view->mouseDown(location); break;
    case Kind::Move:
        if (buttonHeld)
            view->mouseDragged(location);
        else
            view->mouseMoved(location);
        break;
    case Kind::Release: view->mouseUp(location); break;
    }
}

SelectionOverlayWidget *SelectionOverlayRouter::widgetAt(QPointF logical, SelectionOverlayWidget &fallback) const
{
    for (SelectionOverlayWidget *widget : m_widgets) {
        if (widget->isVisible() && QRectF(widget->geometry()).contains(logical))
            return widget;
    }
    return &fallback;
}
