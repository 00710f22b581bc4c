#pragma once

#include <QColor>

// The named system colours of the editor palette, with fixed values so that every system draws the
// same pixels. The values are the sRGB values of Apple's Human Interface Guidelines (Color, system
// colors for macOS, default light appearance); macOS's own colours in the light appearance are these.
namespace systemcolors {

QColor systemRed();
QColor systemOrange();
QColor systemYellow();
QColor systemGreen();
QColor systemTeal();
QColor systemBlue();
QColor systemIndigo();
QColor systemPurple();
QColor systemPink();
QColor systemCyan();
QColor black();
QColor white();

} // namespace systemcolors
