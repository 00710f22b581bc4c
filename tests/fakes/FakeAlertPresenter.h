#pragma once

#include "platform/AlertPresenter.h"

#include <QList>
#include <QPair>

class FakeAlertPresenter final : public AlertPresenter
{
public:
    void runModalAlert(const QString &messageText, const QString &informativeText) override
    {
        alerts.append({messageText, informativeText});
    }

    // Message and informative text of each alert shown.
    QList<QPair<QString, QString>> alerts;
};
