#pragma once

#include "platform/WindowList.h"

#include <QByteArray>
#include <QHash>

#include <xcb/xcb.h>

// The windows on screen from the window manager's EWMH stacking list (_NET_CLIENT_LIST_STACKING,
// bottom to top, reversed here), each with its frame decoration (_NET_FRAME_EXTENTS). Owner name: the
// class of WM_CLASS, else the process name of _NET_WM_PID. Layer 0 for normal windows and dialogs;
// docks, desktops, menus, tool windows, splash screens and notifications get the layer of their kind.
// Opacity from _NET_WM_WINDOW_OPACITY. Unmapped (minimised, other desktop) windows are left out.
// Without a window manager, the root's mapped children stand in, top to bottom. Main thread.
class X11WindowList final : public WindowList
{
public:
    explicit X11WindowList(xcb_connection_t *connection);

    std::optional<QList<Entry>> onScreenWindows() const override;

    // The layer of an EWMH window type (the atom's name, e.g. "_NET_WM_WINDOW_TYPE_DOCK"); absent or
    // unknown types are normal windows.
    static qint64 layerForWindowType(const QByteArray &typeName);
    // WM_CLASS holds the instance and the class, each ending in a zero byte.
    static std::optional<QString> classFromWmClass(const QByteArray &value);

private:
    xcb_atom_t atom(const char *name) const;
    QByteArray atomName(xcb_atom_t atom) const;
    QByteArray property(xcb_window_t window, xcb_atom_t property, xcb_atom_t type, quint32 maxLongs = 1024) const;
    std::optional<Entry> entryFor(xcb_window_t window) const;
    std::optional<QString> ownerName(xcb_window_t window) const;

    xcb_connection_t *m_connection;
    xcb_window_t m_root = 0;
    mutable QHash<QByteArray, xcb_atom_t> m_atoms;
    mutable QHash<xcb_atom_t, QByteArray> m_atomNames;
};
