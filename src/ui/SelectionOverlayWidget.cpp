#include "SelectionOverlayWidget.h"

#include "MacKeyCodes.h"
#include "SelectionOverlayRouter.h"

#include "capture/SelectionView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

SelectionOverlayWidget::SelectionOverlayWidget(SelectionOverlayRouter &router)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                           | Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint),
      m_router(router)
{
    // The view paints every pixel; Qt need not clear the window first.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    m_router.add(this);
}

SelectionOverlayWidget::~SelectionOverlayWidget()
{
    m_router.remove(this);
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

QPointF SelectionOverlayWidget::viewPointFromLogical(QPointF logical) const
{
    const QPointF local = logical - QPointF(geometry().topLeft());
    return QPointF(local.x(), height() - local.y());
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
    if (event->button() != Qt::LeftButton)
        return;
    m_router.route(*this, SelectionOverlayRouter::Kind::Press, geometry().topLeft() + event->position(), true);
}

void SelectionOverlayWidget::mouseMoveEvent(QMouseEvent *event)
{
    m_router.route(*this, SelectionOverlayRouter::Kind::Move, geometry().topLeft() + event->position(),
                   event->buttons().testFlag(Qt::LeftButton));
}

void SelectionOverlayWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_router.route(*this, SelectionOverlayRouter::Kind::Release, geometry().topLeft() + event->position(), false);
}

void SelectionOverlayWidget::keyPressEvent(QKeyEvent *event)
{
    const std::optional<int> code = mackeycodes::fromQtKey(event->key());
    if (m_view && code && m_view->keyDown(*code))
        return;
    QWidget::keyPressEvent(event);
}
