#pragma once

#include "QtScreensDisplayProvider.h"

#include <QHash>

#include <xcb/xcb.h>

// Qt's screens on X11. A display's id is the atom of its RandR monitor's name (the name Qt gives the
// screen): the same for as long as the X server runs, and distinct for every monitor. Main thread.
class X11DisplayProvider final : public QtScreensDisplayProvider
{
public:
    explicit X11DisplayProvider(xcb_connection_t *connection);

    std::optional<quint32> displayID(const QString &name) const override;
    std::optional<QPointF> pointerPosition() const override;

private:
    xcb_connection_t *m_connection;
    mutable QHash<QString, quint32> m_ids;
};
