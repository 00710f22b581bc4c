#pragma once

#include "capture/CaptureGeometry.h"
#include "geometry/Rect.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPointF>
#include <QSizeF>
#include <QString>

class QPainter;

// The drawing steps of the selection overlay. Every function paints into a painter whose coordinates
// are the view's: origin bottom-left, y upwards, in points. Images and text, which Qt lays out
// downwards, are flipped back locally so they appear upright.
namespace selectionpainting {

inline const QColor dimmingColor = QColor::fromRgbF(0, 0, 0, 0.25);
// The system accent blue.
inline const QColor selectionFillColor = QColor::fromRgbF(0, 122 / 255.0, 1, 0.25);
inline const QColor selectionStrokeColor = Qt::white;
constexpr double selectionStrokeWidth = 2;
inline const QColor labelFillColor = QColor::fromRgbF(0, 0, 0, 0.78);
inline const QColor labelStrokeColor = QColor::fromRgbF(1, 1, 1, 0.18);
constexpr double labelCornerRadius = 5;
constexpr double labelHorizontalPadding = 16;
constexpr double labelVerticalPadding = 10;
// Where the text's bottom-left corner sits inside the label.
constexpr double labelTextInsetX = 8;
constexpr double labelTextInsetY = 5;
inline const QColor crosshairColor = QColor::fromRgbF(1, 1, 1, 0.85);
constexpr double crosshairDash = 6;

// Scaled to fill `bounds`, upright.
void drawImage(QPainter &painter, const QImage &image, const Rect &bounds);
void fillDimming(QPainter &painter, const Rect &bounds);
// Fill, then a white outline centred on the rectangle's edge.
void drawSelection(QPainter &painter, const Rect &rect);

// Monospaced, semibold, 13 points, white.
QFont sizeLabelFont();
// "1280 x 720 px".
QString sizeLabelText(capturegeometry::PixelSize size);
QSizeF textSize(const QString &text, const QFont &font);
// The label's size around text of `textSize`: the padding added and rounded up.
QSizeF labelSize(QSizeF textSize);
// The rounded box at `labelRect`, and the text with its bottom-left corner 8 and 5 points inside it.
void drawSizeLabel(QPainter &painter, const Rect &labelRect, const QString &text, const QFont &font);

// Dashed lines across the whole bounds through `point`, one vertical and one horizontal.
void drawCrosshair(QPainter &painter, QPointF point, const Rect &bounds);

} // namespace selectionpainting
