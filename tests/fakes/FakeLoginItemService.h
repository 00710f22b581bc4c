#pragma once

#include "platform/LoginItemService.h"

#include <QStringList>

class FakeLoginItemService final : public LoginItemService
{
public:
    Status status() const override { return currentStatus; }
    std::optional<QString> registerApp() override
    {
        calls.append(QStringLiteral("register"));
        if (!failure)
            currentStatus = Status::Enabled;
        return failure;
    }
    std::optional<QString> unregisterApp() override
    {
        calls.append(QStringLiteral("unregister"));
        if (!failure)
            currentStatus = Status::NotRegistered;
        return failure;
    }

    Status currentStatus = Status::NotRegistered;
    // When set, register and unregister fail with this description and change nothing.
    std::optional<QString> failure;
    QStringList calls;
};
