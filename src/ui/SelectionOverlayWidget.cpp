#include "SelectionOverlayWidget.h"

#include "MacKeyCodes.h"

#include "capture/SelectionView.h"
#include "platform/SelectionWindow.h"

#include <QBackingStore>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

SelectionOverlayWidget::SelectionOverlayWidget()
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                           | Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint)
{
    // The view paints every pixel; Qt need not clear the window first.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

void SelectionOverlayWidget::setView(SelectionView *view)
{
    m_view = view;
    if (m_view)
        setFocus(Qt::OtherFocusReason);
    setNeedsDisplay();
}

void SelectionOverlayWidget::setNeedsDisplay()
{
    m_needsDisplay = true;
    update();
}

void SelectionOverlayWidget::setNeedsDisplayInRect(const QRectF &viewRect)
{
    update(QRectF(viewRect.x(), height() - viewRect.y() - viewRect.height(), viewRect.width(), viewRect.height())
               .toAlignedRect());
}

void SelectionOverlayWidget::displayIfNeeded()
{
    if (m_needsDisplay && isVisible())
        repaint();
}

void SelectionOverlayWidget::prepareHidden()
{
    if (isVisible())
        return;
    winId();
    if (QBackingStore *store = backingStore()) {
        const QRect all(QPoint(), size());
        store->resize(size());
        store->beginPaint(all);
        // Touching every pixel once maps the buffer's pages in now rather than during the first paint.
        if (QPaintDevice *device = store->paintDevice()) {
            QPainter painter(device);
            painter.fillRect(all, Qt::black);
        }
        store->endPaint();
    }
}

void SelectionOverlayWidget::paintEvent(QPaintEvent *)
{
    m_needsDisplay = false;
    QPainter painter(this);
    if (!m_view || m_view->frozenBackgroundImage().isNull()) {
        // No frozen image (its grab failed): without a compositor the window cannot show the desktop
        // through, so the dimming goes over black.
        painter.fillRect(rect(), Qt::black);
    }
    if (!m_view)
        return;
    painter.translate(0, height());
    painter.scale(1, -1);
    m_view->draw(painter);
}

void SelectionOverlayWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        route(SelectionPointerRouter::Kind::Press, event->position(), true);
}

void SelectionOverlayWidget::mouseMoveEvent(QMouseEvent *event)
{
    route(SelectionPointerRouter::Kind::Move, event->position(), event->buttons().testFlag(Qt::LeftButton));
}

void SelectionOverlayWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        route(SelectionPointerRouter::Kind::Release, event->position(), false);
}

// The pointer's one conversion: from the widget (top-left origin, y down) to the global space, through
// the frame of the window that shows the view, which covers exactly this widget.
void SelectionOverlayWidget::route(SelectionPointerRouter::Kind kind, QPointF local, bool buttonHeld)
{
    if (!m_router || !m_view || !m_view->window())
        return;
    const Rect frame = m_view->window()->frame();
    m_router->route(*m_view, kind, QPointF(frame.minX() + local.x(), frame.maxY() - local.y()), buttonHeld);
}

void SelectionOverlayWidget::keyPressEvent(QKeyEvent *event)
{
    const std::optional<int> code = mackeycodes::fromQtKey(event->key());
    if (m_view && code && m_view->keyDown(*code))
        return;
    QWidget::keyPressEvent(event);
}
