#pragma once

#include "platform/LoginItemService.h"

// The application itself as a login item: SMAppService.mainAppService (macOS 13 and later). The system
// may ask the user to approve the item in System Settings > General > Login Items; until then the
// status is RequiresApproval. Main thread.
class MacLoginItem final : public LoginItemService
{
public:
    Status status() const override;
    std::optional<QString> registerApp() override;
    std::optional<QString> unregisterApp() override;
};
