#pragma once

#include "platform/DisplayProvider.h"

class FakeDisplayProvider final : public DisplayProvider
{
public:
    QList<DisplayInfo> screens() const override { return displays; }
    std::optional<DisplayInfo> mainScreen() const override { return main; }

    // A display whose visible frame is its frame.
    static DisplayInfo display(std::optional<quint32> id, Rect frame, double scale = 1)
    {
        return {id, frame, frame, scale};
    }

    QList<DisplayInfo> displays;
    std::optional<DisplayInfo> main;
};
