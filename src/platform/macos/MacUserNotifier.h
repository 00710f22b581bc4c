#pragma once

#include "platform/UserNotifier.h"

#include <memory>

// User notifications through UNUserNotificationCenter. The centre's delegate shows our notifications as
// banners with sound even while Vistrel is in front, and hands a click (any response) to the response
// handler on the main queue. The centre exists only for a program inside an application bundle; a
// program started outside one is refused every request with a message, and captures go on without
// notifications. Main thread; completions may arrive on any thread.
class MacUserNotifier final : public UserNotifier
{
public:
    MacUserNotifier();
    ~MacUserNotifier() override;

    void setResponseHandler(ResponseHandler handler) override;
    void requestAuthorization(AuthorizationCompletion completion) override;
    void setCategories(const QStringList &categoryIdentifiers) override;
    void add(const Request &request, ErrorCompletion completion) override;

private:
    struct Center;
    std::unique_ptr<Center> m_center;
};
