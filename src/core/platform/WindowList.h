#pragma once

#include "geometry/Rect.h"

#include <QList>
#include <QString>

#include <optional>

// The windows on screen, front to back (CGWindowListCopyWindowInfo with on-screen-only and
// exclude-desktop-elements on macOS; the EWMH stacking list on X11). Each field is absent when the
// system did not report it; the caller supplies the defaults.
class WindowList
{
public:
    struct Entry
    {
        // Top-left-origin global space (origin at the primary display's top-left corner, y downwards),
        // in points, including the frame decoration. Absent when missing or unreadable.
        std::optional<Rect> bounds;
        // The owning application's name as the system reports it. The application's own windows must
        // come back under the name "Vistrel".
        std::optional<QString> ownerName;
        // 0 for ordinary application windows; anything else for menus, docks, panels, status items.
        std::optional<qint64> layer;
        // Overall opacity, 0 to 1.
        std::optional<double> alpha;
        std::optional<qint64> number;
    };

    virtual ~WindowList() = default;

    // Front to back; nothing when the list could not be read.
    virtual std::optional<QList<Entry>> onScreenWindows() const = 0;
};
