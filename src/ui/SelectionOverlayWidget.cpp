#include "SelectionOverlayWidget.h"

#include "MacKeyCodes.h"

#include "DirectWindowPainter.h"

#include "capture/SelectionDamage.h"
#include "capture/SelectionPainting.h"
#include "capture/SelectionView.h"
#include "platform/SelectionWindow.h"

#include <QBackingStore>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWindow>

namespace {

QRect toDevice(const QRect &rect, qreal ratio)
{
    return QRectF(QPointF(rect.topLeft()) * ratio, QSizeF(rect.size()) * ratio).toAlignedRect();
}

QRegion toDevice(const QRegion &region, qreal ratio)
{
    QRegion device;
    for (const QRect &rect : region)
        device |= toDevice(rect, ratio);
    return device;
}

} // namespace

SelectionOverlayWidget::SelectionOverlayWidget(DirectWindowPainter *painter)
    : QWidget(nullptr, Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                           | Qt::X11BypassWindowManagerHint | Qt::NoDropShadowWindowHint),
      m_painter(painter)
{
    if (m_painter)
        setAttribute(Qt::WA_PaintOnScreen);
    // The view paints every pixel; Qt need not clear the window first.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

SelectionOverlayWidget::~SelectionOverlayWidget()
{
    if (m_watchesLosses)
        m_painter->watchLosses(*windowHandle(), {});
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
    m_stale = rect();
    update();
}

void SelectionOverlayWidget::setNeedsDisplayInRect(const QRectF &viewRect)
{
    const QRect changed = QRectF(viewRect.x(), height() - viewRect.y() - viewRect.height(), viewRect.width(),
                                 viewRect.height())
                              .toAlignedRect();
    m_stale |= changed;
    update(changed);
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
    if (m_painter)
        return;
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

void SelectionOverlayWidget::showEvent(QShowEvent *event)
{
    m_stale = rect();
    if (m_painter && !m_watchesLosses) {
        m_painter->watchLosses(*windowHandle(), [this](const QRegion &lost) {
            const qreal ratio = devicePixelRatioF();
            for (const QRect &rect : lost)
                m_stale |= QRectF(QPointF(rect.topLeft()) / ratio, QSizeF(rect.size()) / ratio).toAlignedRect();
            update();
        });
        m_watchesLosses = true;
    }
    QWidget::showEvent(event);
}

void SelectionOverlayWidget::resizeEvent(QResizeEvent *event)
{
    m_stale = rect();
    QWidget::resizeEvent(event);
}

QPaintEngine *SelectionOverlayWidget::paintEngine() const
{
    // None: every paint goes through the direct painter.
    return m_painter ? nullptr : QWidget::paintEngine();
}

void SelectionOverlayWidget::paintEvent(QPaintEvent *event)
{
    m_needsDisplay = false;
    if (m_painter) {
        paintDirectly(event->region());
        return;
    }
    QPainter painter(this);
    paintContent(painter);
}

void SelectionOverlayWidget::paintDirectly(const QRegion &region)
{
    QWindow *window = windowHandle();
    if (!window || !window->isExposed())
        return;
    const QRegion stale = region & m_stale;
    m_stale -= stale;
    const qreal ratio = devicePixelRatioF();
    QRegion painted = stale;
    const QImage frame = m_view ? m_view->frozenBackgroundImage() : QImage();
    if (frame.size() == toDevice(rect(), ratio).size() && m_painter->canDrawFrame(*window, frame)) {
        const QRegion plain = stale - decoratedArea();
        m_painter->drawFrame(*window, frame, toDevice(plain, ratio), selectionpainting::dimmingColor);
        painted -= plain;
    }
    // After the frame, so the decorations' pixels land over whatever edge pixel both round to.
    for (const QRect &rect : painted) {
        const QRect device = toDevice(rect, ratio);
        QImage pixels(device.size(), QImage::Format_RGB32);
        pixels.setDevicePixelRatio(ratio);
        {
            QPainter painter(&pixels);
            painter.translate(-QPointF(device.topLeft()) / ratio);
            paintContent(painter);
        }
        m_painter->putPixels(*window, pixels, device.topLeft());
    }
}

QRegion SelectionOverlayWidget::decoratedArea() const
{
    QRegion area;
    if (!m_view)
        return area;
    for (const Rect &drawn : selectiondamage::changedAreas({}, m_view->decorations(), m_view->bounds())) {
        area |= QRectF(drawn.minX(), height() - drawn.maxY(), drawn.width(), drawn.height()).toAlignedRect();
    }
    return area;
}

void SelectionOverlayWidget::paintContent(QPainter &painter)
{
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
