#pragma once

#include "platform/ScreenCapturePermission.h"

class FakeScreenCapturePermission final : public ScreenCapturePermission
{
public:
    bool preflight() override { return preflightResult; }
    bool request() override
    {
        ++requestCount;
        return requestResult;
    }

    bool preflightResult = true;
    bool requestResult = true;
    int requestCount = 0;
};
