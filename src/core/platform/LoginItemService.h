#pragma once

#include <QString>

#include <optional>

// Registration of the application itself as a login item (SMAppService on macOS, an XDG autostart
// entry on Linux).
class LoginItemService
{
public:
    enum class Status { Enabled, NotRegistered, RequiresApproval, NotFound, Unknown };

    virtual ~LoginItemService() = default;

    virtual Status status() const = 0;
    // Each returns the error's description on failure.
    virtual std::optional<QString> registerApp() = 0;
    virtual std::optional<QString> unregisterApp() = 0;
};
