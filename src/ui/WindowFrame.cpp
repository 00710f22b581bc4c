#include "WindowFrame.h"

#include <QWidget>

namespace windowframe {

QMargins decorationMargins(const QWidget &window)
{
    const QRect frame = window.frameGeometry();
    const QRect inside = window.geometry();
    return QMargins(inside.left() - frame.left(), inside.top() - frame.top(), frame.right() - inside.right(),
                    frame.bottom() - inside.bottom());
}

void setFrameGeometry(QWidget &window, const QRect &frame)
{
    window.resize(frame.marginsRemoved(decorationMargins(window)).size());
    // A window's position is its frame's.
    window.move(frame.topLeft());
}

} // namespace windowframe
