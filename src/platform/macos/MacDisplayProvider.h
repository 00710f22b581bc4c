#pragma once

#include "platform/DisplayProvider.h"

#include <memory>

// The displays as NSScreen reports them: frames and visible frames already in the bottom-left global
// space, in points; the backing scale factor; the CGDirectDisplayID under "NSScreenNumber". Screen
// changes arrive as NSApplicationDidChangeScreenParametersNotification on the main queue. Main thread.
class MacDisplayProvider final : public DisplayProvider
{
public:
    MacDisplayProvider();
    ~MacDisplayProvider() override;

    QList<DisplayInfo> screens() const override;
    std::optional<DisplayInfo> mainScreen() const override;
    void observeScreenParameters(std::function<void()> observer) override;

private:
    struct Observers;
    std::unique_ptr<Observers> m_observers;
};
