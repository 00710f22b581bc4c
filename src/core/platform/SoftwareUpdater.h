#pragma once

#include <QDateTime>
#include <QString>

#include <functional>
#include <optional>

// The update framework (Sparkle on macOS; an appcast reader on Linux). It owns checking, downloading and
// the update dialogs; the application only starts it, mirrors its state and asks for checks.
class SoftwareUpdater
{
public:
    virtual ~SoftwareUpdater() = default;

    // Why updates cannot work in this build (no framework, no feed), or nothing when they can.
    virtual std::optional<QString> unavailableReason() const = 0;
    virtual void start() = 0;
    virtual bool canCheckForUpdates() const = 0;
    // Called on the main thread whenever canCheckForUpdates changes.
    virtual void observeCanCheckForUpdates(std::function<void(bool)> observer) = 0;
    virtual bool automaticallyChecksForUpdates() const = 0;
    virtual void setAutomaticallyChecksForUpdates(bool on) = 0;
    virtual std::optional<QDateTime> lastUpdateCheckDate() const = 0;
    // A check the user asked for, with the framework's own dialogs.
    virtual void checkForUpdates() = 0;
};
