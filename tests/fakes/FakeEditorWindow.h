#pragma once

#include "platform/EditorWindow.h"

// Records what the window manager did with the window; the test closes it the way a user would.
class FakeEditorWindow : public EditorWindow
{
public:
    explicit FakeEditorWindow(const Configuration &configuration)
        : contentSize(configuration.contentSize), minimumSize(configuration.minimumSize)
    {
    }

    void setContent(const EditorRootView &newContent) override
    {
        content = newContent;
        ++contentChanges;
    }
    void setContentSize(QSizeF size) override { contentSize = size; }
    void setMinimumSize(QSizeF size) override { minimumSize = size; }
    void center() override { ++centerCount; }
    void makeKeyAndOrderFront() override { isVisible = true; }
    void close() override
    {
        isVisible = false;
        ++closeCount;
        windowWillClose();
    }

    // The close button of the title bar.
    void userCloses() { close(); }

    template<typename View>
    std::shared_ptr<View> contentAs() const
    {
        const auto *view = std::get_if<std::shared_ptr<View>>(&content);
        return view ? *view : nullptr;
    }

    EditorRootView content;
    QSizeF contentSize;
    QSizeF minimumSize;
    bool isVisible = false;
    int contentChanges = 0;
    int centerCount = 0;
    int closeCount = 0;
};
