#pragma once

#include "editor/EditorTool.h"
#include "editor/Overlay.h"

#include <QColor>
#include <QKeySequence>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QUuid>

class CanvasInteraction;
class ImageEditorModel;

// The toolbar of an editor view as data, and what its controls do. Every style control sets the style
// of new overlays (kept in the model and remembered in the preferences) and restyles the selected
// overlay, both in one edit of the document: one undo step when the overlay changes, none otherwise. It reads the model and the interaction state, so
// it follows undo, redo and selection at once. Main thread only.
class EditorToolbar final : public QObject
{
    Q_OBJECT

public:
    struct ToolButton
    {
        EditorTool tool;
        QString title;
        bool isSelected;
    };
    struct ActionButton
    {
        QString symbolName;
        QString helpText;
        // Qt's Control is Command on macOS. The first is the one the help text names.
        QList<QKeySequence> shortcuts;
        bool isEnabled;
    };
    struct Swatch
    {
        QColor color;
        bool isSelected;
    };
    struct ModeToggle
    {
        QString drawTitle;
        QString editTitle;
        bool isDrawMode;
    };
    enum class BottomAction { Cancel, Save };
    struct BottomButton
    {
        QString title;
        BottomAction action;
        // Return triggers the default button of the window.
        bool isDefault;
    };
    struct Range
    {
        double minimum;
        double maximum;
        double step;
        double value;
    };

    static constexpr double opacitySliderWidth = 140;
    static const QList<QColor> &presetColors();
    static const QList<QColor> &presetTextFillColors();
    // Equal in device RGB, each component (alpha included) within 0.01.
    static bool sameColor(const QColor &a, const QColor &b);

    EditorToolbar(ImageEditorModel &model, CanvasInteraction &interaction, QObject *parent = nullptr);

    QList<ToolButton> toolButtons() const;
    void selectTool(EditorTool tool);

    ModeToggle modeToggle() const;
    void setDrawMode(bool drawMode);
    // "キャンセル" then "決定".
    static QList<BottomButton> bottomButtons();

    ActionButton undoButton() const;
    ActionButton redoButton() const;
    ActionButton deleteButton() const;
    // Each does nothing while its button is disabled.
    void undo();
    void redo();
    void deleteSelected();

    QList<Swatch> colorSwatches() const;
    // The fill swatches carry the current opacity, so each shows the fill as a box will get it.
    QList<Swatch> textFillSwatches() const;
    bool isColorSelected(const QColor &color) const;
    bool isTextFillColorSelected(const QColor &color) const;
    void setSelectedColor(const QColor &color);
    void setSelectedTextFillColor(const QColor &color);

    Range opacitySlider() const;
    void setSelectedTextFillOpacity(double opacity);

    // The installed families; the selected one comes first when it is not installed.
    QStringList fontFamilies() const;
    QString selectedFontFamily() const;
    void setSelectedFontFamily(const QString &family);
    Range fontSizeStepper() const;
    double selectedFontSize() const;
    void setSelectedFontSize(double size);

    // The text field of a text box.
    QString text(const QUuid &overlayID) const;
    void setText(const QUuid &overlayID, const QString &text);

signals:
    void textFillOpacityChanged();

private:
    ImageEditorModel &m_model;
    CanvasInteraction &m_interaction;
    double m_textFillOpacity;
};
