#pragma once

#include "platform/DisplayProvider.h"

#include <QHash>
#include <QObject>

#include <xcb/xcb.h>

class QScreen;

// The displays as Qt's screens, converted into the global bottom-left space through the desktop space.
// A display's id is the atom of its RandR monitor's name (the name Qt gives the screen): the same for
// as long as the X server runs, and distinct for every monitor. Qt's screen signals become one
// screen-parameters change per turn of the event loop. Main thread.
class X11DisplayProvider final : public QObject, public DisplayProvider
{
public:
    explicit X11DisplayProvider(xcb_connection_t *connection);

    QList<DisplayInfo> screens() const override;
    std::optional<DisplayInfo> mainScreen() const override;
    void observeScreenParameters(std::function<void()> observer) override;

    // The id of the display Qt calls `name`; nothing when the server would not name it.
    std::optional<quint32> displayID(const QString &name) const;

private:
    void watch(QScreen *screen);
    void scheduleChange();

    xcb_connection_t *m_connection;
    mutable QHash<QString, quint32> m_ids;
    QList<std::function<void()>> m_observers;
    bool m_isChangePending = false;
};
