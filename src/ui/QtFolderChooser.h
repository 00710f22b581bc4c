#pragma once

#include "platform/FolderChooser.h"

// The folder chooser as a modal Qt file dialog for folders only. Main thread.
class QtFolderChooser final : public FolderChooser
{
public:
    std::optional<QString> chooseFolder(const QString &startFolder, const QString &prompt) override;
};
