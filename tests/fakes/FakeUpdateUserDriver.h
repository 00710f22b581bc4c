#pragma once

#include "platform/UpdateUserDriver.h"

#include <QStringList>

class FakeUpdateUserDriver final : public UpdateUserDriver
{
public:
    bool runModalOffer(const QString &messageText, const QString &informativeText, const QString &acceptTitle,
                       const QString &declineTitle) override
    {
        offers.append({messageText, informativeText, acceptTitle, declineTitle});
        return acceptsOffers;
    }
    void runModalNotice(const QString &messageText, const QString &informativeText) override
    {
        notices.append({messageText, informativeText});
    }

    // Message, informative text, then the button titles of each offer shown.
    QList<QStringList> offers;
    // Message and informative text of each notice shown.
    QList<QStringList> notices;
    bool acceptsOffers = true;
};
