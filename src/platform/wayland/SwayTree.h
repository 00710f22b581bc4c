#pragma once

#include "platform/WindowList.h"

#include <QByteArray>
#include <QRect>
#include <QString>

#include <optional>

// Reads sway's layout tree (the JSON reply to GET_TREE) as the window list sees the screen. Pure.
namespace swaytree {

struct Identity
{
    // The app_id Qt gives our own windows (the desktop file name) and the name they are listed under.
    QString ownAppId;
    QString ownName;
};

// The windows shown on each output's visible workspace, front to back: our own windows first, then a
// fullscreen window, else the floating ones (top first) and the tiled ones. Inside tabs and stacks only
// the focused child shows. Our own fullscreen windows (the selection overlay) hide nothing, so the
// windows beneath them are listed as they were before the overlay came up. Bounds include the title
// bar and borders, in sway's layout coordinates moved so that `primary` (the primary display's layout
// rectangle) has its top-left at the origin. Owner: the app_id, else the X11 class of an Xwayland
// window. Nothing when the reply is not a tree.
std::optional<QList<WindowList::Entry>> windows(const QByteArray &treeJson, const QRect &primary,
                                                const Identity &identity);

} // namespace swaytree
