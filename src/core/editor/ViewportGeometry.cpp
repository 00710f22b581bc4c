#include "editor/ViewportGeometry.h"

#include <algorithm>

namespace viewportgeometry {

Rect baseCanvasImageRect(QSizeF imageSize, double padding)
{
    return Rect(0, 0, imageSize.width(), imageSize.height()).insetBy(-padding, -padding);
}

QSizeF zoomedCanvasSize(const Rect &canvas, double zoom)
{
    return {std::max(1.0, canvas.width() * zoom), std::max(1.0, canvas.height() * zoom)};
}

QRectF imageFrameInCanvas(const Rect &canvas, QSizeF imageSize, double zoom)
{
    return {(0 - canvas.minX()) * zoom, (canvas.maxY() - imageSize.height()) * zoom, imageSize.width() * zoom,
            imageSize.height() * zoom};
}

QPointF convertToImagePoint(QPointF viewPoint, const Rect &canvas, double zoom)
{
    if (zoom <= 0)
        return {0, 0};
    return {canvas.minX() + viewPoint.x() / zoom, canvas.maxY() - viewPoint.y() / zoom};
}

QPointF convertToViewPoint(QPointF imagePoint, const Rect &canvas, double zoom)
{
    return {(imagePoint.x() - canvas.minX()) * zoom, (canvas.maxY() - imagePoint.y()) * zoom};
}

QRectF rectInView(const Rect &imageRect, const Rect &canvas, double zoom)
{
    const QPointF a = convertToViewPoint({imageRect.minX(), imageRect.minY()}, canvas, zoom);
    const QPointF b = convertToViewPoint({imageRect.maxX(), imageRect.maxY()}, canvas, zoom);
    return Rect::fromCorners(a, b).toQRectF();
}

QTransform imageToViewTransform(const Rect &canvas, double zoom)
{
    return QTransform(zoom, 0, 0, -zoom, -canvas.minX() * zoom, canvas.maxY() * zoom);
}

} // namespace viewportgeometry
