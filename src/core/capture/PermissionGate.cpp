#include "capture/PermissionGate.h"

#include "capture/CaptureServices.h"
#include "platform/Scheduler.h"
#include "platform/ScreenCapturePermission.h"
#include "platform/SystemLog.h"
#include "platform/Workspace.h"

#include <QUrl>

void PermissionGate::ensureScreenCapturePermission(std::function<void(bool granted)> completion)
{
    if (m_services.permission.preflight()) {
        completion(true);
        return;
    }
    ScreenCapturePermission &permission = m_services.permission;
    Scheduler &scheduler = m_services.scheduler;
    scheduler.runInBackground([&permission, &scheduler, completion = std::move(completion)]() mutable {
        const bool granted = permission.request();
        scheduler.postToMain([granted, completion = std::move(completion)] { completion(granted); });
    });
}

void PermissionGate::showPermissionAlert()
{
    m_services.scheduler.postToMain([this] {
        m_services.systemLog.log(alertMessage);
        m_services.workspace.openURL(QUrl(privacySettingsURL));
    });
}
