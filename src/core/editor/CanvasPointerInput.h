#pragma once

#include <QPointF>
#include <QUuid>

#include <optional>

class CanvasInteraction;
class EditorViewport;
class ImageEditorModel;

// Turns the pointer events of the canvas (view points) into the gestures of the editor, as a stack of
// views would deliver them. In draw mode every press goes to the canvas. In edit mode a press goes to
// the topmost overlay that takes it: the last one in drawing order whose rectangle, grown by its hit
// padding, holds the press, or, for the selected overlay, whose handle is under the press. A press
// that no overlay takes does nothing. A drag starts with the first move away from the press; a
// release without one is a tap. Main thread only.
class CanvasPointerInput final
{
public:
    CanvasPointerInput(const ImageEditorModel &model, const EditorViewport &viewport, CanvasInteraction &interaction);

    void pointerPressed(QPointF location);
    void pointerMoved(QPointF location);
    void pointerReleased(QPointF location);
    // The pointer was taken away (a grab ended, the window lost focus) before its release.
    void pointerCancelled();

private:
    // The overlay a press at `location` reaches in edit mode.
    std::optional<QUuid> overlayAt(QPointF location) const;

    enum class Target { Canvas, Overlay };
    struct Press
    {
        Target target;
        QUuid overlayID;
        QPointF startLocation;
        bool hasMoved = false;
    };

    const ImageEditorModel &m_model;
    const EditorViewport &m_viewport;
    CanvasInteraction &m_interaction;
    std::optional<Press> m_press;
};
