#include "EditorCanvasWidget.h"

#include "OverlayTextField.h"

#include "editor/ImageEditorView.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include <cmath>

EditorCanvasWidget::EditorCanvasWidget(ImageEditorView &view, QList<QKeySequence> textFieldKeys, QWidget *parent)
    : QWidget(parent), m_view(view), m_textFieldKeys(std::move(textFieldKeys))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::ClickFocus);
    syncWithView();
}

EditorCanvasWidget::~EditorCanvasWidget() = default;

QSize EditorCanvasWidget::sizeHint() const
{
    const QSizeF size = m_view.viewport().zoomedCanvasSize();
    return QSize(int(std::ceil(size.width())), int(std::ceil(size.height())));
}

void EditorCanvasWidget::syncWithView()
{
    const QSize size = sizeHint();
    if (this->size() != size)
        setFixedSize(size);
    syncTextFields();
    update();
}

void EditorCanvasWidget::syncContent()
{
    if (size() != sizeHint()) {
        syncWithView();
        return;
    }
    syncTextFields();
    updateDamage();
}

void EditorCanvasWidget::syncTextFields()
{
    QHash<QUuid, OverlayTextField *> stale = m_textFields;
    for (const ImageEditorView::TextField &entry : m_view.textFields()) {
        OverlayTextField *field = stale.take(entry.overlayID);
        if (!field) {
            field = new OverlayTextField(entry.overlayID, m_textFieldKeys, this);
            connect(field, &OverlayTextField::textEdited, this, [this](const QUuid &id, const QString &text) {
                m_view.toolbar().setText(id, text);
            });
            m_textFields.insert(entry.overlayID, field);
        }
        field->setGeometry(entry.frame.toAlignedRect());
        if (field->font() != entry.font)
            field->setFont(entry.font);
        field->setTextColor(entry.textColor);
        field->showText(entry.text);
        // Elsewhere than in the focused box, a press goes through to the canvas, which selects or
        // moves the box beneath.
        field->setAttribute(Qt::WA_TransparentForMouseEvents, !entry.acceptsPointer);
        field->setFocusPolicy(entry.acceptsPointer ? Qt::StrongFocus : Qt::NoFocus);
        field->show();
    }
    for (OverlayTextField *field : std::as_const(stale)) {
        m_textFields.remove(field->overlayID());
        field->hide();
        field->deleteLater();
    }
}

void EditorCanvasWidget::syncTextFocus()
{
    syncTextFields();
    for (const ImageEditorView::TextField &entry : m_view.textFields()) {
        OverlayTextField *field = m_textFields.value(entry.overlayID);
        if (entry.isFocused && field && !field->hasFocus()) {
            field->setFocus(Qt::OtherFocusReason);
            // All of it selected, as a text field that takes the focus has it: typing replaces it.
            field->selectAll();
            return;
        }
    }
    // No box has the keys: the window's shortcuts get them.
    if (QWidget *focused = focusWidget(); focused && focused->parentWidget() == this)
        setFocus(Qt::OtherFocusReason);
}

void EditorCanvasWidget::updateDamage()
{
    const std::optional<QRegion> &damage = m_view.canvasDamage();
    if (!damage)
        update();
    else if (!damage->isEmpty())
        update(*damage);
}

void EditorCanvasWidget::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    m_view.paintCanvas(painter, event->region());
}

void EditorCanvasWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason);
    m_isPressed = true;
    m_view.pointerPressed(event->position());
}

void EditorCanvasWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (m_isPressed && event->buttons().testFlag(Qt::LeftButton))
        m_view.pointerMoved(event->position());
}

void EditorCanvasWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_isPressed)
        return;
    m_isPressed = false;
    m_view.pointerReleased(event->position());
}

bool EditorCanvasWidget::event(QEvent *event)
{
    // The press will get no release: the window lost the focus to another one, or the canvas went.
    const bool losesPointer = event->type() == QEvent::WindowDeactivate || event->type() == QEvent::Hide;
    if (losesPointer && m_isPressed) {
        m_isPressed = false;
        m_view.pointerCancelled();
    }
    return QWidget::event(event);
}
