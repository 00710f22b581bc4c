#pragma once

#include "editor/Overlay.h"

#include <QFlags>
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
// in edit mode a tap selects an overlay and a drag moves or resizes it. An edit drag is one edit of
// the document, open from its first move to its release, so it is one undo step, or none when it
// ends where it began. The handlers are the gesture handlers of the canvas (draw mode) and of each
// overlay (edit mode); CanvasPointerInput decides which one a press reaches. Main thread only.
class CanvasInteraction final : public QObject
{
    Q_OBJECT

public:
    enum class Change {
        // The overlay being drawn.
        Drawing = 0x1,
        // An edit drag moved or resized an overlay of the document; the model announces it at the release.
        Dragging = 0x2,
        Selection = 0x4,
        Mode = 0x8,
    };
    Q_DECLARE_FLAGS(Changes, Change)

    CanvasInteraction(ImageEditorModel &model, EditorViewport &viewport, SystemLog &systemLog, Scheduler &scheduler,
                      QObject *parent = nullptr);
    ~CanvasInteraction() override;

    // The overlay being drawn: shown on top of the document, not yet part of it.
    const std::optional<Overlay> &activeOverlay() const { return m_activeOverlay; }
    const std::optional<QUuid> &selectedOverlayID() const { return m_selectedOverlayID; }
    void setSelectedOverlayID(const std::optional<QUuid> &id);
    std::optional<Overlay> selectedOverlay() const;
    bool isDrawMode() const { return m_isDrawMode; }
    void setDrawMode(bool drawMode);
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
    void deleteSelectedOverlay();

signals:
    void changed(CanvasInteraction::Changes changes);
    void focusedTextOverlayChanged();

private:
    // Keyboard focus to the selected text box's field while editing, away from it otherwise.
    void syncTextInputFocus();
    Overlay newDrawnOverlay(QPointF start, QPointF current) const;
    Overlay makeDrawnOverlay(QPointF start, QPointF current, bool isEnd) const;
    std::optional<int> searchDragCorner(const Overlay &overlay, QPointF touch) const;
    void setFocusedTextOverlayID(const std::optional<QUuid> &id);
    void postFocus(const QUuid &id);

    ImageEditorModel &m_model;
    EditorViewport &m_viewport;
    SystemLog &m_systemLog;
    Scheduler &m_scheduler;

    std::optional<Overlay> m_activeOverlay;
    std::optional<QUuid> m_selectedOverlayID;
    std::optional<int> m_resizeCorner;
    // Present while an edit drag runs, and its edit of the document is open: the overlay at the press.
    std::optional<Overlay> m_dragInitialOverlay;
    bool m_isDrawMode = true;
    std::optional<QUuid> m_focusedTextOverlayID;
    std::shared_ptr<char> m_lifetime = std::make_shared<char>();
};

Q_DECLARE_OPERATORS_FOR_FLAGS(CanvasInteraction::Changes)
