#include "capture/SelectionView.h"

#include "capture/SelectionPainting.h"
#include "capture/SelectionViewDelegate.h"
#include "platform/Cursor.h"
#include "platform/DisplayProvider.h"
#include "platform/SelectionWindow.h"

#include <QPainter>

SelectionView::SelectionView(const Rect &frame, SelectionViewDelegate *delegate, Cursor &cursor,
                             const DisplayProvider &displays)
    : m_delegate(delegate), m_frame(frame), m_cursor(cursor), m_displays(displays)
{
}

SelectionView::~SelectionView()
{
    restoreCursorIfNeeded();
}

void SelectionView::setFrame(const Rect &frame)
{
    m_frame = frame;
    setNeedsDisplay();
}

Rect SelectionView::bounds() const
{
    return capturegeometry::localBounds(m_frame);
}

void SelectionView::setFrozenBackgroundImage(const QImage &image)
{
    m_frozenBackgroundImage = image;
    setNeedsDisplay();
}

void SelectionView::setWindow(SelectionWindow *window)
{
    if (!window)
        restoreCursorIfNeeded();
    m_window = window;
}

void SelectionView::mouseDown(QPointF location)
{
    const selectiondamage::Decorations before = decorations();
    const QPointF p = clampedToBounds(location);
    m_startPoint = p;
    m_currentRect = Rect();
    m_currentMousePoint = p;
    setNeedsDisplay(before);
    hideCursorIfNeeded();
}

void SelectionView::mouseDragged(QPointF location)
{
    if (!m_startPoint)
        return;
    const selectiondamage::Decorations before = decorations();
    const QPointF q = clampedToBounds(location);
    m_currentRect = Rect::fromCorners(*m_startPoint, q);
    m_currentMousePoint = q;
    setNeedsDisplay(before);
}

void SelectionView::mouseMoved(QPointF location)
{
    const selectiondamage::Decorations before = decorations();
    m_currentMousePoint = clampedToBounds(location);
    setNeedsDisplay(before);
}

void SelectionView::mouseUp(QPointF)
{
    restoreCursorIfNeeded();
    if (!m_delegate)
        return;
    // A click without a drag ends the session; so does a drag in a view that has lost its window.
    if (m_currentRect.isEmpty() || !m_window)
        m_delegate->cancelSelection();
    else
        m_delegate->capture(m_currentRect, m_window);
}

bool SelectionView::keyDown(int keyCode)
{
    if (keyCode == escapeKeyCode) {
        abortSelectionByEscape();
        return true;
    }
    if (keyCode == spaceKeyCode) {
        if (m_delegate)
            m_delegate->captureWindowUnderCursor();
        return true;
    }
    return false;
}

void SelectionView::cancelOperation()
{
    abortSelectionByEscape();
}

void SelectionView::resetInteractionState(bool restoreCursor)
{
    m_startPoint.reset();
    m_currentRect = Rect();
    m_currentMousePoint.reset();
    if (restoreCursor)
        restoreCursorIfNeeded();
    setNeedsDisplay();
}

void SelectionView::abortSelectionByEscape()
{
    resetInteractionState(true);
    if (m_delegate)
        m_delegate->cancelSelection();
}

void SelectionView::hideCursorIfNeeded()
{
    if (m_hasHiddenCursor)
        return;
    m_cursor.hide();
    m_hasHiddenCursor = true;
    if (m_delegate)
        m_delegate->selectionCursorDidHide();
}

void SelectionView::restoreCursorIfNeeded()
{
    if (!m_hasHiddenCursor)
        return;
    m_cursor.unhide();
    m_hasHiddenCursor = false;
    if (m_delegate)
        m_delegate->selectionCursorDidRestore();
}

void SelectionView::draw(QPainter &painter) const
{
    const Rect b = bounds();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_frozenBackgroundImage.isNull())
        selectionpainting::drawImage(painter, m_frozenBackgroundImage, b);
    selectionpainting::fillDimming(painter, b);
    if (!m_currentRect.isEmpty()) {
        selectionpainting::drawSelection(painter, m_currentRect);
        drawSelectionSizeLabel(painter, m_currentRect);
    }
    if (m_currentMousePoint)
        selectionpainting::drawCrosshair(painter, *m_currentMousePoint, b);
    painter.restore();
}

void SelectionView::drawSelectionSizeLabel(QPainter &painter, const Rect &rect) const
{
    const QString text = selectionpainting::sizeLabelText(selectionPixelSize(rect));
    const QFont font = selectionpainting::sizeLabelFont();
    const QSizeF labelSize = selectionpainting::labelSize(selectionpainting::textSize(text, font));
    selectionpainting::drawSizeLabel(painter, sizeLabelRect(rect, labelSize, sizeLabelGap), text, font);
}

selectiondamage::Decorations SelectionView::decorations() const
{
    selectiondamage::Decorations drawn{m_currentRect, Rect(), m_currentMousePoint};
    if (!m_currentRect.isEmpty()) {
        const QString text = selectionpainting::sizeLabelText(selectionPixelSize(m_currentRect));
        const QSizeF labelSize = selectionpainting::labelSize(
            selectionpainting::textSize(text, selectionpainting::sizeLabelFont()));
        drawn.label = sizeLabelRect(m_currentRect, labelSize, sizeLabelGap);
    }
    return drawn;
}

Rect SelectionView::sizeLabelRect(const Rect &near, QSizeF labelSize, double gap) const
{
    return capturegeometry::sizeLabelRect(near, labelSize, gap, bounds());
}

capturegeometry::PixelSize SelectionView::selectionPixelSize(const Rect &rect) const
{
    return capturegeometry::selectionPixelSize(rect, backingScale());
}

QPointF SelectionView::clampedToBounds(QPointF point) const
{
    return capturegeometry::clampedToBounds(point, bounds());
}

void SelectionView::setNeedsDisplay()
{
    if (m_window)
        m_window->setNeedsDisplay();
}

void SelectionView::setNeedsDisplay(const selectiondamage::Decorations &before)
{
    if (!m_window)
        return;
    for (const Rect &area : selectiondamage::changedAreas(before, decorations(), bounds()))
        m_window->setNeedsDisplayInRect(area);
}

// The scale of the display the view is on; the main display's when it is on none.
double SelectionView::backingScale() const
{
    std::optional<DisplayInfo> screen = m_window ? m_window->screen() : std::nullopt;
    if (!screen)
        screen = m_displays.mainScreen();
    return screen ? screen->backingScale : 1;
}
