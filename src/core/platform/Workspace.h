#pragma once

#include <QUrl>

// Opens URLs with the system's handler (NSWorkspace.open on macOS; the desktop's opener on Linux). The
// adapter decides what a URL of another system (such as a System Settings pane) means on its own.
class Workspace
{
public:
    virtual ~Workspace() = default;

    // False when nothing could open it.
    virtual bool openURL(const QUrl &url) = 0;
};
