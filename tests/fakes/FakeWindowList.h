#pragma once

#include "platform/WindowList.h"

class FakeWindowList final : public WindowList
{
public:
    std::optional<QList<Entry>> onScreenWindows() const override { return windows; }

    // An ordinary, opaque application window; `bounds` in the top-left-origin global space.
    static Entry window(Rect bounds, const QString &owner, qint64 number)
    {
        return {bounds, owner, 0, 1.0, number};
    }

    std::optional<QList<Entry>> windows = QList<Entry>();
};
