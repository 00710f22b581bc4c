#pragma once

#include "platform/AlertPresenter.h"

class SystemLog;

// Stands in where the platform set cannot show alerts: the alert's text goes to the system log.
class NullAlertPresenter final : public AlertPresenter
{
public:
    explicit NullAlertPresenter(SystemLog &systemLog) : m_systemLog(systemLog) {}
    void runModalAlert(const QString &messageText, const QString &informativeText) override;

private:
    SystemLog &m_systemLog;
};
