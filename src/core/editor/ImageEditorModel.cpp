#include "editor/ImageEditorModel.h"

#include "editor/EditorRenderer.h"
#include "editor/EditorStylePreferences.h"
#include "editor/OverlayGeometry.h"

ImageEditorModel::ImageEditorModel(const QImage &image, KeyValueStore &store, QObject *parent)
    : QObject(parent)
    , m_defaults(store)
    , m_image(image)
    , m_selectedColor(editorstyle::savedEditorStrokeColor(m_defaults))
    , m_selectedTextFillColor(editorstyle::savedEditorTextFillColor(m_defaults))
{
}

void ImageEditorModel::setImage(const QImage &image)
{
    m_image = image;
    emit imageChanged();
}

void ImageEditorModel::setOverlays(const QList<Overlay> &overlays)
{
    m_overlays = overlays;
    emit overlaysChanged();
}

void ImageEditorModel::appendOverlay(const Overlay &overlay)
{
    m_overlays.append(overlay);
    emit overlaysChanged();
}

void ImageEditorModel::replaceOverlay(const Overlay &overlay)
{
    const std::optional<qsizetype> index = indexOfOverlay(overlay.id);
    if (!index)
        return;
    m_overlays[*index] = overlay;
    emit overlaysChanged();
}

void ImageEditorModel::setSelectedTool(EditorTool tool)
{
    if (m_selectedTool == tool)
        return;
    m_selectedTool = tool;
    emit selectedToolChanged();
}

void ImageEditorModel::setSelectedColor(const QColor &color)
{
    if (m_selectedColor == color)
        return;
    m_selectedColor = color;
    emit selectedColorChanged();
}

void ImageEditorModel::setSelectedTextFillColor(const QColor &color)
{
    if (m_selectedTextFillColor == color)
        return;
    m_selectedTextFillColor = color;
    emit selectedTextFillColorChanged();
}

void ImageEditorModel::setSelectedTextFontFamily(const QString &family)
{
    if (m_selectedTextFontFamily == family)
        return;
    m_selectedTextFontFamily = family;
    emit selectedTextFontFamilyChanged();
}

void ImageEditorModel::setSelectedTextFontSize(double size)
{
    if (m_selectedTextFontSize == size)
        return;
    m_selectedTextFontSize = size;
    emit selectedTextFontSizeChanged();
}

Overlay ImageEditorModel::makeOverlay(EditorTool type, QPointF startPoint, QPointF endPoint, const QColor &color,
                                      const QString &text) const
{
    return Overlay(type, startPoint, endPoint, color, text, editorstyle::editorTextFillColor(m_defaults));
}

std::optional<qsizetype> ImageEditorModel::indexOfOverlay(const QUuid &id) const
{
    for (qsizetype i = 0; i < m_overlays.size(); ++i) {
        if (m_overlays.at(i).id == id)
            return i;
    }
    return std::nullopt;
}

void ImageEditorModel::updateOverlay(const QUuid &id, std::optional<QPointF> start, std::optional<QPointF> end)
{
    const std::optional<qsizetype> index = indexOfOverlay(id);
    if (!index)
        return;
    Overlay &overlay = m_overlays[*index];
    if (start)
        overlay.startPoint = *start;
    if (end)
        overlay.endPoint = *end;
    emit overlaysChanged();
}

void ImageEditorModel::moveOverlay(const QUuid &id, QSizeF translation)
{
    const std::optional<qsizetype> index = indexOfOverlay(id);
    if (!index)
        return;
    const QPointF offset(translation.width(), translation.height());
    Overlay &overlay = m_overlays[*index];
    overlay.startPoint += offset;
    overlay.endPoint += offset;
    for (QPointF &point : overlay.points)
        point += offset;
    emit overlaysChanged();
}

void ImageEditorModel::removeOverlay(const QUuid &id)
{
    if (m_overlays.removeIf([&id](const Overlay &overlay) { return overlay.id == id; }) > 0)
        emit overlaysChanged();
}

void ImageEditorModel::pushTrimmed(QList<Snapshot> &stack, const Snapshot &snapshot)
{
    stack.append(snapshot);
    if (stack.size() > maxUndoSteps)
        stack.remove(0, stack.size() - maxUndoSteps);
}

void ImageEditorModel::recordUndoSnapshot()
{
    pushTrimmed(m_undoStack, m_overlays);
    m_redoStack.clear();
    updateHistoryFlags();
}

void ImageEditorModel::undoLastAction()
{
    if (m_undoStack.isEmpty())
        return;
    const Snapshot snapshot = m_undoStack.takeLast();
    pushTrimmed(m_redoStack, m_overlays);
    setOverlays(snapshot);
    updateHistoryFlags();
}

void ImageEditorModel::redoLastAction()
{
    if (m_redoStack.isEmpty())
        return;
    const Snapshot snapshot = m_redoStack.takeLast();
    pushTrimmed(m_undoStack, m_overlays);
    setOverlays(snapshot);
    updateHistoryFlags();
}

void ImageEditorModel::updateHistoryFlags()
{
    m_canUndo = !m_undoStack.isEmpty();
    m_canRedo = !m_redoStack.isEmpty();
    emit canUndoChanged();
    emit canRedoChanged();
}

Rect ImageEditorModel::overlayRenderBounds(const Overlay &overlay)
{
    return overlaygeometry::overlayRenderBounds(overlay);
}

Rect ImageEditorModel::renderContentBounds(QSizeF imageSize) const
{
    return overlaygeometry::renderContentBounds(m_overlays, imageSize);
}

QImage ImageEditorModel::renderEditedImage() const
{
    return editorrender::renderEditedImage(m_image, m_overlays);
}
