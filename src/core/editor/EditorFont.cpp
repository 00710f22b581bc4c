#include "editor/EditorFont.h"

#include <QFontDatabase>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace editorrender {

QFont makeEditorFont(const QString &family, double size)
{
    const double clamped = std::isnan(size) ? minimumFontSize : std::clamp(size, minimumFontSize, maximumFontSize);
    const int pixelSize = int(std::lround(clamped));
    // Only a real family counts: the font matcher would otherwise quietly substitute a look-alike
    // for names such as "Helvetica".
    if (QFontDatabase::families().contains(family, Qt::CaseInsensitive)) {
        QFont font(family);
        font.setPixelSize(pixelSize);
        return font;
    }
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setWeight(QFont::DemiBold);
    font.setPixelSize(pixelSize);
    return font;
}

} // namespace editorrender
