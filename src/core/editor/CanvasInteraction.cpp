#include "editor/CanvasInteraction.h"

#include "editor/CanvasRules.h"
#include "editor/EditorViewport.h"
#include "editor/ImageEditorModel.h"
#include "platform/Scheduler.h"
#include "platform/SystemLog.h"

#include <QLineF>

using namespace Qt::StringLiterals;

CanvasInteraction::CanvasInteraction(ImageEditorModel &model, EditorViewport &viewport, SystemLog &systemLog,
                                     Scheduler &scheduler, QObject *parent)
    : QObject(parent), m_model(model), m_viewport(viewport), m_systemLog(systemLog), m_scheduler(scheduler)
{
}

CanvasInteraction::~CanvasInteraction() = default;

void CanvasInteraction::setSelectedOverlayID(const std::optional<QUuid> &id)
{
    if (id == m_selectedOverlayID)
        return;
    m_selectedOverlayID = id;
    emit stateChanged();
}

std::optional<Overlay> CanvasInteraction::selectedOverlay() const
{
    if (!m_selectedOverlayID)
        return std::nullopt;
    const std::optional<qsizetype> index = m_model.indexOfOverlay(*m_selectedOverlayID);
    return index ? std::optional(m_model.overlays().at(*index)) : std::nullopt;
}

void CanvasInteraction::setDrawMode(bool drawMode)
{
    if (drawMode == m_isDrawMode)
        return;
    m_isDrawMode = drawMode;
    emit stateChanged();
    // The text field of the selected box takes the keys only while editing.
    syncTextInputFocus();
}

Overlay CanvasInteraction::makeDrawnOverlay(QPointF start, QPointF current, bool isEnd) const
{
    const EditorTool tool = m_model.selectedTool();
    if (tool == EditorTool::Text) {
        Overlay box = m_model.makeOverlay(tool, start, start + canvasrules::textBoxExtent, m_model.selectedColor(),
                                          canvasrules::newTextBoxText);
        box.textFillColor = m_model.selectedTextFillColor();
        box.fontFamily = m_model.selectedTextFontFamily();
        box.fontSize = m_model.selectedTextFontSize();
        return box;
    }
    if (tool != EditorTool::Freehand || !m_activeOverlay || m_activeOverlay->type != EditorTool::Freehand) {
        Overlay overlay = m_model.makeOverlay(tool, start, current, m_model.selectedColor(), QString());
        if (tool == EditorTool::Freehand)
            overlay.points = {start, current};
        return overlay;
    }
    Overlay stroke = *m_activeOverlay;
    stroke.endPoint = current;
    if (isEnd && stroke.points.isEmpty())
        stroke.points = {start, current};
    else
        canvasrules::extendFreehand(stroke, current,
                                    isEnd ? canvasrules::freehandStepAtEnd : canvasrules::freehandStepWhileDragging);
    return stroke;
}

void CanvasInteraction::drawDragChanged(const DragGestureEvent &event)
{
    if (!m_viewport.interactionCanvasImageRect())
        m_viewport.setInteractionCanvasImageRect(m_viewport.baseCanvasImageRect());
    const QPointF start = m_viewport.convertToImagePoint(event.startLocation);
    const QPointF current = m_viewport.convertToImagePoint(event.location);
    m_activeOverlay = makeDrawnOverlay(start, current, false);
    emit stateChanged();
}

void CanvasInteraction::drawDragEnded(const DragGestureEvent &event)
{
    const QPointF start = m_viewport.convertToImagePoint(event.startLocation);
    const QPointF current = m_viewport.convertToImagePoint(event.location);
    const Overlay overlay = makeDrawnOverlay(start, current, true);
    m_model.recordUndoSnapshot();
    m_model.appendOverlay(overlay);
    if (m_model.selectedTool() == EditorTool::Text) {
        // Straight to typing: select the box, leave draw mode, focus its field once it exists.
        m_selectedOverlayID = overlay.id;
        m_isDrawMode = false;
        postFocus(overlay.id);
    }
    m_activeOverlay.reset();
    m_viewport.setInteractionCanvasImageRect(std::nullopt);
    emit stateChanged();
}

void CanvasInteraction::drawDragCancelled()
{
    m_activeOverlay.reset();
    m_viewport.setInteractionCanvasImageRect(std::nullopt);
    emit stateChanged();
}

void CanvasInteraction::overlayTapped(const QUuid &id)
{
    setSelectedOverlayID(id);
    syncTextInputFocus();
}

std::optional<int> CanvasInteraction::searchDragCorner(const Overlay &overlay, QPointF touch) const
{
    const QRectF rect = m_viewport.overlayRectInView(overlay);
    m_systemLog.log(QString::asprintf("Vistrel: rect=(%.1f,%.1f,%.1f,%.1f), touch=(%.1f,%.1f)", rect.x(), rect.y(),
                                      rect.width(), rect.height(), touch.x(), touch.y()));
    const std::array<QPointF, 4> corners = canvasrules::viewCorners(rect);
    for (int index = 0; index < int(corners.size()); ++index) {
        const double distance = QLineF(corners[index], touch).length();
        m_systemLog.log(QString::asprintf("Vistrel: corner %d at (%.1f,%.1f) distance=%.1f", index,
                                          corners[index].x(), corners[index].y(), distance));
        if (distance <= canvasrules::dragCornerReach)
            return index;
    }
    return std::nullopt;
}

void CanvasInteraction::overlayDragChanged(const QUuid &id, const DragGestureEvent &event)
{
    const std::optional<qsizetype> pressedIndex = m_model.indexOfOverlay(id);
    if (!pressedIndex)
        return; // undone while the drag runs
    const Overlay overlay = m_model.overlays().at(*pressedIndex);
    const QPointF touch = event.startLocation;

    if (!m_dragInitialOverlay) {
        if (!m_viewport.interactionCanvasImageRect())
            m_viewport.setInteractionCanvasImageRect(m_viewport.baseCanvasImageRect());
        const bool wasSelected = m_selectedOverlayID == id;
        if (!wasSelected) {
            const double padding = canvasrules::hitPadding(overlay.type);
            if (!overlay.contains(m_viewport.convertToImagePoint(touch), padding))
                return;
            m_selectedOverlayID = id;
        }
        m_dragInitialOverlay = overlay;
        const std::optional<int> found = searchDragCorner(overlay, touch);
        // Freehand strokes only move.
        m_resizeCorner = overlay.type == EditorTool::Freehand ? std::nullopt : found;
        const QString corner = found ? QString::number(*found) : u"nil"_s;
        m_systemLog.log(wasSelected ? u"Vistrel: dragStart (already selected) foundCorner="_s % corner
                                    : u"Vistrel: dragStart foundCorner="_s % corner);
    }

    if (!m_resizeCorner) {
        m_systemLog.log(u"Vistrel: moving (no corner detected)"_s);
        const double scale = m_viewport.viewPointsPerImagePixel();
        const double dx = scale > 0 ? event.translation.width() / scale : 0;
        const double dy = scale > 0 ? -event.translation.height() / scale : 0;
        takeUndoSnapshotOnce();
        // Always from the overlay as it was at the press, never accumulated.
        m_model.replaceOverlay(canvasrules::movedOverlay(*m_dragInitialOverlay, dx, dy));
    } else {
        m_systemLog.log(u"Vistrel: resizing corner=%1"_s.arg(*m_resizeCorner));
        takeUndoSnapshotOnce();
        resizeOverlay(overlay, *m_resizeCorner, m_viewport.convertToImagePoint(event.location));
    }
    emit stateChanged();
}

void CanvasInteraction::overlayDragEnded()
{
    m_dragInitialOverlay.reset();
    m_resizeCorner.reset();
    m_hasPushedUndoForCurrentDrag = false;
    m_viewport.setInteractionCanvasImageRect(std::nullopt);
    emit stateChanged();
}

void CanvasInteraction::takeUndoSnapshotOnce()
{
    if (m_hasPushedUndoForCurrentDrag)
        return;
    m_model.recordUndoSnapshot();
    m_hasPushedUndoForCurrentDrag = true;
}

void CanvasInteraction::resizeOverlay(const Overlay &overlay, int corner, QPointF imagePoint)
{
    const std::optional<qsizetype> index = m_model.indexOfOverlay(overlay.id);
    if (!index)
        return;
    m_systemLog.log(QString::asprintf("Vistrel: resizeOverlay called corner=%d point=(%.1f,%.1f)", corner,
                                      imagePoint.x(), imagePoint.y()));
    m_model.replaceOverlay(canvasrules::resizedOverlay(m_model.overlays().at(*index), corner, imagePoint));
}

std::optional<int> CanvasInteraction::cornerIndexIfNear(const Overlay &overlay, QPointF imagePoint) const
{
    if (overlay.type == EditorTool::Arrow)
        return std::nullopt;
    const Rect rect = overlay.rect();
    const QPointF corners[] = {{rect.minX(), rect.minY()}, {rect.maxX(), rect.minY()}, {rect.maxX(), rect.maxY()},
                               {rect.minX(), rect.maxY()}};
    const QPointF point = m_viewport.convertToViewPoint(imagePoint);
    for (int index = 0; index < 4; ++index) {
        if (QLineF(m_viewport.convertToViewPoint(corners[index]), point).length() <= canvasrules::nearCornerReach)
            return index;
    }
    return std::nullopt;
}

void CanvasInteraction::deleteSelectedOverlay()
{
    if (!m_selectedOverlayID)
        return;
    m_model.recordUndoSnapshot();
    m_model.removeOverlay(*m_selectedOverlayID);
    m_selectedOverlayID.reset();
    syncTextInputFocus();
    if (m_isDrawMode)
        m_viewport.setInteractionCanvasImageRect(std::nullopt);
    emit stateChanged();
}

void CanvasInteraction::syncTextInputFocus()
{
    const std::optional<Overlay> selected = selectedOverlay();
    const bool isTextTarget = !m_isDrawMode && selected && selected->type == EditorTool::Text;
    if (!isTextTarget) {
        setFocusedTextOverlayID(std::nullopt);
        return;
    }
    postFocus(selected->id);
}

void CanvasInteraction::postFocus(const QUuid &id)
{
    // After the current event, so that the text field exists before it is focused.
    m_scheduler.postToMain([this, alive = std::weak_ptr<char>(m_lifetime), id] {
        if (!alive.expired())
            setFocusedTextOverlayID(id);
    });
}

void CanvasInteraction::setFocusedTextOverlayID(const std::optional<QUuid> &id)
{
    if (id == m_focusedTextOverlayID)
        return;
    m_focusedTextOverlayID = id;
    emit focusedTextOverlayChanged();
}
