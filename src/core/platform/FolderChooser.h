#pragma once

#include <QString>

#include <optional>

// The system's modal folder chooser (one folder, no files).
class FolderChooser
{
public:
    virtual ~FolderChooser() = default;
    // The chosen folder's path, or nothing when the user cancelled.
    virtual std::optional<QString> chooseFolder(const QString &startFolder, const QString &prompt) = 0;
};
