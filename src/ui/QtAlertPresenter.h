#pragma once

#include "platform/AlertPresenter.h"

// Modal alerts as message boxes with one OK button. Main thread.
class QtAlertPresenter final : public AlertPresenter
{
public:
    void runModalAlert(const QString &messageText, const QString &informativeText) override;
};
