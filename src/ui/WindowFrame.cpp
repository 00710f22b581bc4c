#include "WindowFrame.h"

#include <QWidget>

namespace windowframe {

QMargins decorationMargins(const QWidget &window)
{
    const QRect frame = window.frameGeometry();
    const QRect inside = window.geometry();
    const QMargins margins(inside.left() - frame.left(), inside.top() - frame.top(),
                           frame.right() - inside.right(), frame.bottom() - inside.bottom());
    // While the window manager is still building its frame, the frame may not yet hold the inside.
    if (margins.left() < 0 || margins.top() < 0 || margins.right() < 0 || margins.bottom() < 0)
        return QMargins();
    return margins;
}

void setFrameGeometry(QWidget &window, const QRect &frame)
{
    window.resize(frame.marginsRemoved(decorationMargins(window)).size());
    // A window's position is its frame's.
    window.move(frame.topLeft());
}

} // namespace windowframe
