#include "QtOpenPanel.h"

#include <QFileDialog>

std::optional<QUrl> QtOpenPanel::runModal(const Request &request)
{
    QFileDialog dialog;
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    if (request.canChooseDirectories && !request.canChooseFiles)
        dialog.setFileMode(QFileDialog::Directory);
    else
        dialog.setFileMode(request.allowsMultipleSelection ? QFileDialog::ExistingFiles : QFileDialog::ExistingFile);
    if (!request.allowedContentTypes.isEmpty())
        dialog.setMimeTypeFilters(request.allowedContentTypes);
    if (!request.prompt.isEmpty())
        dialog.setLabelText(QFileDialog::Accept, request.prompt);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedUrls().isEmpty())
        return std::nullopt;
    return dialog.selectedUrls().first();
}
