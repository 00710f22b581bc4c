#pragma once

#include <QStringList>
#include <QUrl>

#include <optional>

// The system's modal file-open panel.
class OpenPanel
{
public:
    struct Request
    {
        // The text of the confirming button.
        QString prompt;
        // MIME types of the files offered; every other file is greyed out.
        QStringList allowedContentTypes;
        bool allowsMultipleSelection = false;
        bool canChooseDirectories = false;
        bool canChooseFiles = true;
    };

    virtual ~OpenPanel() = default;
    // The chosen file, or nothing when the user cancelled.
    virtual std::optional<QUrl> runModal(const Request &request) = 0;
};
