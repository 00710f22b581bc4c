#pragma once

#include "platform/Workspace.h"

// Opens URLs with NSWorkspace: web pages in the browser, System Settings panes
// ("x-apple.systempreferences:…") in System Settings. Main thread.
class MacWorkspace final : public Workspace
{
public:
    bool openURL(const QUrl &url) override;
};
