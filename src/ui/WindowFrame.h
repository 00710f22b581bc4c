#pragma once

#include <QMargins>
#include <QRect>

class QWidget;

// A top-level window's frame (inside plus the window manager's title bar and borders) in Qt's desktop.
namespace windowframe {

// The title bar and borders around the inside; none before the window manager framed the window
// (or while its frame is half built).
QMargins decorationMargins(const QWidget &window);
// Places and sizes the window so that its frame is `frame`.
void setFrameGeometry(QWidget &window, const QRect &frame);

} // namespace windowframe
