#include "SymbolIcons.h"

#include <QHash>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace symbolicons {

namespace {

struct Counterpart
{
    QString symbolName;
    QString themeName;
    QStyle::StandardPixmap fallback;
};

const QList<Counterpart> &counterparts()
{
    static const QList<Counterpart> table{
        {u"arrow.uturn.backward"_s, u"edit-undo"_s, QStyle::SP_ArrowBack},
        {u"arrow.uturn.forward"_s, u"edit-redo"_s, QStyle::SP_ArrowForward},
        {u"trash"_s, u"edit-delete"_s, QStyle::SP_TrashIcon},
        {u"folder"_s, u"folder"_s, QStyle::SP_DirIcon},
    };
    return table;
}

QIcon makeIcon(const QString &symbolName, const QStyle *style)
{
    for (const Counterpart &entry : counterparts()) {
        if (entry.symbolName != symbolName)
            continue;
        if (QIcon::hasThemeIcon(entry.themeName))
            return QIcon::fromTheme(entry.themeName);
        return style ? style->standardIcon(entry.fallback) : QIcon();
    }
    return QIcon();
}

} // namespace

QIcon icon(const QString &symbolName, const QStyle *style)
{
    // One icon per symbol and style for the life of the process: the style caches an icon's pixmaps
    // under the icon's own key, so a fresh icon for every new button (each editor window has its
    // own) would leave a dead copy in that cache each time. Main thread, like every widget.
    static QHash<std::pair<const QStyle *, QString>, QIcon> made;
    const std::pair<const QStyle *, QString> key{style, symbolName};
    auto found = made.constFind(key);
    if (found == made.constEnd())
        found = made.insert(key, makeIcon(symbolName, style));
    return *found;
}

QImage renderPhotoSymbol(int size, const QColor &color)
{
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    // Drawn on a 64 × 64 grid: a picture frame tilted behind an upright one with hills and a sun.
    painter.scale(size / 64.0, size / 64.0);
    const QPen outline(color, 3.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);

    painter.save();
    painter.translate(36, 26);
    painter.rotate(-12);
    painter.setPen(outline);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(-22, -16, 44, 32), 4, 4);
    painter.restore();

    const QRectF front(6, 24, 44, 32);
    painter.setPen(outline);
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(front, 4, 4);

    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    QPainterPath hills;
    hills.moveTo(front.left() + 4, front.bottom() - 4);
    hills.lineTo(front.left() + 16, front.top() + 14);
    hills.lineTo(front.left() + 24, front.top() + 22);
    hills.lineTo(front.left() + 30, front.top() + 17);
    hills.lineTo(front.right() - 4, front.bottom() - 4);
    hills.closeSubpath();
    painter.drawPath(hills);
    painter.drawEllipse(QPointF(front.right() - 10, front.top() + 9), 3.5, 3.5);
    return image;
}

} // namespace symbolicons
