#pragma once

#include "platform/Workspace.h"

#include <functional>

// Opens URLs with the desktop's handler (xdg-open through QDesktopServices). URLs that only mean
// something on macOS (its System Settings panes) have nothing to open here: they are reported to the
// trace and refused. Main thread.
class DesktopWorkspace final : public Workspace
{
public:
    using Trace = std::function<void(const QString &line)>;

    void setTrace(Trace trace) { m_trace = std::move(trace); }
    bool openURL(const QUrl &url) override;

private:
    Trace m_trace;
};
