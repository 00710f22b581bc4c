#include "editor/CanvasRules.h"

#include <QLineF>

#include <algorithm>

namespace canvasrules {

double hitPadding(EditorTool type)
{
    switch (type) {
    case EditorTool::Rectangle:
    case EditorTool::Circle:
    case EditorTool::Freehand:
        return shapeHitPadding;
    case EditorTool::Arrow:
    case EditorTool::Mosaic:
    case EditorTool::Text:
        break;
    }
    return 0;
}

void extendFreehand(Overlay &overlay, QPointF point, double step)
{
    if (overlay.points.isEmpty() || QLineF(overlay.points.last(), point).length() >= step)
        overlay.points.append(point);
}

Overlay movedOverlay(const Overlay &overlay, double dx, double dy)
{
    const QPointF offset(dx, dy);
    Overlay moved = overlay;
    moved.startPoint += offset;
    moved.endPoint += offset;
    moved.points.translate(offset);
    return moved;
}

Overlay resizedOverlay(const Overlay &overlay, int corner, QPointF point)
{
    Overlay resized = overlay;
    switch (overlay.type) {
    case EditorTool::Freehand:
        return resized;
    case EditorTool::Arrow:
        if (QLineF(overlay.endPoint, point).length() <= QLineF(overlay.startPoint, point).length())
            resized.endPoint = point;
        else
            resized.startPoint = point;
        return resized;
    case EditorTool::Rectangle:
    case EditorTool::Circle:
    case EditorTool::Mosaic:
    case EditorTool::Text:
        break;
    }
    const double minX = std::min(overlay.startPoint.x(), overlay.endPoint.x());
    const double maxX = std::max(overlay.startPoint.x(), overlay.endPoint.x());
    const double minY = std::min(overlay.startPoint.y(), overlay.endPoint.y());
    const double maxY = std::max(overlay.startPoint.y(), overlay.endPoint.y());
    // The corner opposite the dragged one, in image axes (y up: the top on screen is maxY).
    QPointF fixed(maxX, minY);
    switch (corner) {
    case 1:
        fixed = {minX, minY};
        break;
    case 2:
        fixed = {minX, maxY};
        break;
    case 3:
        fixed = {maxX, maxY};
        break;
    default:
        break;
    }
    resized.startPoint = {std::min(point.x(), fixed.x()), std::min(point.y(), fixed.y())};
    resized.endPoint = {std::max(point.x(), fixed.x()), std::max(point.y(), fixed.y())};
    return resized;
}

std::array<QPointF, 4> viewCorners(const QRectF &r)
{
    return {QPointF(r.left(), r.top()), QPointF(r.right(), r.top()), QPointF(r.right(), r.bottom()),
            QPointF(r.left(), r.bottom())};
}

std::array<QPointF, 4> handlePositions(const QRectF &r)
{
    return {QPointF(r.left(), r.bottom()), QPointF(r.right(), r.bottom()), QPointF(r.right(), r.top()),
            QPointF(r.left(), r.top())};
}

bool hasHandles(EditorTool type)
{
    return type != EditorTool::Freehand;
}

} // namespace canvasrules
