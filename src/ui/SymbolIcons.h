#pragma once

#include <QIcon>
#include <QImage>
#include <QString>

class QStyle;

// The symbols the core names by their macOS system names, as icons of the desktop's theme with a
// fallback that needs no theme: a standard icon of the widget style, or a drawing of our own.
namespace symbolicons {

// The themed icon for a system symbol name; null for a name without a counterpart.
QIcon icon(const QString &symbolName, const QStyle *style);

// The photo symbol of the empty editor: a picture leaning over another, size × size pixels,
// drawn in `color` on a transparent background.
QImage renderPhotoSymbol(int size, const QColor &color);

} // namespace symbolicons
