#pragma once

#include "PointerTracker.h"
#include "QtScreensDisplayProvider.h"

#include <QHash>

// Qt's screens on Wayland, where they are the compositor's outputs in layout coordinates. A display's
// id is given to its output's name when first seen and kept for the session, so a display that comes
// back keeps its id. Main thread.
class WaylandDisplayProvider final : public QtScreensDisplayProvider
{
public:
    std::optional<quint32> displayID(const QString &name) const override;
    // The output's name of an id given out before.
    std::optional<QString> outputName(quint32 displayID) const;
    // Known only where it last crossed one of our windows.
    std::optional<QPointF> pointerPosition() const override { return m_pointer.position(); }

private:
    mutable QHash<QString, quint32> m_ids;
    PointerTracker m_pointer;
};
