#pragma once

#include "platform/EditorWindow.h"

#include <QPointer>
#include <QWidget>

// An editor window as a top-level widget: titled, closable, minimisable and resizable, showing the
// drop target or the editor that the window manager gives it. Closing hides it (the manager may show
// it again with new content) and tells the close observers; keys with Control go to the window rules
// first, so Ctrl+Q closes this window and never quits the application. The manager may let go of
// this object inside one of the widget's own events, so the widgets are deleted later. Main thread.
class QtEditorWindow final : public EditorWindow
{
public:
    explicit QtEditorWindow(const Configuration &configuration);
    ~QtEditorWindow() override;

    void setContent(const EditorRootView &content) override;
    void setContentSize(QSizeF size) override;
    void setMinimumSize(QSizeF size) override;
    void center() override;
    void makeKeyAndOrderFront() override;
    void close() override;

    QWidget *widget() const { return m_widget; }
    // The widget that shows the current content.
    QWidget *contentWidget() const { return m_content; }

private:
    class Widget;
    friend class Widget;

    QPointer<QWidget> m_widget;
    QPointer<QWidget> m_content;
};
