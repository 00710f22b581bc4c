#pragma once

#include "platform/EditorWindow.h"

#include <memory>

// Makes editor windows, hidden, with the title, content size and minimum size given.
class EditorWindowFactory
{
public:
    virtual ~EditorWindowFactory() = default;
    virtual std::unique_ptr<EditorWindow> makeEditorWindow(const EditorWindow::Configuration &configuration) = 0;
};
