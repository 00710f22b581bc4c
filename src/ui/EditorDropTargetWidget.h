#pragma once

#include <QWidget>

#include <memory>

class EditorDropTargetView;

// The empty editor's content: the rounded panel that takes a dropped image file, with the photo
// symbol, the two texts and the three buttons. It forwards drags, drops and buttons to the view and
// paints the panel with the fill the view names. Main thread.
class EditorDropTargetWidget final : public QWidget
{
    Q_OBJECT

public:
    explicit EditorDropTargetWidget(std::shared_ptr<EditorDropTargetView> view, QWidget *parent = nullptr);
    ~EditorDropTargetWidget() override;

    EditorDropTargetView &view() const { return *m_view; }
    // The panel's fill as painted now.
    QColor panelColor() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;

private:
    QRectF panelRect() const;

    std::shared_ptr<EditorDropTargetView> m_view;
};
