#pragma once

#include <QString>

// Modal alerts (NSAlert; a message box elsewhere) with one button that dismisses them.
class AlertPresenter
{
public:
    virtual ~AlertPresenter() = default;
    // Returns once the user dismissed the alert.
    virtual void runModalAlert(const QString &messageText, const QString &informativeText) = 0;
};
