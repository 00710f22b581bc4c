#pragma once

#include "platform/EditorWindow.h"

#include <QPointer>
#include <QWidget>

class QLabel;

// An editor window as a top-level widget: title, sizes, centring, showing and closing, Ctrl+Q handed to
// the window manager's key-equivalent rule, and the close observers. Closing hides the widget, which
// stays usable. The document's picture is shown as it was taken; the editing canvas, the tool bars and
// the empty editor's drop area are built by the editor's own widgets. Main thread.
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

private:
    class Widget;
    friend class Widget;

    QPointer<QWidget> m_widget;
    QLabel *m_picture = nullptr;
    EditorRootView m_content;
};
