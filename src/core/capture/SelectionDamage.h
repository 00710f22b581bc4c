#pragma once

#include "geometry/Rect.h"

#include <QList>
#include <QPointF>

#include <optional>

// Which parts of a selection view need repainting when what it draws over the dimmed image changes,
// so that a pointer move repaints a few strips instead of the whole display. Pure geometry in the
// view's coordinates (points, origin bottom-left).
namespace selectiondamage {

// What the view draws over the dimmed frozen image.
struct Decorations
{
    // Empty when there is no selection; then there is no label either.
    Rect selection;
    Rect label;
    std::optional<QPointF> crosshair;

    bool operator==(const Decorations &other) const = default;
};

// Rectangles, inside `bounds` and with whole-number edges, that cover every point whose colour may
// differ between a view drawing `before` and one drawing `after`: both states' outlines, labels and
// crosshair lines where they changed, and the parts of the selection that only one of them fills.
QList<Rect> changedAreas(const Decorations &before, const Decorations &after, const Rect &bounds);

} // namespace selectiondamage
