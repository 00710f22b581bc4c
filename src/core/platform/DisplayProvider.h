#pragma once

#include "geometry/Rect.h"

#include <QList>

#include <functional>
#include <optional>

// The connected displays. Frames are in the global space whose origin is the bottom-left corner of the
// primary display, y upwards, in points; the backing scale is pixels per point.
struct DisplayInfo
{
    std::optional<quint32> id;
    Rect frame;
    // The frame without panels, docks and menu bars.
    Rect visibleFrame;
    double backingScale = 1;
};

class DisplayProvider
{
public:
    virtual ~DisplayProvider() = default;

    // In the system's order; the primary display comes first where the system has one.
    virtual QList<DisplayInfo> screens() const = 0;
    // The display holding the key window (or the pointer), when there is one.
    virtual std::optional<DisplayInfo> mainScreen() const = 0;
    // Calls `observer` on the main thread after displays were added, removed, moved or rescaled
    // (NSApplicationDidChangeScreenParametersNotification). Observers stay for the provider's lifetime.
    virtual void observeScreenParameters(std::function<void()> observer) = 0;
};
