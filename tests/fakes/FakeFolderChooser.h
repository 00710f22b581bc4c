#pragma once

#include "platform/FolderChooser.h"

class FakeFolderChooser final : public FolderChooser
{
public:
    std::optional<QString> chooseFolder(const QString &startFolder, const QString &prompt) override
    {
        lastStartFolder = startFolder;
        lastPrompt = prompt;
        return answer;
    }

    // Nothing means the user cancelled.
    std::optional<QString> answer;
    QString lastStartFolder;
    QString lastPrompt;
};
