#include "QtEditorWindowFactory.h"

#include "QtEditorWindow.h"

std::unique_ptr<EditorWindow> QtEditorWindowFactory::makeEditorWindow(const EditorWindow::Configuration &configuration)
{
    return std::make_unique<QtEditorWindow>(configuration);
}
