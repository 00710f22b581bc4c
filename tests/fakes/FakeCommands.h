#pragma once

#include "capture/CaptureCommands.h"
#include "editor/EditorCommands.h"
#include "update/UpdateCommands.h"

#include <QStringList>

// Records what the application shell asked of the subsystems, in one list.
class FakeCommands final : public CaptureCommands, public EditorCommands, public UpdateCommands
{
public:
    void startSelection() override { calls.append(QStringLiteral("startSelection")); }
    void captureLastSelection() override { calls.append(QStringLiteral("captureLastSelection")); }
    void openEditorLauncher() override { calls.append(QStringLiteral("openEditorLauncher")); }
    void openEditor(bool openInNewWindow) override
    {
        calls.append(openInNewWindow ? QStringLiteral("openEditor(new)") : QStringLiteral("openEditor(reuse)"));
    }
    void checkForUpdates() override { calls.append(QStringLiteral("checkForUpdates")); }

    QStringList calls;
};
