#pragma once

#include "capture/CaptureRecords.h"
#include "geometry/Rect.h"
#include "platform/WindowList.h"

#include <QList>
#include <QPointF>
#include <QString>

#include <optional>

struct CaptureServices;
struct CaptureState;

// Finds the application window under the pointer during a selection, for the Space key: the frontmost
// ordinary, visible window of another application that contains the pointer, cut to the overlay
// window of the pointer's display. Main thread.
class WindowUnderCursor final
{
public:
    // Windows of this owner are the application's own (the overlay, the editor) and never a target.
    static inline const QString ownApplicationName = QStringLiteral("Vistrel");

    struct WindowInfo
    {
        // Global space, y upwards.
        Rect bounds;
        qint64 id = 0;
        QString ownerName;
    };

    WindowUnderCursor(CaptureState &state, const CaptureServices &services) : m_state(state), m_services(services) {}

    // `point` in the global space.
    std::optional<WindowInfo> windowInfoUnderCursor(QPointF point) const;
    std::optional<CursorWindowSelection> makeWindowSelectionUnderCursor() const;

    // The first entry that passes every test, front to back: readable bounds, at least 2 x 2 points,
    // containing the point, not ours, layer 0, not fully transparent.
    static std::optional<WindowInfo> frontmostWindowAt(const QList<WindowList::Entry> &windows, QPointF point,
                                                       double desktopTopY);

private:
    CaptureState &m_state;
    const CaptureServices &m_services;
};
