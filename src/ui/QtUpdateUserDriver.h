#pragma once

#include "platform/UpdateUserDriver.h"

// The update dialogs as Qt message boxes, titled "Vistrel". Main thread.
class QtUpdateUserDriver final : public UpdateUserDriver
{
public:
    bool runModalOffer(const QString &messageText, const QString &informativeText, const QString &acceptTitle,
                       const QString &declineTitle) override;
    void runModalNotice(const QString &messageText, const QString &informativeText) override;
};
