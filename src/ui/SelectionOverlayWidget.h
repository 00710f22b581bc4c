#pragma once

#include "capture/SelectionPointerRouter.h"

#include <QWidget>

class DirectWindowPainter;
class SelectionView;

// The widget of one overlay window: frameless, above everything and outside the window manager's
// reach, covering one display. It paints the core's selection view (which draws the frozen image, the
// dimming, the selection and the crosshair in one pass), hands key input to it, and pointer input to
// the core's router in the global space, which keeps a drag with the view it started in. Pointer moves
// repaint only what the view reports as changed.
//
// Given a direct painter (X11), it paints without Qt's backing store: the window system lays the
// frozen screen it still holds into the window, and only what is drawn over it is painted here and put
// in as pixels, so showing a 4K overlay costs no full-display paint or copy on our side, and no frame
// of pixels stays with the hidden window. Main thread.
class SelectionOverlayWidget final : public QWidget
{
public:
    explicit SelectionOverlayWidget(DirectWindowPainter *painter = nullptr);
    ~SelectionOverlayWidget() override;

    void setView(SelectionView *view);
    SelectionView *view() const { return m_view; }
    void setPointerRouter(SelectionPointerRouter *router) { m_router = router; }

    void setNeedsDisplay();
    // A rectangle of the view (its coordinates: bottom-left origin, y upwards).
    void setNeedsDisplayInRect(const QRectF &viewRect);
    void displayIfNeeded();
    // While hidden: makes the native window and, painting through Qt's backing store, fills a pixel
    // buffer of the window's size, which the first showing would otherwise wait for.
    void prepareHidden();

    QPaintEngine *paintEngine() const override;

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void paintContent(QPainter &painter);
    void paintDirectly(const QRegion &region);
    // Where the view draws over the dimmed frozen image, in this widget's coordinates.
    QRegion decoratedArea() const;
    void route(SelectionPointerRouter::Kind kind, QPointF local, bool buttonHeld);

    DirectWindowPainter *m_painter;
    SelectionPointerRouter *m_router = nullptr;
    SelectionView *m_view = nullptr;
    bool m_needsDisplay = true;
    // Painting directly: what the window does not show right yet. The server keeps a shown window's
    // pixels, so Qt's repeated paint requests around showing draw nothing more once it is all drawn.
    QRegion m_stale;
    bool m_watchesLosses = false;
};
