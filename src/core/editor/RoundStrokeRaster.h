#pragma once

#include <QColor>
#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QPointF>

#include <optional>

// Antialiased rasterisation of a polyline with round caps and round joins, used for freehand strokes.
//
// Such a stroke is exactly the union of capsules (a segment grown by half the width in every
// direction), one per segment, or a disc for a single point. A pixel's coverage is how far its centre
// lies inside the nearest capsule, over a one-pixel ramp at the edge, so overlapping segments blend
// once and leave no seams. Qt's general stroker reaches the same shape several times slower on
// strokes of hundreds of short segments, because every round join becomes curves for its rasteriser.
namespace roundstroke {

struct Patch
{
    // The stroke in `colour`, premultiplied, covering its device pixels from `topLeft`.
    QImage image;
    QPoint topLeft;
};

// `points` and `width` in device pixels. Only the pixels inside `within` are made when it is not null;
// they are the same as in the whole stroke, since each pixel depends on the capsules alone. Absent when
// there is nothing to draw there, a coordinate is not a number, or the patch would cover more than
// `maximumPixels`.
std::optional<Patch> rasterize(const QList<QPointF> &points, double width, const QColor &colour,
                               const QRect &within = QRect(), qint64 maximumPixels = qint64(1) << 24);

} // namespace roundstroke
