#pragma once

#include <QList>
#include <QRect>
#include <QString>

#include <xcb/xcb.h>

// The monitors of the X screen as RandR 1.5 lists them (the list `xrandr --listmonitors` shows, in the
// same order): the displays Qt makes its screens from, read without Qt. Used where no Qt GUI runs.
namespace x11monitors {

struct Monitor
{
    QString name;
    // In device pixels of the root window.
    QRect native;
    bool isPrimary = false;
};

// Empty when the server has no RandR 1.5; callers then treat the root window as the one display.
QList<Monitor> list(xcb_connection_t *connection);

} // namespace x11monitors
