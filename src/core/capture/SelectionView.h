#pragma once

#include "capture/CaptureGeometry.h"
#include "capture/SelectionDamage.h"
#include "geometry/Rect.h"

#include <QImage>
#include <QPointF>

#include <optional>

class Cursor;
class DisplayProvider;
class QPainter;
class SelectionViewDelegate;
class SelectionWindow;

// The content of one selection window: shows the display's frozen image dimmed, the rectangle being
// dragged with its size in pixels, and a crosshair at the pointer, and turns mouse and key input into
// calls on its delegate (the capture controller).
//
// The window that hosts it converts input to the view's coordinates (origin bottom-left, y upwards, in
// points; the view fills its display) and forwards it, and paints through draw(). Main thread only.
class SelectionView final
{
public:
    static constexpr int escapeKeyCode = 53;
    static constexpr int spaceKeyCode = 49;
    static constexpr double sizeLabelGap = 8;

    SelectionView(const Rect &frame, SelectionViewDelegate *delegate, Cursor &cursor,
                  const DisplayProvider &displays);
    ~SelectionView();

    SelectionView(const SelectionView &) = delete;
    SelectionView &operator=(const SelectionView &) = delete;

    Rect frame() const { return m_frame; }
    void setFrame(const Rect &frame);
    Rect bounds() const;
    void setDelegate(SelectionViewDelegate *delegate) { m_delegate = delegate; }
    // Null for none: the live desktop shows through the transparent window.
    void setFrozenBackgroundImage(const QImage &image);
    const QImage &frozenBackgroundImage() const { return m_frozenBackgroundImage; }

    // The hosting window; leaving a window (null) shows the pointer again if this view hid it.
    void setWindow(SelectionWindow *window);
    SelectionWindow *window() const { return m_window; }

    // Input, in view coordinates.
    void mouseDown(QPointF location);
    void mouseDragged(QPointF location);
    void mouseMoved(QPointF location);
    void mouseUp(QPointF location);
    // False when the key is not the view's, so the host handles it as usual.
    bool keyDown(int keyCode);
    void cancelOperation();

    void resetInteractionState(bool restoreCursor);
    void resetForPresentation() { resetInteractionState(true); }
    void abortSelectionByEscape();
    void hideCursorIfNeeded();
    void restoreCursorIfNeeded();

    // Paints into a painter whose coordinates are the view's (y upwards).
    void draw(QPainter &painter) const;
    void drawSelectionSizeLabel(QPainter &painter, const Rect &rect) const;
    Rect sizeLabelRect(const Rect &near, QSizeF labelSize, double gap) const;
    capturegeometry::PixelSize selectionPixelSize(const Rect &rect) const;
    QPointF clampedToBounds(QPointF point) const;

    std::optional<QPointF> startPoint() const { return m_startPoint; }
    Rect currentRect() const { return m_currentRect; }
    std::optional<QPointF> currentMousePoint() const { return m_currentMousePoint; }
    bool hasHiddenCursor() const { return m_hasHiddenCursor; }

    // What is drawn over the dimmed image now, and where the size label goes.
    selectiondamage::Decorations decorations() const;

private:
    void setNeedsDisplay();
    // Asks for a repaint of what changed since the view drew `before`.
    void setNeedsDisplay(const selectiondamage::Decorations &before);
    double backingScale() const;

    SelectionViewDelegate *m_delegate;
    QImage m_frozenBackgroundImage;
    std::optional<QPointF> m_startPoint;
    Rect m_currentRect;
    std::optional<QPointF> m_currentMousePoint;
    bool m_hasHiddenCursor = false;

    Rect m_frame;
    SelectionWindow *m_window = nullptr;
    Cursor &m_cursor;
    const DisplayProvider &m_displays;
};
