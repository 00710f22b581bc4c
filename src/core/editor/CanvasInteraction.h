#pragma once

#include "editor/Overlay.h"

#include <QObject>
#include <QPointF>
#include <QSizeF>
#include <QUuid>

#include <memory>
#include <optional>

class EditorViewport;
class ImageEditorModel;
class Scheduler;
class SystemLog;

// One event of a drag on the canvas, in canvas view points (origin top-left, y down).
struct DragGestureEvent
{
    QPointF startLocation;
    QPointF location;
    QSizeF translation;
};

// The pointer logic of an editor view: in draw mode a drag makes a new overlay of the selected tool;
// in edit mode a tap selects an overlay and a drag moves or resizes it. Each drag that changes the
// document takes exactly one undo snapshot. The handlers are the gesture handlers of the canvas (draw
// mode) and of each overlay (edit mode); CanvasPointerInput decides which one a press reaches.
// Main thread only.
class CanvasInteraction final : public QObject
{
    Q_OBJECT

public:
    CanvasInteraction(ImageEditorModel &model, EditorViewport &viewport, SystemLog &systemLog, Scheduler &scheduler,
                      QObject *parent = nullptr);
    ~CanvasInteraction() override;

    // The overlay being drawn: shown on top of the document, not yet part of it.
    const std::optional<Overlay> &activeOverlay() const { return m_activeOverlay; }
    const std::optional<QUuid> &selectedOverlayID() const { return m_selectedOverlayID; }
    void setSelectedOverlayID(const std::optional<QUuid> &id);
    std::optional<Overlay> selectedOverlay() const;
    const std::optional<int> &resizeCorner() const { return m_resizeCorner; }
    // Present while an edit drag runs: the overlay as it was at the press.
    const std::optional<Overlay> &dragInitialOverlay() const { return m_dragInitialOverlay; }
    bool isDrawMode() const { return m_isDrawMode; }
    void setDrawMode(bool drawMode);
    bool hasPushedUndoForCurrentDrag() const { return m_hasPushedUndoForCurrentDrag; }
    // The text box whose field has the keyboard focus.
    const std::optional<QUuid> &focusedTextOverlayID() const { return m_focusedTextOverlayID; }

    void drawDragChanged(const DragGestureEvent &event);
    void drawDragEnded(const DragGestureEvent &event);
    // The drag of a draw-mode press is abandoned (the window lost the pointer): nothing is added.
    void drawDragCancelled();

    void overlayTapped(const QUuid &id);
    void overlayDragChanged(const QUuid &id, const DragGestureEvent &event);
    void overlayDragEnded();

    void resizeOverlay(const Overlay &overlay, int corner, QPointF imagePoint);
    // The first corner within 30 view points of the point; never for arrows.
    std::optional<int> cornerIndexIfNear(const Overlay &overlay, QPointF imagePoint) const;
    void deleteSelectedOverlay();
    void syncTextInputFocus();

signals:
    void stateChanged();
    void focusedTextOverlayChanged();

private:
    Overlay makeDrawnOverlay(QPointF start, QPointF current, bool isEnd) const;
    std::optional<int> searchDragCorner(const Overlay &overlay, QPointF touch) const;
    void takeUndoSnapshotOnce();
    void setFocusedTextOverlayID(const std::optional<QUuid> &id);
    void postFocus(const QUuid &id);

    ImageEditorModel &m_model;
    EditorViewport &m_viewport;
    SystemLog &m_systemLog;
    Scheduler &m_scheduler;

    std::optional<Overlay> m_activeOverlay;
    std::optional<QUuid> m_selectedOverlayID;
    std::optional<int> m_resizeCorner;
    std::optional<Overlay> m_dragInitialOverlay;
    bool m_isDrawMode = true;
    bool m_hasPushedUndoForCurrentDrag = false;
    std::optional<QUuid> m_focusedTextOverlayID;
    std::shared_ptr<char> m_lifetime = std::make_shared<char>();
};
