#pragma once

#include <QString>

// The dialogs of an updater that has none of its own (on macOS Sparkle brings its own): an offer the
// user accepts or declines, and a notice with one button. Each returns once the user answered.
class UpdateUserDriver
{
public:
    virtual ~UpdateUserDriver() = default;

    // True when the user chose `acceptTitle`.
    virtual bool runModalOffer(const QString &messageText, const QString &informativeText, const QString &acceptTitle,
                               const QString &declineTitle) = 0;
    virtual void runModalNotice(const QString &messageText, const QString &informativeText) = 0;
};
