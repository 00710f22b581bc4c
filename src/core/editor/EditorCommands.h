#pragma once

// What the application shell asks of the editor windows.
class EditorCommands
{
public:
    virtual ~EditorCommands() = default;
    // The empty editor, ready for a file, a paste or a drop.
    virtual void openEditorLauncher() = 0;
    // The document prepared by the last capture.
    virtual void openEditor(bool openInNewWindow) = 0;
};
