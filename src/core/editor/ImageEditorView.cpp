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
      m_toolbar(*m_model, m_interaction)
{
    connect(m_model.get(), &ImageEditorModel::changed, this, &ImageEditorView::modelChanged);
    connect(&m_interaction, &CanvasInteraction::changed, this, &ImageEditorView::interactionChanged);
    connect(&m_interaction, &CanvasInteraction::focusedTextOverlayChanged, this,
            &ImageEditorView::focusedTextOverlayChanged);
    // The zoom controls are in the toolbar.
    connect(&m_viewport, &EditorViewport::geometryChanged, this, [this] {
        addCanvasDamage(std::nullopt);
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
    if (parts & (Part::CanvasGeometry | Part::CanvasContent))
        addCanvasDamage(std::nullopt);
    m_paintedSelectedOverlay = m_interaction.selectedOverlay();
    announce(parts);
}

void ImageEditorView::interactionChanged(CanvasInteraction::Changes changes)
{
    using Change = CanvasInteraction::Change;
    Parts parts;
    if (changes & Change::Drawing)
        parts |= Part::CanvasPaint;
    if (changes & Change::Dragging)
        parts |= Part::CanvasContent;
    // Handles on the canvas; delete and the selected box's font in the toolbar.
    if (changes & Change::Selection)
        parts |= Part::CanvasPaint | Part::Toolbar;
    if (changes & Change::Mode)
        parts |= Part::Toolbar;
    // Only the drawing moved on: its old and new places. Anything else may show anywhere.
    if (changes == CanvasInteraction::Changes(Change::Drawing))
        addCanvasDamage(drawingDamage());
    else if (changes == CanvasInteraction::Changes(Change::Dragging))
        addCanvasDamage(editDragDamage());
    else if (parts & (Part::CanvasContent | Part::CanvasPaint))
        addCanvasDamage(std::nullopt);
    m_paintedActiveOverlay = m_interaction.activeOverlay();
    m_paintedSelectedOverlay = m_interaction.selectedOverlay();
    announce(parts);
}

void ImageEditorView::addCanvasDamage(const std::optional<QRegion> &area)
{
    if (m_pendingDamage && area)
        *m_pendingDamage += *area;
    else
        m_pendingDamage.reset();
}

QRegion ImageEditorView::drawingDamage() const
{
    const std::optional<Overlay> &before = m_paintedActiveOverlay;
    const std::optional<Overlay> &after = m_interaction.activeOverlay();
    QRegion area;
    if (before && after && before->type == EditorTool::Freehand && after->type == EditorTool::Freehand
        && before->color == after->color && !before->points.isEmpty()
        && after->points.size() >= before->points.size()
        && after->points.first() == before->points.first()
        && after->points.at(before->points.size() - 1) == before->points.last()) {
        // A stroke only grows at its end, and its pixels are the union of its segments': what changed
        // lies around the new segments.
        if (after->points.size() == before->points.size())
            return area;
        Overlay segments = *after;
        segments.points = after->points.mid(before->points.size() - 1);
        return editorcanvas::overlayPaintRegion(m_viewport, segments);
    }
    if (before && after)
        return editorcanvas::overlayChangeRegion(m_viewport, *before, *after);
    if (before)
        area = editorcanvas::overlayPaintRegion(m_viewport, *before);
    if (after)
        area += editorcanvas::overlayPaintRegion(m_viewport, *after);
    return area;
}

std::optional<QRegion> ImageEditorView::editDragDamage() const
{
    const std::optional<Overlay> &before = m_paintedSelectedOverlay;
    const std::optional<Overlay> after = m_interaction.selectedOverlay();
    if (!before || !after || before->id != after->id)
        return std::nullopt;
    QRegion area = editorcanvas::overlayChangeRegion(m_viewport, *before, *after);
    for (const Overlay *overlay : {&*before, &*after})
        for (const Handle &handle : handlesOf(*overlay)) {
            // The ring's outer edge and its smoothing.
            const double reach = handle.diameter / 2 + handle.outlineWidth / 2 + 2;
            area += QRectF(handle.center - QPointF(reach, reach), QSizeF(2 * reach, 2 * reach)).toAlignedRect();
        }
    return area;
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
        m_canvasDamage = std::exchange(m_pendingDamage, QRegion());
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
