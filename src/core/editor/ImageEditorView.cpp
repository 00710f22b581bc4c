#include "editor/ImageEditorView.h"

#include "editor/CanvasRules.h"
#include "editor/EditorCanvasPainter.h"
#include "editor/EditorFont.h"
#include "editor/ImageEditorModel.h"
#include "editor/SystemColors.h"

#include <algorithm>
#include <cmath>

const QColor ImageEditorView::canvasBackground = QColor(228, 228, 231);

ImageEditorView::ImageEditorView(std::shared_ptr<ImageEditorModel> model, Services services, QObject *parent)
    : QObject(parent),
      m_model(std::move(model)),
      m_services(services),
      m_viewport(*m_model, services.scheduler),
      m_interaction(*m_model, m_viewport, services.systemLog, services.scheduler),
      m_pointerInput(*m_model, m_viewport, m_interaction),
      m_toolbar(*m_model, m_interaction)
{
    ImageEditorModel *document = m_model.get();
    for (auto signal : {&ImageEditorModel::imageChanged, &ImageEditorModel::overlaysChanged,
                        &ImageEditorModel::selectedToolChanged, &ImageEditorModel::selectedColorChanged,
                        &ImageEditorModel::selectedTextFillColorChanged,
                        &ImageEditorModel::selectedTextFontFamilyChanged,
                        &ImageEditorModel::selectedTextFontSizeChanged, &ImageEditorModel::canUndoChanged,
                        &ImageEditorModel::canRedoChanged})
        connect(document, signal, this, &ImageEditorView::changed);
    connect(document, &ImageEditorModel::imageChanged, this, &ImageEditorView::canvasGeometryChanged);
    connect(&m_viewport, &EditorViewport::geometryChanged, this, &ImageEditorView::canvasGeometryChanged);
    connect(&m_viewport, &EditorViewport::geometryChanged, this, &ImageEditorView::changed);
    connect(&m_interaction, &CanvasInteraction::stateChanged, this, &ImageEditorView::changed);
    connect(&m_interaction, &CanvasInteraction::focusedTextOverlayChanged, this,
            &ImageEditorView::focusedTextOverlayChanged);
    connect(&m_interaction, &CanvasInteraction::focusedTextOverlayChanged, this, &ImageEditorView::changed);
    connect(&m_toolbar, &EditorToolbar::textFillOpacityChanged, this, &ImageEditorView::changed);
}

ImageEditorView::~ImageEditorView() = default;

void ImageEditorView::save()
{
    // Copies: the callbacks may close the window and release this view.
    const std::function<void(const QImage &)> callback = onSave;
    const QImage image = m_model->renderEditedImage();
    if (callback)
        callback(image);
}

void ImageEditorView::cancel()
{
    const std::function<void()> callback = onCancel;
    if (callback)
        callback();
}

QList<ImageEditorView::TextField> ImageEditorView::textFields() const
{
    // Insets and font sizes are in image pixels, like the overlays.
    const double zoom = m_viewport.viewPointsPerImagePixel();
    QList<TextField> fields;
    for (const Overlay &overlay : m_model->overlays()) {
        if (overlay.type != EditorTool::Text)
            continue;
        // The same inset and font size as the flattened picture, at the canvas's zoom.
        const QRectF frame = m_viewport.overlayRectInView(overlay).adjusted(4 * zoom, 2 * zoom, -4 * zoom, -2 * zoom);
        QFont font = editorrender::makeEditorFont(overlay.fontFamily, overlay.fontSize);
        font.setPixelSize(std::max(1, int(std::lround(font.pixelSize() * zoom))));
        const bool isFocused = m_interaction.focusedTextOverlayID() == overlay.id;
        fields.append({overlay.id, frame, overlay.text, font, overlay.color, isFocused, isFocused});
    }
    return fields;
}

QList<ImageEditorView::Handle> ImageEditorView::handles() const
{
    const std::optional<Overlay> selected = m_interaction.selectedOverlay();
    if (!selected || !canvasrules::hasHandles(selected->type))
        return {};
    QList<Handle> handles;
    for (QPointF center : canvasrules::handlePositions(m_viewport.overlayRectInView(*selected)))
        handles.append({center, canvasrules::handleDiameter, systemcolors::white(), systemcolors::systemRed(),
                        canvasrules::handleOutlineWidth});
    return handles;
}

void ImageEditorView::paintCanvas(QPainter &painter) const
{
    editorcanvas::paintCanvas(painter, *this);
}
