#include "EditorToolbarWidget.h"

#include "ColorSwatchButton.h"
#include "EditorZoomControls.h"
#include "SymbolIcons.h"

#include "editor/EditorToolbar.h"
#include "editor/EditorToolbarTexts.h"
#include "editor/ImageEditorView.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include <cmath>

namespace texts = editortoolbartexts;

namespace {

// The slider works in whole tenths.
constexpr double sliderScale = 10;

QFrame *separator(QWidget *parent)
{
    auto *line = new QFrame(parent);
    line->setFrameShape(QFrame::VLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

QToolButton *checkableButton(const QString &title, QWidget *parent)
{
    auto *button = new QToolButton(parent);
    button->setText(title);
    button->setCheckable(true);
    button->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return button;
}

QLabel *heading(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    QFont font = label->font();
    font.setWeight(QFont::DemiBold);
    label->setFont(font);
    return label;
}

} // namespace

EditorToolbarWidget::EditorToolbarWidget(ImageEditorView &view, QWidget *parent) : QWidget(parent), m_view(view)
{
    auto *rows = new QVBoxLayout(this);
    rows->setContentsMargins(12, 8, 12, 8);
    rows->setSpacing(6);
    rows->addLayout(makeToolRow());
    rows->addLayout(makeStyleRow());
    rows->addLayout(makeTextRow());
    refresh();
}

EditorToolbarWidget::~EditorToolbarWidget() = default;

QLayout *EditorToolbarWidget::makeToolRow()
{
    EditorToolbar &toolbar = m_view.toolbar();
    auto *row = new QHBoxLayout;
    auto *tools = new QButtonGroup(this);
    for (const EditorToolbar::ToolButton &entry : toolbar.toolButtons()) {
        QToolButton *button = checkableButton(entry.title, this);
        tools->addButton(button);
        const EditorTool tool = entry.tool;
        connect(button, &QToolButton::clicked, this, [this, tool] { m_view.toolbar().selectTool(tool); });
        m_toolButtons.append(button);
        row->addWidget(button);
    }
    row->addWidget(separator(this));

    const EditorToolbar::ModeToggle mode = toolbar.modeToggle();
    m_drawMode = checkableButton(mode.drawTitle, this);
    m_editMode = checkableButton(mode.editTitle, this);
    auto *modes = new QButtonGroup(this);
    modes->addButton(m_drawMode);
    modes->addButton(m_editMode);
    connect(m_drawMode, &QToolButton::clicked, this, [this] { m_view.toolbar().setDrawMode(true); });
    connect(m_editMode, &QToolButton::clicked, this, [this] { m_view.toolbar().setDrawMode(false); });
    row->addWidget(m_drawMode);
    row->addWidget(m_editMode);
    row->addWidget(separator(this));

    m_undo = makeActionButton(toolbar.undoButton().symbolName, toolbar.undoButton().helpText);
    m_redo = makeActionButton(toolbar.redoButton().symbolName, toolbar.redoButton().helpText);
    m_delete = makeActionButton(toolbar.deleteButton().symbolName, toolbar.deleteButton().helpText);
    connect(m_undo, &QToolButton::clicked, this, [this] { m_view.toolbar().undo(); });
    connect(m_redo, &QToolButton::clicked, this, [this] { m_view.toolbar().redo(); });
    connect(m_delete, &QToolButton::clicked, this, [this] { m_view.toolbar().deleteSelected(); });
    row->addWidget(m_undo);
    row->addWidget(m_redo);
    row->addWidget(m_delete);
    row->addStretch();
    return row;
}

QToolButton *EditorToolbarWidget::makeActionButton(const QString &symbolName, const QString &helpText)
{
    auto *button = new QToolButton(this);
    button->setIcon(symbolicons::icon(symbolName, style()));
    button->setToolTip(helpText);
    button->setAccessibleName(helpText);
    button->setAutoRaise(true);
    return button;
}

QLayout *EditorToolbarWidget::makeStyleRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(2);
    row->addWidget(heading(texts::color, this));
    for (const EditorToolbar::Swatch &entry : m_view.toolbar().colorSwatches()) {
        auto *swatch = new ColorSwatchButton(this);
        swatch->setColor(entry.color);
        connect(swatch, &ColorSwatchButton::clicked, this,
                [this, color = entry.color] { m_view.toolbar().setSelectedColor(color); });
        m_colorSwatches.append(swatch);
        row->addWidget(swatch);
    }
    row->addSpacing(12);
    row->addWidget(heading(texts::fill, this));
    for (qsizetype i = 0; i < EditorToolbar::presetTextFillColors().size(); ++i) {
        auto *swatch = new ColorSwatchButton(this);
        // The preset itself: the toolbar gives it the opacity in use.
        connect(swatch, &ColorSwatchButton::clicked, this, [this, i] {
            m_view.toolbar().setSelectedTextFillColor(EditorToolbar::presetTextFillColors().at(i));
        });
        m_fillSwatches.append(swatch);
        row->addWidget(swatch);
    }
    row->addSpacing(12);
    row->addWidget(heading(texts::opacity, this));
    const EditorToolbar::Range range = m_view.toolbar().opacitySlider();
    m_opacity = new QSlider(Qt::Horizontal, this);
    m_opacity->setFixedWidth(int(EditorToolbar::opacitySliderWidth));
    m_opacity->setRange(int(std::lround(range.minimum * sliderScale)), int(std::lround(range.maximum * sliderScale)));
    m_opacity->setSingleStep(int(std::lround(range.step * sliderScale)));
    m_opacity->setPageStep(m_opacity->singleStep());
    m_opacity->setAccessibleName(texts::opacity);
    connect(m_opacity, &QSlider::valueChanged, this,
            [this](int value) { m_view.toolbar().setSelectedTextFillOpacity(value / sliderScale); });
    row->addWidget(m_opacity);
    row->addStretch();
    return row;
}

QLayout *EditorToolbarWidget::makeTextRow()
{
    auto *row = new QHBoxLayout;
    row->addWidget(heading(texts::font, this));
    m_font = new QComboBox(this);
    m_font->setAccessibleName(texts::font);
    m_font->addItems(m_view.toolbar().fontFamilies());
    m_font->setMaxVisibleItems(20);
    m_font->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    m_font->setMinimumContentsLength(16);
    connect(m_font, &QComboBox::activated, this,
            [this](int index) { m_view.toolbar().setSelectedFontFamily(m_font->itemText(index)); });
    row->addWidget(m_font);

    row->addWidget(heading(texts::size, this));
    const EditorToolbar::Range range = m_view.toolbar().fontSizeStepper();
    m_fontSize = new QSpinBox(this);
    m_fontSize->setAccessibleName(texts::size);
    m_fontSize->setRange(int(range.minimum), int(range.maximum));
    m_fontSize->setSingleStep(int(range.step));
    // One change (one undo step on a selected box) per finished entry, not per digit typed.
    m_fontSize->setKeyboardTracking(false);
    connect(m_fontSize, &QSpinBox::valueChanged, this, [this](int value) { m_view.toolbar().setSelectedFontSize(value); });
    row->addWidget(m_fontSize);
    row->addWidget(separator(this));

    m_zoom = new EditorZoomControls(m_view.viewport(), this);
    row->addWidget(m_zoom);
    row->addStretch();
    return row;
}

QToolButton *EditorToolbarWidget::toolButton(EditorTool tool) const
{
    const QList<EditorToolbar::ToolButton> entries = m_view.toolbar().toolButtons();
    for (qsizetype i = 0; i < entries.size(); ++i)
        if (entries.at(i).tool == tool)
            return m_toolButtons.value(i);
    return nullptr;
}

void EditorToolbarWidget::refresh()
{
    const EditorToolbar &toolbar = m_view.toolbar();
    const QList<EditorToolbar::ToolButton> tools = toolbar.toolButtons();
    for (qsizetype i = 0; i < tools.size() && i < m_toolButtons.size(); ++i)
        m_toolButtons.at(i)->setChecked(tools.at(i).isSelected);
    const bool drawMode = toolbar.modeToggle().isDrawMode;
    m_drawMode->setChecked(drawMode);
    m_editMode->setChecked(!drawMode);
    m_undo->setEnabled(toolbar.undoButton().isEnabled);
    m_redo->setEnabled(toolbar.redoButton().isEnabled);
    m_delete->setEnabled(toolbar.deleteButton().isEnabled);

    const QList<EditorToolbar::Swatch> colors = toolbar.colorSwatches();
    for (qsizetype i = 0; i < colors.size() && i < m_colorSwatches.size(); ++i)
        m_colorSwatches.at(i)->setChosen(colors.at(i).isSelected);
    const QList<EditorToolbar::Swatch> fills = toolbar.textFillSwatches();
    for (qsizetype i = 0; i < fills.size() && i < m_fillSwatches.size(); ++i) {
        m_fillSwatches.at(i)->setColor(fills.at(i).color);
        m_fillSwatches.at(i)->setChosen(fills.at(i).isSelected);
    }
    {
        const QSignalBlocker blocker(m_opacity);
        m_opacity->setValue(int(std::lround(toolbar.opacitySlider().value * sliderScale)));
    }
    {
        const QSignalBlocker blocker(m_font);
        const QString family = toolbar.selectedFontFamily();
        int index = m_font->findText(family, Qt::MatchFixedString);
        if (index < 0) {
            m_font->insertItem(0, family);
            index = 0;
        }
        m_font->setCurrentIndex(index);
    }
    {
        const QSignalBlocker blocker(m_fontSize);
        m_fontSize->setValue(int(std::lround(toolbar.selectedFontSize())));
    }
    m_zoom->refresh();
}
