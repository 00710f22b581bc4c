#include "editor/ImageEditorView.h"

#include "editor/CanvasRules.h"
#include "editor/EditorCanvasPainter.h"
#include "editor/EditorFont.h"
#include "editor/ImageEditorModel.h"
#include "editor/SystemColors.h"

#include <algorithm>
#include <cmath>
#include <utility>

const QColor ImageEditorView::canvasBackground = QColor(228, 228, 231);

ImageEditorView::ImageEditorView(std::shared_ptr<ImageEditorModel> model, Services services, QObject *parent)
    : QObject(parent),
      m_model(std::move(model)),
      m_services(services),
      m_viewport(*m_model, services.scheduler),
      m_interaction(*m_model, m_viewport, services.systemLog, services.scheduler),
      m_pointerInput(*m_model, m_viewport, m_interaction),
      m_toolbar(*m_model, m_interaction),
      m_repaintTracker(m_viewport)
{
    connect(m_model.get(), &ImageEditorModel::changed, this, &ImageEditorView::modelChanged);
    connect(&m_interaction, &CanvasInteraction::changed, this, &ImageEditorView::interactionChanged);
    connect(&m_interaction, &CanvasInteraction::focusedTextOverlayChanged, this,
            &ImageEditorView::focusedTextOverlayChanged);
    // The zoom controls are in the toolbar.
    connect(&m_viewport, &EditorViewport::geometryChanged, this, [this] {
        m_repaintTracker.invalidate();
        announce(Part::CanvasGeometry | Part::Toolbar);
    });
    connect(&m_toolbar, &EditorToolbar::textFillOpacityChanged, this, [this] { announce(Part::Toolbar); });
}

ImageEditorView::~ImageEditorView() = default;

void ImageEditorView::modelChanged(ImageEditorModel::Changes changes)
{
    using Change = ImageEditorModel::Change;
    Parts parts;
    if (changes & Change::Image)
        parts |= Part::CanvasGeometry;
    if (changes & Change::Overlays)
        parts |= Part::CanvasContent;
    // An overlay changes with a step of the history, which also covers the selected one's font.
    if (changes & (Change::History | Change::Style))
        parts |= Part::Toolbar;
    if (changes & Change::Image)
        m_repaintTracker.invalidate();
    announce(parts);
}

void ImageEditorView::interactionChanged(CanvasInteraction::Changes changes)
{
    using Change = CanvasInteraction::Change;
    Parts parts;
    if (changes & Change::Drawing)
        parts |= Part::CanvasPaint;
    // The fields follow a text box being dragged; other drags leave every field where it is.
    if (changes & Change::Dragging) {
        const std::optional<Overlay> dragged = m_interaction.selectedOverlay();
        parts |= dragged && dragged->type == EditorTool::Text ? Part::CanvasContent : Part::CanvasPaint;
    }
    // Handles on the canvas; delete and the selected box's font in the toolbar.
    if (changes & Change::Selection)
        parts |= Part::CanvasPaint | Part::Toolbar;
    if (changes & Change::Mode)
        parts |= Part::Toolbar;
    announce(parts);
}

void ImageEditorView::announce(Parts parts)
{
    if (m_isHandlingPointer) {
        m_pendingParts |= parts;
        return;
    }
    if (!parts)
        return;
    if (parts & (Part::CanvasContent | Part::CanvasPaint | Part::CanvasGeometry))
        m_canvasDamage = m_repaintTracker.takeDamage(m_model->overlays(), m_interaction.activeOverlay(),
                                                     m_interaction.selectedOverlay());
    emit changed(parts);
}

template<typename Handler>
void ImageEditorView::handlePointer(Handler handler)
{
    // A release may close a drawing, commit an edit and change the selection: one redraw for all.
    const bool isOuter = !std::exchange(m_isHandlingPointer, true);
    handler();
    if (!isOuter)
        return;
    m_isHandlingPointer = false;
    announce(std::exchange(m_pendingParts, {}));
}

void ImageEditorView::pointerPressed(QPointF location)
{
    handlePointer([&] { m_pointerInput.pointerPressed(location); });
}

void ImageEditorView::pointerMoved(QPointF location)
{
    handlePointer([&] { m_pointerInput.pointerMoved(location); });
}

void ImageEditorView::pointerReleased(QPointF location)
{
    handlePointer([&] { m_pointerInput.pointerReleased(location); });
}

void ImageEditorView::pointerCancelled()
{
    handlePointer([&] { m_pointerInput.pointerCancelled(); });
}

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
    return selected ? handlesOf(*selected) : QList<Handle>();
}

QList<ImageEditorView::Handle> ImageEditorView::handlesOf(const Overlay &overlay) const
{
    if (!canvasrules::hasHandles(overlay.type))
        return {};
    QList<Handle> handles;
    for (QPointF center : canvasrules::handlePositions(m_viewport.overlayRectInView(overlay)))
        handles.append({center, canvasrules::handleDiameter, systemcolors::white(), systemcolors::systemRed(),
                        canvasrules::handleOutlineWidth});
    return handles;
}

void ImageEditorView::paintCanvas(QPainter &painter) const
{
    editorcanvas::paintCanvas(painter, *this);
}

void ImageEditorView::paintCanvas(QPainter &painter, const QRegion &exposed) const
{
    editorcanvas::paintCanvas(painter, *this, exposed);
}
