#pragma once

#include "capture/SelectionPointerRouter.h"

#include <QWidget>

class SelectionView;

// The widget of one overlay window: frameless, above everything and outside the window manager's
// reach, covering one display. It paints the core's selection view (which draws the frozen image, the
// dimming, the selection and the crosshair in one pass), hands key input to it, and pointer input to
// the core's router in the global space, which keeps a drag with the view it started in. Pointer moves
// repaint only what the view reports as changed. Main thread.
class SelectionOverlayWidget final : public QWidget
{
public:
    SelectionOverlayWidget();

    void setView(SelectionView *view);
    SelectionView *view() const { return m_view; }
    void setPointerRouter(SelectionPointerRouter *router) { m_router = router; }

    void setNeedsDisplay();
    // A rectangle of the view (its coordinates: bottom-left origin, y upwards).
    void setNeedsDisplayInRect(const QRectF &viewRect);
    void displayIfNeeded();
    // While hidden: makes the native window and fills a pixel buffer of the window's size, which the
    // first showing would otherwise wait for.
    void prepareHidden();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void route(SelectionPointerRouter::Kind kind, QPointF local, bool buttonHeld);

    SelectionPointerRouter *m_router = nullptr;
    SelectionView *m_view = nullptr;
    bool m_needsDisplay = true;
};
