#include "capture/SelectionDamage.h"

#include "capture/SelectionPainting.h"

#include <QRegion>

#include <cmath>

namespace selectiondamage {

namespace {

// Antialiasing may touch one pixel beyond a shape's exact edge.
constexpr double antialiasingMargin = 1;

QRect covering(const Rect &rect)
{
    if (rect.isEmpty())
        return {};
    const Rect whole = rect.integral();
    return QRect(int(whole.minX()), int(whole.minY()), int(whole.width()), int(whole.height()));
}

QRegion grown(const Rect &rect, double by)
{
    return QRegion(covering(rect.insetBy(-by, -by)));
}

// The band the outline of a selection paints: its stroke is centred on the edge.
QRegion outline(const Rect &selection)
{
    const double half = selectionpainting::selectionStrokeWidth / 2 + antialiasingMargin;
    const Rect inner = selection.insetBy(half, half);
    return grown(selection, half) - QRegion(inner.isNull() ? QRect() : covering(inner).adjusted(1, 1, -1, -1));
}

QRegion selectionChange(const Rect &before, const Rect &after)
{
    if (before == after)
        return {};
    QRegion changed;
    if (!before.isEmpty())
        changed |= outline(before);
    if (!after.isEmpty())
        changed |= outline(after);
    // The fill differs only where one selection covers a point and the other does not.
    return changed | (grown(before, antialiasingMargin) ^ grown(after, antialiasingMargin));
}

QRegion labelChange(const Rect &before, const Rect &after, bool textMayDiffer)
{
    if (before == after && !textMayDiffer)
        return {};
    return grown(before, antialiasingMargin) | grown(after, antialiasingMargin);
}

// A dashed line one point wide through the point, across the whole bounds.
QRegion verticalLine(double x, const Rect &bounds)
{
    return grown(Rect(x - 0.5, bounds.minY(), 1, bounds.height()), antialiasingMargin);
}

QRegion horizontalLine(double y, const Rect &bounds)
{
    return grown(Rect(bounds.minX(), y - 0.5, bounds.width(), 1), antialiasingMargin);
}

QRegion crosshairChange(const std::optional<QPointF> &before, const std::optional<QPointF> &after,
                        const Rect &bounds)
{
    QRegion changed;
    if (!before || !after || before->x() != after->x()) {
        if (before)
            changed |= verticalLine(before->x(), bounds);
        if (after)
            changed |= verticalLine(after->x(), bounds);
    }
    if (!before || !after || before->y() != after->y()) {
        if (before)
            changed |= horizontalLine(before->y(), bounds);
        if (after)
            changed |= horizontalLine(after->y(), bounds);
    }
    return changed;
}

} // namespace

QList<Rect> changedAreas(const Decorations &before, const Decorations &after, const Rect &bounds)
{
    if (before == after)
        return {};
    const QRegion changed = selectionChange(before.selection, after.selection)
        | labelChange(before.label, after.label, before.selection != after.selection)
        | crosshairChange(before.crosshair, after.crosshair, bounds);
    QList<Rect> areas;
    for (const QRect &part : changed & covering(bounds)) {
        areas.append(Rect(part.x(), part.y(), part.width(), part.height()));
    }
    return areas;
}

} // namespace selectiondamage
