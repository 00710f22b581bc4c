#pragma once

#include "platform/EditorWindowFactory.h"

// Editor windows as Qt widgets. Main thread.
class QtEditorWindowFactory final : public EditorWindowFactory
{
public:
    std::unique_ptr<EditorWindow> makeEditorWindow(const EditorWindow::Configuration &configuration) override;
};
