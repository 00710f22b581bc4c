#pragma once

#include "platform/DisplayProvider.h"

class FakeDisplayProvider final : public DisplayProvider
{
public:
    QList<DisplayInfo> screens() const override { return displays; }
    std::optional<DisplayInfo> mainScreen() const override { return main; }
    void observeScreenParameters(std::function<void()> observer) override { observers.append(std::move(observer)); }

    // What the system does after a display change.
    void notifyScreenParametersChanged()
    {
        for (const auto &observer : std::as_const(observers))
            observer();
    }

    // A display whose visible frame is its frame.
    static DisplayInfo display(std::optional<quint32> id, Rect frame, double scale = 1)
    {
        return {id, frame, frame, scale};
    }

    QList<DisplayInfo> displays;
    std::optional<DisplayInfo> main;
    QList<std::function<void()>> observers;
};
