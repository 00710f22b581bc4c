#include "QtAlertPresenter.h"

#include <QMessageBox>

void QtAlertPresenter::runModalAlert(const QString &messageText, const QString &informativeText)
{
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Vistrel"), messageText, QMessageBox::Ok);
    box.setInformativeText(informativeText);
    box.exec();
}
