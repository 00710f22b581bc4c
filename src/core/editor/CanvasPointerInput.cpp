#include "editor/CanvasPointerInput.h"

#include "editor/CanvasInteraction.h"
#include "editor/CanvasRules.h"
#include "editor/EditorViewport.h"
#include "editor/ImageEditorModel.h"

#include <QLineF>

#include <algorithm>

namespace {

DragGestureEvent gesture(QPointF start, QPointF location)
{
    return {start, location, QSizeF(location.x() - start.x(), location.y() - start.y())};
}

} // namespace

CanvasPointerInput::CanvasPointerInput(const ImageEditorModel &model, const EditorViewport &viewport,
                                       CanvasInteraction &interaction)
    : m_model(model), m_viewport(viewport), m_interaction(interaction)
{
}

std::optional<QUuid> CanvasPointerInput::overlayAt(QPointF location) const
{
    const QPointF imagePoint = m_viewport.convertToImagePoint(location);
    const std::optional<QUuid> &selected = m_interaction.selectedOverlayID();
    const QList<Overlay> &overlays = m_model.overlays();
    for (auto it = overlays.crbegin(); it != overlays.crend(); ++it) {
        if (it->contains(imagePoint, canvasrules::hitPadding(it->type)))
            return it->id;
        if (it->id == selected && canvasrules::hasHandles(it->type)) {
            const auto handles = canvasrules::handlePositions(m_viewport.overlayRectInView(*it));
            const bool onHandle = std::any_of(handles.cbegin(), handles.cend(), [location](QPointF handle) {
                return QLineF(handle, location).length() <= canvasrules::handleDiameter / 2;
            });
            if (onHandle)
                return it->id;
        }
    }
    return std::nullopt;
}

void CanvasPointerInput::pointerPressed(QPointF location)
{
    if (m_press)
        pointerCancelled();
    if (m_interaction.isDrawMode()) {
        m_press = Press{Target::Canvas, QUuid(), location};
        return;
    }
    if (const std::optional<QUuid> id = overlayAt(location))
        m_press = Press{Target::Overlay, *id, location};
}

void CanvasPointerInput::pointerMoved(QPointF location)
{
    if (!m_press || (!m_press->hasMoved && location == m_press->startLocation))
        return;
    m_press->hasMoved = true;
    const DragGestureEvent event = gesture(m_press->startLocation, location);
    if (m_press->target == Target::Canvas)
        m_interaction.drawDragChanged(event);
    else
        m_interaction.overlayDragChanged(m_press->overlayID, event);
}

void CanvasPointerInput::pointerReleased(QPointF location)
{
    if (!m_press)
        return;
    const Press press = *m_press;
    m_press.reset();
    if (press.target == Target::Canvas) {
        m_interaction.drawDragEnded(gesture(press.startLocation, location));
        return;
    }
    if (!press.hasMoved)
        m_interaction.overlayTapped(press.overlayID);
    m_interaction.overlayDragEnded();
}

void CanvasPointerInput::pointerCancelled()
{
    if (!m_press)
        return;
    const Target target = m_press->target;
    m_press.reset();
    if (target == Target::Canvas)
        m_interaction.drawDragCancelled();
    else
        m_interaction.overlayDragEnded();
}
