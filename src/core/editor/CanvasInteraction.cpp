#include "editor/CanvasInteraction.h"

#include "editor/CanvasRules.h"
#include "editor/EditorViewport.h"
#include "editor/ImageEditorModel.h"
#include "platform/Scheduler.h"
#include "platform/SystemLog.h"

#include <QLineF>

#include <utility>

using namespace Qt::StringLiterals;

CanvasInteraction::CanvasInteraction(ImageEditorModel &model, EditorViewport &viewport, SystemLog &systemLog,
                                     Scheduler &scheduler, QObject *parent)
    : QObject(parent), m_model(model), m_viewport(viewport), m_systemLog(systemLog), m_scheduler(scheduler)
{
}

CanvasInteraction::~CanvasInteraction()
{
    // A drag cut short by the view going away still closes its edit.
    if (m_dragInitialOverlay)
        m_model.commitEdit();
}

void CanvasInteraction::setSelectedOverlayID(const std::optional<QUuid> &id)
{
    if (id == m_selectedOverlayID)
        return;
    m_selectedOverlayID = id;
    emit changed(Change::Selection);
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
    emit changed(Change::Mode);
    // The text field of the selected box takes the keys only while editing.
    syncTextInputFocus();
}

Overlay CanvasInteraction::newDrawnOverlay(QPointF start, QPointF current) const
{
    const EditorTool tool = m_model.selectedTool();
    if (tool == EditorTool::Text) {
        Overlay box(tool, start, start + canvasrules::textBoxExtent, m_model.selectedColor(),
                    canvasrules::newTextBoxText, m_model.selectedTextFillColor());
        box.fontFamily = m_model.selectedTextFontFamily();
        box.fontSize = m_model.selectedTextFontSize();
        return box;
    }
    Overlay overlay = m_model.makeOverlay(tool, start, current, m_model.selectedColor(), QString());
    if (tool == EditorTool::Freehand)
        overlay.points = {start, current};
    return overlay;
}

Overlay CanvasInteraction::makeDrawnOverlay(QPointF start, QPointF current, bool isEnd) const
{
    // The first move of a drag makes its overlay, and with it reads the styles (the saved fill among
    // them) once; the later moves only reshape it.
    if (!m_activeOverlay || m_activeOverlay->type != m_model.selectedTool())
        return newDrawnOverlay(start, current);
    Overlay overlay = *m_activeOverlay;
    switch (overlay.type) {
    case EditorTool::Text:
        overlay.startPoint = start;
        overlay.endPoint = start + canvasrules::textBoxExtent;
        break;
    case EditorTool::Freehand:
        overlay.endPoint = current;
        if (isEnd && overlay.points.isEmpty())
            overlay.points = {start, current};
        else
            canvasrules::extendFreehand(overlay, current,
                                        isEnd ? canvasrules::freehandStepAtEnd : canvasrules::freehandStepWhileDragging);
        break;
    default:
        overlay.startPoint = start;
        overlay.endPoint = current;
    }
    return overlay;
}

void CanvasInteraction::drawDragChanged(const DragGestureEvent &event)
{
    const QPointF start = m_viewport.convertToImagePoint(event.startLocation);
    const QPointF current = m_viewport.convertToImagePoint(event.location);
    m_activeOverlay = makeDrawnOverlay(start, current, false);
    emit changed(Change::Drawing);
}

void CanvasInteraction::drawDragEnded(const DragGestureEvent &event)
{
    const QPointF start = m_viewport.convertToImagePoint(event.startLocation);
    const QPointF current = m_viewport.convertToImagePoint(event.location);
    const Overlay overlay = makeDrawnOverlay(start, current, true);
    Changes changes = Change::Drawing;
    m_activeOverlay.reset();
    if (m_model.selectedTool() == EditorTool::Text) {
        // Straight to typing: select the box, leave draw mode, focus its field once it exists.
        m_selectedOverlayID = overlay.id;
        m_isDrawMode = false;
        changes |= Change::Selection | Change::Mode;
        postFocus(overlay.id);
    }
    m_model.appendOverlay(overlay);
    emit changed(changes);
}

void CanvasInteraction::drawDragCancelled()
{
    m_activeOverlay.reset();
    emit changed(Change::Drawing);
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

    Changes changes = Change::Dragging;
    if (!m_dragInitialOverlay) {
        const bool wasSelected = m_selectedOverlayID == id;
        if (!wasSelected) {
            const double padding = canvasrules::hitPadding(overlay.type);
            if (!overlay.contains(m_viewport.convertToImagePoint(touch), padding))
                return;
            m_selectedOverlayID = id;
            changes |= Change::Selection;
        }
        // Every drag that moves is one step, at its first move, even one that ends where it began.
        m_model.beginEdit(ImageEditorModel::Step::Always);
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
        // Always from the overlay as it was at the press, never accumulated.
        m_model.replaceOverlay(canvasrules::movedOverlay(*m_dragInitialOverlay, dx, dy));
    } else {
        m_systemLog.log(u"Vistrel: resizing corner=%1"_s.arg(*m_resizeCorner));
        resizeOverlay(overlay, *m_resizeCorner, m_viewport.convertToImagePoint(event.location));
    }
    emit changed(changes);
}

void CanvasInteraction::overlayDragEnded()
{
    m_resizeCorner.reset();
    // The model announces what the drag changed; nothing else shown changes here.
    if (std::exchange(m_dragInitialOverlay, std::nullopt))
        m_model.commitEdit();
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

void CanvasInteraction::deleteSelectedOverlay()
{
    if (!m_selectedOverlayID)
        return;
    const QUuid id = *std::exchange(m_selectedOverlayID, std::nullopt);
    m_model.removeOverlay(id);
    syncTextInputFocus();
    emit changed(Change::Selection);
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
