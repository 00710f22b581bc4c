#pragma once

#include "platform/OpenPanel.h"

class DiagnosticsLog;

// Stands in where the platform set has no file-open panel: every request is a cancel, traced.
class NullOpenPanel final : public OpenPanel
{
public:
    explicit NullOpenPanel(DiagnosticsLog &diagnostics) : m_diagnostics(diagnostics) {}
    std::optional<QUrl> runModal(const Request &request) override;

private:
    DiagnosticsLog &m_diagnostics;
};
