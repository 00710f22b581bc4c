#pragma once

#include "editor/CanvasInteraction.h"
#include "editor/CanvasPointerInput.h"
#include "editor/CanvasRepaintTracker.h"
#include "editor/EditorToolbar.h"
#include "editor/EditorViewport.h"
#include "editor/ImageEditorModel.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QList>
#include <QObject>
#include <QRectF>
#include <QRegion>
#include <QUuid>

#include <functional>
#include <memory>
#include <optional>

class QPainter;
class Scheduler;
class SystemLog;

// The editor of one document, as the widgets of an editor window see it: the canvas (viewport and
// pointer logic), the toolbar, the text fields of the text boxes and the save and cancel actions. The
// widgets forward input here, paint the canvas with paintCanvas and lay out what the data says. They
// redraw the parts that changed() names: one pointer event is one changed() at most, and the toolbar
// is named only when something it shows changed. Main thread only.
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

    enum class Part {
        // The document or the drag of a text box: the canvas's text fields and painting follow.
        CanvasContent = 0x1,
        // Only the painting: the overlay being drawn, the handles of the selection.
        CanvasPaint = 0x2,
        // The canvas has a new size or mapping (zoom, picture).
        CanvasGeometry = 0x4,
        Toolbar = 0x8,
    };
    Q_DECLARE_FLAGS(Parts, Part)

    static const QColor canvasBackground;

    ImageEditorView(std::shared_ptr<ImageEditorModel> model, Services services, QObject *parent = nullptr);
    ~ImageEditorView() override;

    ImageEditorModel &model() const { return *m_model; }
    EditorViewport &viewport() { return m_viewport; }
    const EditorViewport &viewport() const { return m_viewport; }
    CanvasInteraction &interaction() { return m_interaction; }
    const CanvasInteraction &interaction() const { return m_interaction; }
    EditorToolbar &toolbar() { return m_toolbar; }
    const EditorToolbar &toolbar() const { return m_toolbar; }

    // Given the flattened picture ("決定").
    std::function<void(const QImage &image)> onSave;
    std::function<void()> onCancel;

    // The canvas's pointer, in view points.
    void pointerPressed(QPointF location);
    void pointerMoved(QPointF location);
    void pointerReleased(QPointF location);
    void pointerCancelled();

    // "決定": the flattened picture, or the unedited one when flattening fails.
    void save();
    // "キャンセル".
    void cancel();

    QList<TextField> textFields() const;
    // The four handles of the selected overlay; none for freehand strokes.
    QList<Handle> handles() const;
    // The whole canvas in view points: background, image, overlays, the overlay being drawn, handles.
    void paintCanvas(QPainter &painter) const;
    // The same, only what lies in `exposed`.
    void paintCanvas(QPainter &painter, const QRegion &exposed) const;
    // What the last changed() naming the canvas needs repainted, in canvas view points: absent for all
    // of it, empty for nothing. A drag, a release, an undo name only what the overlays they change
    // covered and cover, and the handles of a selection that changed.
    const std::optional<QRegion> &canvasDamage() const { return m_canvasDamage; }

signals:
    void changed(ImageEditorView::Parts parts);
    void focusedTextOverlayChanged();

private:
    void modelChanged(ImageEditorModel::Changes changes);
    void interactionChanged(CanvasInteraction::Changes changes);
    // Emitted at once, or at the end of the pointer event being handled.
    void announce(Parts parts);
    QList<Handle> handlesOf(const Overlay &overlay) const;
    template<typename Handler>
    void handlePointer(Handler handler);

    std::shared_ptr<ImageEditorModel> m_model;
    Services m_services;
    EditorViewport m_viewport;
    CanvasInteraction m_interaction;
    CanvasPointerInput m_pointerInput;
    EditorToolbar m_toolbar;
    bool m_isHandlingPointer = false;
    Parts m_pendingParts;
    CanvasRepaintTracker m_repaintTracker;
    std::optional<QRegion> m_canvasDamage;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(ImageEditorView::Parts)
