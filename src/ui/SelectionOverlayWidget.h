#pragma once

#include <QWidget>

class SelectionOverlayRouter;
class SelectionView;

// The widget of one overlay window: frameless, above everything and outside the window manager's
// reach, covering one display. It paints the core's selection view (which draws the frozen image, the
// dimming, the selection and the crosshair in one pass) and hands pointer and key input to it through
// the router, which keeps a drag with the view it started in. Pointer moves repaint only what the view
// reports as changed. Main thread.
class SelectionOverlayWidget final : public QWidget
{
public:
    explicit SelectionOverlayWidget(SelectionOverlayRouter &router);
    ~SelectionOverlayWidget() override;

    void setView(SelectionView *view);
    SelectionView *view() const { return m_view; }

    void setNeedsDisplay();
    // A rectangle of the view (its coordinates: bottom-left origin, y upwards).
    void setNeedsDisplayInRect(const QRectF &viewRect);
    void displayIfNeeded();

    // From Qt's logical space (y down) to the view's space (bottom-left origin, y up).
    QPointF viewPointFromLogical(QPointF logical) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    SelectionOverlayRouter &m_router;
    SelectionView *m_view = nullptr;
    bool m_needsDisplay = true;
};
