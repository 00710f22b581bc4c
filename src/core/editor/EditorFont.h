#pragma once

#include <QFont>
#include <QString>

namespace editorrender {

constexpr double minimumFontSize = 8;
constexpr double maximumFontSize = 160;

// The font of a text box: `family` at `size` clamped to 8 … 160, or the semibold system font at that
// size when no installed family has that name. Sizes are in pixels, one per image point, so text has
// the same size on every system and at every screen resolution.
QFont makeEditorFont(const QString &family, double size);

} // namespace editorrender
