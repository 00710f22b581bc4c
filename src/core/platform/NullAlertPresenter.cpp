#include "platform/NullAlertPresenter.h"

#include "platform/SystemLog.h"

using namespace Qt::StringLiterals;

void NullAlertPresenter::runModalAlert(const QString &messageText, const QString &informativeText)
{
    m_systemLog.log(u"Vistrel: "_s % messageText % u' ' % informativeText);
}
