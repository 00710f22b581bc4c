#pragma once

#include <QHash>
#include <QKeySequence>
#include <QList>
#include <QUuid>
#include <QWidget>

class ImageEditorView;
class OverlayTextField;

// The canvas of an editor view: a widget of the zoomed canvas size (it sits in a scroll area),
// painted by the view and forwarding the left button's presses, moves and releases to the view in
// view points. The text boxes' fields are its children, placed where the view says and
// writing their text through the toolbar. Main thread.
class EditorCanvasWidget final : public QWidget
{
    Q_OBJECT

public:
    // `textFieldKeys` are the window's keys that the text fields leave to the window.
    EditorCanvasWidget(ImageEditorView &view, QList<QKeySequence> textFieldKeys, QWidget *parent = nullptr);
    ~EditorCanvasWidget() override;

    QSize sizeHint() const override;
    OverlayTextField *textField(const QUuid &overlayID) const { return m_textFields.value(overlayID); }
    QList<OverlayTextField *> textFields() const { return m_textFields.values(); }

    // Follows the view: size, text fields, then a repaint.
    void syncWithView();
    // The same after a change of the document, repainting only what it damaged.
    void syncContent();
    // Gives the keyboard to the field of the box the view focuses, if any.
    void syncTextFocus();
    // Repaints what the view's last change damaged.
    void updateDamage();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    bool event(QEvent *event) override;

private:
    void syncTextFields();

    ImageEditorView &m_view;
    QList<QKeySequence> m_textFieldKeys;
    QHash<QUuid, OverlayTextField *> m_textFields;
    bool m_isPressed = false;
};
