#include "editor/EditorToolbar.h"

#include "editor/CanvasInteraction.h"
#include "editor/EditorFont.h"
#include "editor/EditorStylePreferences.h"
#include "editor/EditorToolbarTexts.h"
#include "editor/ImageEditorModel.h"
#include "editor/SystemColors.h"

#include <QFontDatabase>

#include <algorithm>
#include <cmath>

namespace texts = editortoolbartexts;

namespace {

QColor inDeviceRGB(const QColor &color)
{
    // A colour that has no RGB form (an invalid one) is kept as it is.
    return color.isValid() ? color.toRgb() : color;
}

QColor withAlpha(QColor color, double alpha)
{
    color.setAlphaF(float(alpha));
    return color;
}

} // namespace

const QList<QColor> &EditorToolbar::presetColors()
{
    using namespace systemcolors;
    static const QList<QColor> colors{systemRed(),    systemOrange(), systemYellow(), systemGreen(), systemTeal(),
                                      systemBlue(),   systemIndigo(), systemPurple(), systemPink(),  black()};
    return colors;
}

const QList<QColor> &EditorToolbar::presetTextFillColors()
{
    using namespace systemcolors;
    static const QList<QColor> colors{systemCyan(),   systemTeal(), systemBlue(),   systemGreen(), systemYellow(),
                                      systemOrange(), systemPink(), systemPurple(), white(),       black()};
    return colors;
}

bool EditorToolbar::sameColor(const QColor &a, const QColor &b)
{
    const QColor x = inDeviceRGB(a);
    const QColor y = inDeviceRGB(b);
    if (!x.isValid() || !y.isValid())
        return x.isValid() == y.isValid();
    return std::abs(x.redF() - y.redF()) < 0.01 && std::abs(x.greenF() - y.greenF()) < 0.01
           && std::abs(x.blueF() - y.blueF()) < 0.01 && std::abs(x.alphaF() - y.alphaF()) < 0.01;
}

EditorToolbar::EditorToolbar(ImageEditorModel &model, CanvasInteraction &interaction, QObject *parent)
    : QObject(parent),
      m_model(model),
      m_interaction(interaction),
      m_textFillOpacity(editorstyle::savedEditorTextFillOpacity(model.defaults()))
{
}

QList<EditorToolbar::ToolButton> EditorToolbar::toolButtons() const
{
    QList<ToolButton> buttons;
    for (EditorTool tool : editortool::allCases())
        buttons.append({tool, editortool::rawValue(tool), tool == m_model.selectedTool()});
    return buttons;
}

void EditorToolbar::selectTool(EditorTool tool)
{
    m_model.setSelectedTool(tool);
}

EditorToolbar::ModeToggle EditorToolbar::modeToggle() const
{
    return {texts::drawMode, texts::editMode, m_interaction.isDrawMode()};
}

void EditorToolbar::setDrawMode(bool drawMode)
{
    m_interaction.setDrawMode(drawMode);
}

QList<EditorToolbar::BottomButton> EditorToolbar::bottomButtons()
{
    return {{texts::cancel, BottomAction::Cancel, false}, {texts::save, BottomAction::Save, true}};
}

EditorToolbar::ActionButton EditorToolbar::undoButton() const
{
    return {texts::undoSymbol, texts::undoHelp, {QKeySequence(Qt::CTRL | Qt::Key_Z)}, m_model.canUndo()};
}

EditorToolbar::ActionButton EditorToolbar::redoButton() const
{
    return {texts::redoSymbol, texts::redoHelp, {QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)}, m_model.canRedo()};
}

EditorToolbar::ActionButton EditorToolbar::deleteButton() const
{
    // Delete, as drawing programs on Linux take it, and with Control; Command-Backspace, macOS's "delete
    // the selection" chord. Plain Backspace and a Delete typed into a text box stay with the text.
    return {texts::deleteSymbol,
            texts::deleteHelp,
            {QKeySequence(Qt::Key_Delete), QKeySequence(Qt::CTRL | Qt::Key_Delete), QKeySequence(Qt::CTRL | Qt::Key_Backspace)},
            m_interaction.selectedOverlay().has_value()};
}

// Keys and buttons both end here: an action whose button is disabled does nothing and records nothing.
// A selection that undo took out of the document would otherwise record a step and forfeit the redo.
void EditorToolbar::undo()
{
    if (undoButton().isEnabled)
        m_model.undoLastAction();
}

void EditorToolbar::redo()
{
    if (redoButton().isEnabled)
        m_model.redoLastAction();
}

void EditorToolbar::deleteSelected()
{
    if (deleteButton().isEnabled)
        m_interaction.deleteSelectedOverlay();
}

QList<EditorToolbar::Swatch> EditorToolbar::colorSwatches() const
{
    QList<Swatch> swatches;
    for (const QColor &color : presetColors())
        swatches.append({color, isColorSelected(color)});
    return swatches;
}

QList<EditorToolbar::Swatch> EditorToolbar::textFillSwatches() const
{
    QList<Swatch> swatches;
    for (const QColor &preset : presetTextFillColors()) {
        const QColor color = withAlpha(preset, m_textFillOpacity);
        swatches.append({color, isTextFillColorSelected(color)});
    }
    return swatches;
}

bool EditorToolbar::isColorSelected(const QColor &color) const
{
    return sameColor(color, m_model.selectedColor());
}

bool EditorToolbar::isTextFillColorSelected(const QColor &color) const
{
    return sameColor(color, m_model.selectedTextFillColor());
}

void EditorToolbar::setSelectedColor(const QColor &color)
{
    const QColor picked = inDeviceRGB(color);
    const ImageEditorModel::Edit edit(m_model);
    m_model.setSelectedColor(picked);
    editorstyle::saveEditorColor(m_model.defaults(), picked, editorstyle::editorStrokeColorDefaultsKey);
    if (std::optional<Overlay> overlay = m_interaction.selectedOverlay(); overlay && !sameColor(overlay->color, picked)) {
        overlay->color = picked;
        m_model.replaceOverlay(*overlay);
    }
}

void EditorToolbar::setSelectedTextFillColor(const QColor &color)
{
    const QColor picked = withAlpha(inDeviceRGB(color), m_textFillOpacity);
    const ImageEditorModel::Edit edit(m_model);
    m_model.setSelectedTextFillColor(picked);
    editorstyle::saveEditorColor(m_model.defaults(), picked, editorstyle::editorTextFillColorDefaultsKey);
    if (std::optional<Overlay> overlay = m_interaction.selectedOverlay();
        overlay && !sameColor(overlay->textFillColor, picked)) {
        overlay->textFillColor = picked;
        m_model.replaceOverlay(*overlay);
    }
}

EditorToolbar::Range EditorToolbar::opacitySlider() const
{
    return {0.1, 1.0, 0.1, m_textFillOpacity};
}

void EditorToolbar::setSelectedTextFillOpacity(double opacity)
{
    const double normalized = editorstyle::normalizeEditorTextFillOpacity(opacity);
    if (normalized != m_textFillOpacity) {
        m_textFillOpacity = normalized;
        emit textFillOpacityChanged();
    }
    const ImageEditorModel::Edit edit(m_model);
    m_model.setSelectedTextFillColor(
        editorstyle::saveEditorTextFillOpacity(m_model.defaults(), normalized, m_model.selectedTextFillColor()));
    if (std::optional<Overlay> overlay = m_interaction.selectedOverlay()) {
        const QColor fill = withAlpha(overlay->textFillColor, normalized);
        if (!sameColor(overlay->textFillColor, fill)) {
            overlay->textFillColor = fill;
            m_model.replaceOverlay(*overlay);
        }
    }
}

QStringList EditorToolbar::fontFamilies() const
{
    QStringList families = QFontDatabase::families();
    const QString selected = selectedFontFamily();
    if (!families.contains(selected, Qt::CaseInsensitive))
        families.prepend(selected);
    return families;
}

QString EditorToolbar::selectedFontFamily() const
{
    const std::optional<Overlay> overlay = m_interaction.selectedOverlay();
    return overlay ? overlay->fontFamily : m_model.selectedTextFontFamily();
}

void EditorToolbar::setSelectedFontFamily(const QString &family)
{
    const ImageEditorModel::Edit edit(m_model);
    m_model.setSelectedTextFontFamily(family);
    if (std::optional<Overlay> overlay = m_interaction.selectedOverlay()) {
        overlay->fontFamily = family;
        m_model.replaceOverlay(*overlay);
    }
}

EditorToolbar::Range EditorToolbar::fontSizeStepper() const
{
    return {editorrender::minimumFontSize, editorrender::maximumFontSize, 1, selectedFontSize()};
}

double EditorToolbar::selectedFontSize() const
{
    const std::optional<Overlay> overlay = m_interaction.selectedOverlay();
    return overlay ? overlay->fontSize : m_model.selectedTextFontSize();
}

void EditorToolbar::setSelectedFontSize(double size)
{
    if (std::isnan(size))
        return;
    const double clamped = std::clamp(size, editorrender::minimumFontSize, editorrender::maximumFontSize);
    const ImageEditorModel::Edit edit(m_model);
    m_model.setSelectedTextFontSize(clamped);
    if (std::optional<Overlay> overlay = m_interaction.selectedOverlay()) {
        overlay->fontSize = clamped;
        m_model.replaceOverlay(*overlay);
    }
}

QString EditorToolbar::text(const QUuid &overlayID) const
{
    const std::optional<qsizetype> index = m_model.indexOfOverlay(overlayID);
    return index ? m_model.overlays().at(*index).text : QString();
}

void EditorToolbar::setText(const QUuid &overlayID, const QString &text)
{
    const std::optional<qsizetype> index = m_model.indexOfOverlay(overlayID);
    if (!index)
        return;
    Overlay overlay = m_model.overlays().at(*index);
    overlay.text = text;
    m_model.replaceOverlay(overlay);
}
