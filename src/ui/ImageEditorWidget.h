#pragma once

#include "editor/ImageEditorView.h"

#include <QWidget>

#include <memory>

class EditorCanvasWidget;
class EditorToolbarWidget;
class QPushButton;
class QScrollArea;

// The editor of one document as the content of an editor window: the toolbar, the canvas in a
// scroll area that scrolls both ways, and "キャンセル" and "決定" at the bottom ("決定" is the
// default button). The window's editing keys (undo, redo, delete) are shortcuts here. It redraws
// the parts the view names as changed, keeps the middle of the view in place when the canvas is
// resized, and centres the image while the first layout passes settle. Main thread.
class ImageEditorWidget final : public QWidget
{
    Q_OBJECT

public:
    explicit ImageEditorWidget(std::shared_ptr<ImageEditorView> view, QWidget *parent = nullptr);
    ~ImageEditorWidget() override;

    ImageEditorView &view() const { return *m_view; }
    EditorToolbarWidget *toolbar() const { return m_toolbar; }
    EditorCanvasWidget *canvas() const { return m_canvas; }
    QScrollArea *scrollArea() const { return m_scrollArea; }
    QPushButton *saveButton() const { return m_save; }
    QPushButton *cancelButton() const { return m_cancel; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addShortcuts();
    QLayout *makeBottomRow();
    void viewChanged(ImageEditorView::Parts parts);
    void canvasGeometryChanged();
    void centerOn(QPointF anchor);
    void save();

    std::shared_ptr<ImageEditorView> m_view;
    EditorToolbarWidget *m_toolbar = nullptr;
    QScrollArea *m_scrollArea = nullptr;
    EditorCanvasWidget *m_canvas = nullptr;
    QPushButton *m_cancel = nullptr;
    QPushButton *m_save = nullptr;
    double m_shownZoom = 1;
};
