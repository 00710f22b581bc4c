#pragma once

#include "editor/CanvasInteraction.h"
#include "editor/CanvasPointerInput.h"
#include "editor/EditorToolbar.h"
#include "editor/EditorViewport.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QList>
#include <QObject>
#include <QRectF>
#include <QUuid>

#include <functional>
#include <memory>

class ImageEditorModel;
class QPainter;
class Scheduler;
class SystemLog;

// The editor of one document, as the widgets of an editor window see it: the canvas (viewport and
// pointer logic), the toolbar, the text fields of the text boxes and the save and cancel actions. The
// widgets forward input here, paint the canvas with paintCanvas and lay out what the data says; they
// redraw on changed(). Main thread only.
class ImageEditorView final : public QObject
{
    Q_OBJECT

public:
    struct Services
    {
        SystemLog &systemLog;
        Scheduler &scheduler;
    };
    // An editable field over a text box, in canvas view points.
    struct TextField
    {
        QUuid overlayID;
        QRectF frame;
        QString text;
        QFont font;
        QColor textColor;
        bool isFocused;
        // Only the focused field takes the pointer; elsewhere a press reaches the box beneath.
        bool acceptsPointer;
    };
    struct Handle
    {
        QPointF center;
        double diameter;
        QColor fill;
        QColor outline;
        double outlineWidth;
    };

    static const QColor canvasBackground;

    ImageEditorView(std::shared_ptr<ImageEditorModel> model, Services services, QObject *parent = nullptr);
    ~ImageEditorView() override;

    ImageEditorModel &model() const { return *m_model; }
    const std::shared_ptr<ImageEditorModel> &sharedModel() const { return m_model; }
    EditorViewport &viewport() { return m_viewport; }
    const EditorViewport &viewport() const { return m_viewport; }
    CanvasInteraction &interaction() { return m_interaction; }
    const CanvasInteraction &interaction() const { return m_interaction; }
    CanvasPointerInput &pointerInput() { return m_pointerInput; }
    EditorToolbar &toolbar() { return m_toolbar; }
    const EditorToolbar &toolbar() const { return m_toolbar; }

    // Given the flattened picture ("決定").
    std::function<void(const QImage &image)> onSave;
    std::function<void()> onCancel;

    // "決定": the flattened picture, or the unedited one when flattening fails.
    void save();
    // "キャンセル".
    void cancel();

    QList<TextField> textFields() const;
    // The four handles of the selected overlay; none for freehand strokes.
    QList<Handle> handles() const;
    // The whole canvas in view points: background, image, overlays, the overlay being drawn, handles.
    void paintCanvas(QPainter &painter) const;

signals:
    // Anything shown changed: the document, the selection, the mode, the zoom, the toolbar.
    void changed();
    // The canvas has a new size or mapping: the scroll area resizes it.
    void canvasGeometryChanged();
    void focusedTextOverlayChanged();

private:
    std::shared_ptr<ImageEditorModel> m_model;
    Services m_services;
    EditorViewport m_viewport;
    CanvasInteraction m_interaction;
    CanvasPointerInput m_pointerInput;
    EditorToolbar m_toolbar;
};
