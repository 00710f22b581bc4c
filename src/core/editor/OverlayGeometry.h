#pragma once

#include "editor/Overlay.h"
#include "editor/TaperedArrowGeometry.h"
#include "geometry/Rect.h"

#include <QList>
#include <QPainterPath>
#include <QSizeF>

#include <optional>
#include <span>

// The geometry of overlays, shared by the on-screen canvas and the flattening renderer so that both
// draw the same shapes. Image coordinates (pixels, origin bottom-left, y up); nothing keeps state.
namespace overlaygeometry {

// Freehand strokes have a fixed width whatever the image size.
constexpr double freehandLineWidth = 4;
// An arrow too short to have a direction is a dot of this diameter at its end.
constexpr double arrowDotDiameter = 6;

// Absent when the arrow is 1 long or shorter.
std::optional<TaperedArrowGeometry> makeTaperedArrowGeometry(QPointF start, QPointF end);

// The arrow's closed outline, to be filled (never stroked); a dot at `end` when it has no direction.
QPainterPath arrowPath(QPointF start, QPointF end);
// Straight segments through the points, open; a single point is a circle of diameter 2.
QPainterPath freehandPath(const QList<QPointF> &points);

// The box of the points, at least 1 × 1; null for no points.
Rect boundsOfPoints(std::span<const QPointF> points);

// Only the width counts, so tall thin rectangles keep the minimum line.
double rectangleStrokeWidth(const Rect &rect);
double circleStrokeWidth(const Rect &rect);
double textBorderWidth(const Rect &rect);

// What the overlay paints, strokes included.
Rect overlayRenderBounds(const Overlay &overlay);
// The image rectangle united with every overlay's render bounds, on whole pixels: the extent of the
// flattened picture, which grows rather than clipping what reaches beyond the image.
Rect renderContentBounds(const QList<Overlay> &overlays, QSizeF imageSize);

} // namespace overlaygeometry
