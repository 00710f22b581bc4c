#include "QtUpdateUserDriver.h"

#include <QMessageBox>
#include <QPushButton>

bool QtUpdateUserDriver::runModalOffer(const QString &messageText, const QString &informativeText,
                                       const QString &acceptTitle, const QString &declineTitle)
{
    QMessageBox box(QMessageBox::Information, QStringLiteral("Vistrel"), messageText);
    box.setInformativeText(informativeText);
    QPushButton *accept = box.addButton(acceptTitle, QMessageBox::AcceptRole);
    box.addButton(declineTitle, QMessageBox::RejectRole);
    box.setDefaultButton(accept);
    box.exec();
    return box.clickedButton() == accept;
}

void QtUpdateUserDriver::runModalNotice(const QString &messageText, const QString &informativeText)
{
    QMessageBox box(QMessageBox::Information, QStringLiteral("Vistrel"), messageText, QMessageBox::Ok);
    box.setInformativeText(informativeText);
    box.exec();
}
