#include "QtFolderChooser.h"

#include <QFileDialog>

std::optional<QString> QtFolderChooser::chooseFolder(const QString &startFolder, const QString &prompt)
{
    QFileDialog dialog;
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly, true);
    dialog.setDirectory(startFolder);
    dialog.setLabelText(QFileDialog::Accept, prompt);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    return dialog.selectedFiles().constFirst();
}
