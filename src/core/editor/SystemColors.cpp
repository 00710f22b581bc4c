#include "editor/SystemColors.h"

namespace systemcolors {

QColor systemRed() { return QColor(255, 59, 48); }
QColor systemOrange() { return QColor(255, 149, 0); }
QColor systemYellow() { return QColor(255, 204, 0); }
QColor systemGreen() { return QColor(40, 205, 65); }
QColor systemTeal() { return QColor(89, 173, 196); }
QColor systemBlue() { return QColor(0, 122, 255); }
QColor systemIndigo() { return QColor(88, 86, 214); }
QColor systemPurple() { return QColor(175, 82, 222); }
QColor systemPink() { return QColor(255, 45, 85); }
QColor systemCyan() { return QColor(85, 190, 240); }
QColor black() { return QColor(0, 0, 0); }
QColor white() { return QColor(255, 255, 255); }

} // namespace systemcolors
