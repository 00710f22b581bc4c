#include "editor/OverlayGeometry.h"

#include <algorithm>
#include <cmath>

namespace overlaygeometry {

namespace {

QRectF squareAround(QPointF centre, double side)
{
    return QRectF(centre.x() - side / 2, centre.y() - side / 2, side, side);
}

} // namespace

std::optional<TaperedArrowGeometry> makeTaperedArrowGeometry(QPointF start, QPointF end)
{
    const double dx = end.x() - start.x();
    const double dy = end.y() - start.y();
    const double length = std::hypot(dx, dy);
    if (!(length > 1))
        return std::nullopt;

    const QPointF unit(dx / length, dy / length);
    const QPointF normal(-unit.y(), unit.x());
    const double headLengthBound = std::min(std::max(20.0, 0.5 * length), length);
    const double headLength = std::min(std::max(12.0, 0.22 * length), headLengthBound);
    const QPointF base = end - unit * headLength;
    // The tail is never wider than 3 and thinner still on short arrows.
    const double tailWidth = std::min(3.0, 0.02 * length);
    const double neckWidth = std::max(1.8 * tailWidth, 0.07 * length);
    const double headWidth = std::max(2 * neckWidth, 0.2 * length);

    return TaperedArrowGeometry{
        start + normal * (tailWidth / 2), base + normal * (neckWidth / 2), base + normal * (headWidth / 2),
        end,
        base - normal * (headWidth / 2),  base - normal * (neckWidth / 2), start - normal * (tailWidth / 2),
    };
}

QPainterPath arrowPath(QPointF start, QPointF end)
{
    QPainterPath path;
    const std::optional<TaperedArrowGeometry> geometry = makeTaperedArrowGeometry(start, end);
    if (!geometry) {
        path.addEllipse(squareAround(end, arrowDotDiameter));
        return path;
    }
    const std::array<QPointF, 7> outline = geometry->outline();
    path.moveTo(outline[0]);
    for (size_t i = 1; i < outline.size(); ++i)
        path.lineTo(outline[i]);
    path.closeSubpath();
    return path;
}

QPainterPath freehandPath(const QList<QPointF> &points)
{
    QPainterPath path;
    if (points.isEmpty())
        return path;
    path.moveTo(points.first());
    if (points.size() == 1) {
        path.addEllipse(squareAround(points.first(), 2));
        return path;
    }
    for (qsizetype i = 1; i < points.size(); ++i)
        path.lineTo(points.at(i));
    return path;
}

Rect boundsOfPoints(std::span<const QPointF> points)
{
    if (points.empty())
        return Rect::null();
    double minX = points.front().x();
    double maxX = minX;
    double minY = points.front().y();
    double maxY = minY;
    for (const QPointF &p : points) {
        minX = std::min(minX, p.x());
        maxX = std::max(maxX, p.x());
        minY = std::min(minY, p.y());
        maxY = std::max(maxY, p.y());
    }
    return Rect(minX, minY, std::max(1.0, maxX - minX), std::max(1.0, maxY - minY));
}

double rectangleStrokeWidth(const Rect &rect)
{
    return std::max(4.0, 0.01 * rect.width());
}

double circleStrokeWidth(const Rect &rect)
{
    return std::max(4.0, 0.04 * std::min(rect.width(), rect.height()));
}

double textBorderWidth(const Rect &rect)
{
    return std::max(2.0, 0.04 * std::min(rect.width(), rect.height()));
}

Rect overlayRenderBounds(const Overlay &overlay)
{
    const Rect rect = overlay.rect();
    switch (overlay.type) {
    case EditorTool::Rectangle: {
        const double half = rectangleStrokeWidth(rect) / 2;
        return rect.insetBy(-half, -half);
    }
    case EditorTool::Circle: {
        const double half = circleStrokeWidth(rect) / 2;
        return rect.insetBy(-half, -half);
    }
    case EditorTool::Arrow: {
        const std::optional<TaperedArrowGeometry> geometry =
            makeTaperedArrowGeometry(overlay.startPoint, overlay.endPoint);
        if (!geometry)
            return Rect::fromQRectF(squareAround(overlay.endPoint, 8));
        const std::array<QPointF, 7> outline = geometry->outline();
        return boundsOfPoints(outline);
    }
    case EditorTool::Freehand:
        return rect.insetBy(-3, -3);
    case EditorTool::Mosaic:
        return rect;
    case EditorTool::Text: {
        const double half = textBorderWidth(rect) / 2;
        return rect.insetBy(-half, -half);
    }
    }
    return rect;
}

Rect renderContentBounds(const QList<Overlay> &overlays, QSizeF imageSize)
{
    Rect bounds(0, 0, imageSize.width(), imageSize.height());
    for (const Overlay &overlay : overlays)
        bounds = bounds.united(overlayRenderBounds(overlay));
    return bounds.integral();
}

} // namespace overlaygeometry
