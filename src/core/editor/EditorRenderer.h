#pragma once

#include "editor/Overlay.h"
#include "geometry/Rect.h"

#include <QColor>
#include <QImage>
#include <QList>
#include <QPointF>
#include <QString>

class QPainter;

// Flattening of an editor document into one bitmap, and the drawing routine of each overlay kind.
//
// The routines draw in image coordinates (pixels, origin at the image's bottom-left, y up): the
// painter's transform must map that space onto the device, with the y axis flipped and no rotation.
// Text, the source image and mosaic patches are drawn upright whatever the flip. Each routine leaves
// the painter's state as it found it and does nothing on an inactive painter.
namespace editorrender {

// A new opaque bitmap of the content bounds (the image grown to take in every overlay), white where
// the image does not reach, with the image and then the overlays in list order painted on it. One
// pixel per image pixel, whatever the image's device pixel ratio. Returns `image` itself when the
// canvas cannot be made (no image, absurd extent, no memory).
QImage renderEditedImage(const QImage &image, const QList<Overlay> &overlays);

// The transform that puts image coordinates onto a canvas covering `contentBounds` (y flipped).
QTransform canvasTransform(const Rect &contentBounds);

// Paints one overlay, as the flattened image shows it. `sourceImage` is what mosaics pixellate.
void drawOverlay(QPainter &painter, const Overlay &overlay, const QImage &sourceImage);

void drawRectangle(QPainter &painter, const Rect &rect, const QColor &color);
void drawCircle(QPainter &painter, const Rect &rect, const QColor &color);
// Filled, never stroked; a dot of diameter 6 at `to` when the arrow is too short to have a direction.
void drawArrow(QPainter &painter, QPointF from, QPointF to, const QColor &color);
// Width 4 with round caps and joins; a single point is a dot of diameter 4.
void drawFreehand(QPainter &painter, const QList<QPointF> &points, const QColor &color);
// The source pixels under `rect` pixellated; black at 0.35 opacity when that cannot be made.
void drawMosaic(QPainter &painter, const Rect &rect, const QImage &sourceImage);
// The box filled with `fillColor` (its own alpha), bordered in `color`, and the text wrapped inside it,
// inset by 4 horizontally and 2 vertically.
void drawText(QPainter &painter, const QString &text, const Rect &rect, const QColor &color,
              const QColor &fillColor, const QString &fontFamily, double fontSize);

} // namespace editorrender
