#include "editor/ImageEditorModel.h"

#include "editor/EditorRenderer.h"
#include "editor/EditorStylePreferences.h"

#include <utility>

namespace {

void pushTrimmed(QList<ImageEditorModel::Snapshot> &stack, const ImageEditorModel::Snapshot &snapshot)
{
    stack.append(snapshot);
    if (stack.size() > ImageEditorModel::maxUndoSteps)
        stack.remove(0, stack.size() - ImageEditorModel::maxUndoSteps);
}

} // namespace

ImageEditorModel::ImageEditorModel(const QImage &image, KeyValueStore &store, QObject *parent)
    : QObject(parent)
    , m_defaults(store)
    , m_image(image)
    , m_selectedColor(editorstyle::savedEditorStrokeColor(m_defaults))
    , m_selectedTextFillColor(editorstyle::savedEditorTextFillColor(m_defaults))
{
}

void ImageEditorModel::beginEdit(Step step)
{
    m_editRecordsAlways |= step == Step::Always;
    if (m_editDepth++ > 0)
        return;
    m_editStart = m_overlays;
    m_pendingChanges = {};
}

void ImageEditorModel::commitEdit()
{
    if (m_editDepth == 0 || --m_editDepth > 0)
        return;
    Changes changes = std::exchange(m_pendingChanges, {});
    if (settleOpenEdit())
        changes |= Change::Overlays | Change::History;
    m_editStart.clear();
    if (changes)
        emit changed(changes);
}

bool ImageEditorModel::settleOpenEdit()
{
    // Overlays are values: an edit that leaves them equal takes no step unless it asked for one.
    if (!std::exchange(m_editRecordsAlways, false) && m_overlays == m_editStart)
        return false;
    pushTrimmed(m_undoStack, m_editStart);
    m_redoStack.clear();
    return true;
}

void ImageEditorModel::noteChange(Changes changes)
{
    m_pendingChanges |= changes;
}

void ImageEditorModel::setImage(const QImage &image)
{
    const Edit edit(*this);
    m_image = image;
    noteChange(Change::Image);
}

void ImageEditorModel::appendOverlay(const Overlay &overlay)
{
    const Edit edit(*this);
    m_overlays.append(overlay);
}

void ImageEditorModel::replaceOverlay(const Overlay &overlay)
{
    if (const std::optional<qsizetype> index = indexOfOverlay(overlay.id)) {
        const Edit edit(*this);
        m_overlays[*index] = overlay;
    }
}

void ImageEditorModel::removeOverlay(const QUuid &id)
{
    const Edit edit(*this);
    m_overlays.removeIf([&id](const Overlay &overlay) { return overlay.id == id; });
}

std::optional<qsizetype> ImageEditorModel::indexOfOverlay(const QUuid &id) const
{
    for (qsizetype i = 0; i < m_overlays.size(); ++i) {
        if (m_overlays.at(i).id == id)
            return i;
    }
    return std::nullopt;
}

void ImageEditorModel::setSelectedTool(EditorTool tool)
{
    if (m_selectedTool == tool)
        return;
    const Edit edit(*this);
    m_selectedTool = tool;
    noteChange(Change::Style);
}

void ImageEditorModel::setSelectedColor(const QColor &color)
{
    if (m_selectedColor == color)
        return;
    const Edit edit(*this);
    m_selectedColor = color;
    noteChange(Change::Style);
}

void ImageEditorModel::setSelectedTextFillColor(const QColor &color)
{
    if (m_selectedTextFillColor == color)
        return;
    const Edit edit(*this);
    m_selectedTextFillColor = color;
    noteChange(Change::Style);
}

void ImageEditorModel::setSelectedTextFontFamily(const QString &family)
{
    if (m_selectedTextFontFamily == family)
        return;
    const Edit edit(*this);
    m_selectedTextFontFamily = family;
    noteChange(Change::Style);
}

void ImageEditorModel::setSelectedTextFontSize(double size)
{
    if (m_selectedTextFontSize == size)
        return;
    const Edit edit(*this);
    m_selectedTextFontSize = size;
    noteChange(Change::Style);
}

Overlay ImageEditorModel::makeOverlay(EditorTool type, QPointF startPoint, QPointF endPoint, const QColor &color,
                                      const QString &text) const
{
    return Overlay(type, startPoint, endPoint, color, text, editorstyle::editorTextFillColor(m_defaults));
}

void ImageEditorModel::undoLastAction()
{
    stepThroughHistory(m_undoStack, m_redoStack);
}

void ImageEditorModel::redoLastAction()
{
    stepThroughHistory(m_redoStack, m_undoStack);
}

void ImageEditorModel::stepThroughHistory(QList<Snapshot> &from, QList<Snapshot> &to)
{
    if (m_editDepth > 0 && settleOpenEdit()) {
        m_editStart = m_overlays;
        noteChange(Change::Overlays | Change::History);
    }
    if (from.isEmpty())
        return;
    pushTrimmed(to, m_overlays);
    m_overlays = from.takeLast();
    if (m_editDepth > 0)
        m_editStart = m_overlays;
    // At once, even inside an edit: the step is the user's own action, not part of the edit.
    emit changed(std::exchange(m_pendingChanges, {}) | Change::Overlays | Change::History);
}

QImage ImageEditorModel::renderEditedImage() const
{
    return editorrender::renderEditedImage(m_image, m_overlays);
}
