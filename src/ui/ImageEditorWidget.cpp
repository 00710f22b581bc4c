#include "ImageEditorWidget.h"

#include "DefaultButton.h"
#include "EditorCanvasWidget.h"
#include "EditorToolbarWidget.h"

#include "editor/EditorToolbar.h"
#include "editor/ImageEditorView.h"

#include <QAbstractSpinBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>

#include <cmath>

namespace {

// The editor's keys that a text box leaves to the window while it has the keyboard; Delete and
// Backspace, with or without Control, stay with the text being typed.
QList<QKeySequence> textFieldPassThroughKeys(const EditorToolbar &toolbar)
{
    QList<QKeySequence> keys = toolbar.undoButton().shortcuts + toolbar.redoButton().shortcuts;
    keys << QKeySequence(Qt::Key_Return) << QKeySequence(Qt::KeypadModifier | Qt::Key_Enter);
    return keys;
}

} // namespace

ImageEditorWidget::ImageEditorWidget(std::shared_ptr<ImageEditorView> view, QWidget *parent)
    : QWidget(parent), m_view(std::move(view)), m_shownZoom(m_view->viewport().zoomScale())
{
    m_toolbar = new EditorToolbarWidget(*m_view, this);
    m_canvas = new EditorCanvasWidget(*m_view, textFieldPassThroughKeys(m_view->toolbar()));
    m_scrollArea = new QScrollArea(this);
    m_scrollArea->setWidget(m_canvas);
    m_scrollArea->setWidgetResizable(false);
    m_scrollArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    // The background on the viewport only: a palette set on the scroll area would reach its scroll
    // bars as a new palette in every editor, and the style caches what it draws under the palette.
    QWidget *viewport = m_scrollArea->viewport();
    QPalette background = viewport->palette();
    background.setColor(QPalette::Window, ImageEditorView::canvasBackground);
    viewport->setPalette(background);
    viewport->setBackgroundRole(QPalette::Window);
    viewport->setAutoFillBackground(true);
    m_scrollArea->viewport()->installEventFilter(this);

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_toolbar);
    column->addWidget(m_scrollArea, 1);
    column->addLayout(makeBottomRow());
    addShortcuts();

    connect(m_view.get(), &ImageEditorView::changed, this, &ImageEditorWidget::viewChanged);
    connect(m_view.get(), &ImageEditorView::focusedTextOverlayChanged, m_canvas, &EditorCanvasWidget::syncTextFocus);
}

ImageEditorWidget::~ImageEditorWidget() = default;

QLayout *ImageEditorWidget::makeBottomRow()
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(12, 8, 12, 12);
    row->addStretch();
    for (const EditorToolbar::BottomButton &entry : EditorToolbar::bottomButtons()) {
        auto *button = new QPushButton(entry.title, this);
        if (entry.action == EditorToolbar::BottomAction::Save) {
            m_save = button;
            connect(button, &QPushButton::clicked, this, &ImageEditorWidget::save);
        } else {
            m_cancel = button;
            connect(button, &QPushButton::clicked, this, [this] { m_view->cancel(); });
        }
        if (entry.isDefault)
            defaultbutton::bind(button);
        row->addWidget(button);
    }
    return row;
}

void ImageEditorWidget::addShortcuts()
{
    const EditorToolbar &toolbar = m_view->toolbar();
    const auto bind = [this](const QList<QKeySequence> &keys, void (EditorToolbar::*action)()) {
        for (const QKeySequence &key : keys) {
            auto *shortcut = new QShortcut(key, this);
            shortcut->setContext(Qt::WindowShortcut);
            connect(shortcut, &QShortcut::activated, this, [this, action] { (m_view->toolbar().*action)(); });
        }
    };
    bind(toolbar.undoButton().shortcuts, &EditorToolbar::undo);
    bind(toolbar.redoButton().shortcuts, &EditorToolbar::redo);
    bind(toolbar.deleteButton().shortcuts, &EditorToolbar::deleteSelected);
}

void ImageEditorWidget::save()
{
    // A size typed but not yet entered counts, as when the field loses the focus.
    if (auto *spinBox = qobject_cast<QAbstractSpinBox *>(focusWidget()))
        spinBox->interpretText();
    m_view->save();
}

void ImageEditorWidget::viewChanged(ImageEditorView::Parts parts)
{
    using Part = ImageEditorView::Part;
    if (parts & Part::CanvasGeometry)
        canvasGeometryChanged();
    else if (parts & Part::CanvasContent)
        m_canvas->syncContent();
    else if (parts & Part::CanvasPaint)
        m_canvas->updateDamage();
    if (parts & Part::Toolbar)
        m_toolbar->refresh();
}

void ImageEditorWidget::canvasGeometryChanged()
{
    const double zoom = m_view->viewport().zoomScale();
    QScrollBar *horizontal = m_scrollArea->horizontalScrollBar();
    QScrollBar *vertical = m_scrollArea->verticalScrollBar();
    const QSize visible = m_scrollArea->viewport()->size();
    // The point in the middle of the visible part stays there when the zoom changes.
    const QPointF middle(horizontal->value() + visible.width() / 2.0, vertical->value() + visible.height() / 2.0);
    m_canvas->syncWithView();
    if (zoom != m_shownZoom && m_shownZoom > 0)
        centerOn(middle * (zoom / m_shownZoom));
    m_shownZoom = zoom;
}

void ImageEditorWidget::centerOn(QPointF anchor)
{
    const QSize visible = m_scrollArea->viewport()->size();
    m_scrollArea->horizontalScrollBar()->setValue(int(std::lround(anchor.x() - visible.width() / 2.0)));
    m_scrollArea->verticalScrollBar()->setValue(int(std::lround(anchor.y() - visible.height() / 2.0)));
}

bool ImageEditorWidget::eventFilter(QObject *watched, QEvent *event)
{
    // The scroll area appeared or took a new size: the first layout passes are still settling.
    if (watched == m_scrollArea->viewport() && (event->type() == QEvent::Show || event->type() == QEvent::Resize)) {
        m_view->viewport().performInitialCentering([this, alive = QPointer<ImageEditorWidget>(this)](QPointF anchor) {
            if (alive)
                centerOn(anchor);
        });
    }
    return QWidget::eventFilter(watched, event);
}
