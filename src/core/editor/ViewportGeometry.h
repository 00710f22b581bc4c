#pragma once

#include "geometry/Rect.h"

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QTransform>

// The mapping between the editor's image points (origin at the image's bottom-left, y up) and the
// view points of its zoomed canvas (origin at the canvas's top-left, y down). `canvas` is the canvas
// rectangle in image points and `zoom` the view points per image point. Pure functions.
namespace viewportgeometry {

// The image grown by `padding` on every side.
Rect baseCanvasImageRect(QSizeF imageSize, double padding);
// Never smaller than 1 × 1.
QSizeF zoomedCanvasSize(const Rect &canvas, double zoom);
QRectF imageFrameInCanvas(const Rect &canvas, QSizeF imageSize, double zoom);

// (0, 0) when zoom is 0 or less. The two conversions are exact inverses for a positive zoom.
QPointF convertToImagePoint(QPointF viewPoint, const Rect &canvas, double zoom);
QPointF convertToViewPoint(QPointF imagePoint, const Rect &canvas, double zoom);
// The rectangle's corners converted, as a rectangle with its origin at the top-left on screen.
QRectF rectInView(const Rect &imageRect, const Rect &canvas, double zoom);
// The same mapping for a painter drawing in image points onto the canvas.
QTransform imageToViewTransform(const Rect &canvas, double zoom);

} // namespace viewportgeometry
