#pragma once

#include "editor/EditorTool.h"

#include <QList>
#include <QWidget>

class ColorSwatchButton;
class EditorZoomControls;
class ImageEditorView;
class QComboBox;
class QPushButton;
class QSlider;
class QSpinBox;
class QToolButton;

// The toolbar above an editor's canvas, laid out from the view's toolbar data: the tools and the
// mode, undo, redo and delete, the stroke and fill palettes, the fill opacity, the font and its size,
// and the zoom. Each control calls the toolbar; refresh() shows the data again. Main thread.
class EditorToolbarWidget final : public QWidget
{
    Q_OBJECT

public:
    explicit EditorToolbarWidget(ImageEditorView &view, QWidget *parent = nullptr);
    ~EditorToolbarWidget() override;

    void refresh();

    QToolButton *toolButton(EditorTool tool) const;
    QToolButton *drawModeButton() const { return m_drawMode; }
    QToolButton *editModeButton() const { return m_editMode; }
    QToolButton *undoButton() const { return m_undo; }
    QToolButton *redoButton() const { return m_redo; }
    QToolButton *deleteButton() const { return m_delete; }
    const QList<ColorSwatchButton *> &colorSwatches() const { return m_colorSwatches; }
    const QList<ColorSwatchButton *> &fillSwatches() const { return m_fillSwatches; }
    QSlider *opacitySlider() const { return m_opacity; }
    QComboBox *fontPicker() const { return m_font; }
    QSpinBox *fontSizeBox() const { return m_fontSize; }
    EditorZoomControls *zoomControls() const { return m_zoom; }

private:
    QLayout *makeToolRow();
    QLayout *makeStyleRow();
    QLayout *makeTextRow();
    QToolButton *makeActionButton(const QString &symbolName, const QString &helpText);

    ImageEditorView &m_view;
    QList<QToolButton *> m_toolButtons;
    QToolButton *m_drawMode = nullptr;
    QToolButton *m_editMode = nullptr;
    QToolButton *m_undo = nullptr;
    QToolButton *m_redo = nullptr;
    QToolButton *m_delete = nullptr;
    QList<ColorSwatchButton *> m_colorSwatches;
    QList<ColorSwatchButton *> m_fillSwatches;
    QSlider *m_opacity = nullptr;
    QComboBox *m_font = nullptr;
    QSpinBox *m_fontSize = nullptr;
    EditorZoomControls *m_zoom = nullptr;
};
