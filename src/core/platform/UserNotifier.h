#pragma once

#include <QString>

#include <functional>
#include <optional>

// User notifications with a click action (UserNotifications on macOS, org.freedesktop.Notifications on
// Linux). Completions may arrive on any thread; callers post back to the main thread.
class UserNotifier
{
public:
    struct Request
    {
        QString identifier;
        QString title;
        QString body;
        QString categoryIdentifier;
        bool playsDefaultSound = true;
        // Delivered after this many seconds, once.
        double triggerDelaySeconds = 0;
    };

    // Error description, or nothing on success.
    using ErrorCompletion = std::function<void(std::optional<QString> error)>;
    using AuthorizationCompletion = std::function<void(bool granted, std::optional<QString> error)>;
    // The category of the notification the user responded to; called on the main thread.
    using ResponseHandler = std::function<void(const QString &categoryIdentifier)>;

    virtual ~UserNotifier() = default;

    virtual void setResponseHandler(ResponseHandler handler) = 0;
    // Alert, sound and badge.
    virtual void requestAuthorization(AuthorizationCompletion completion) = 0;
    // One category per identifier, without actions.
    virtual void setCategories(const QStringList &categoryIdentifiers) = 0;
    virtual void add(const Request &request, ErrorCompletion completion) = 0;
};
