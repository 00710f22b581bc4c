#pragma once

#include "platform/EditorWindowFactory.h"

class DiagnosticsLog;

// Stands in where the platform set has no editor windows yet: its windows show nothing, and each one
// made says so in the diagnostics trace. The editor's documents, notifications and saving still work.
class NullEditorWindowFactory final : public EditorWindowFactory
{
public:
    explicit NullEditorWindowFactory(DiagnosticsLog &diagnostics) : m_diagnostics(diagnostics) {}
    std::unique_ptr<EditorWindow> makeEditorWindow(const EditorWindow::Configuration &configuration) override;

private:
    DiagnosticsLog &m_diagnostics;
};
