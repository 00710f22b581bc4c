#include "capture/SelectionPainting.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <cmath>

using namespace Qt::StringLiterals;

namespace selectionpainting {

namespace {

// Runs `paint` in a top-left, y-down space whose origin is the top-left corner of a box whose bottom
// edge is at `bottom` and whose height is `height` in the view's y-up space.
template<typename Paint>
void paintUpright(QPainter &painter, double left, double bottom, double height, Paint paint)
{
    painter.save();
    painter.translate(left, bottom + height);
    painter.scale(1, -1);
    paint();
    painter.restore();
}

QPen pen(const QColor &color, double width)
{
    QPen pen(color, width);
    pen.setCapStyle(Qt::FlatCap);
    pen.setJoinStyle(Qt::MiterJoin);
    return pen;
}

} // namespace

void drawImage(QPainter &painter, const QImage &image, const Rect &bounds)
{
    paintUpright(painter, bounds.minX(), bounds.minY(), bounds.height(), [&] {
        painter.drawImage(QRectF(0, 0, bounds.width(), bounds.height()), image);
    });
}

void fillDimming(QPainter &painter, const Rect &bounds)
{
    painter.fillRect(bounds.toQRectF(), dimmingColor);
}

void drawSelection(QPainter &painter, const Rect &rect)
{
    painter.fillRect(rect.toQRectF(), selectionFillColor);
    painter.setPen(pen(selectionStrokeColor, selectionStrokeWidth));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(rect.toQRectF());
}

QFont sizeLabelFont()
{
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setStyleHint(QFont::Monospace);
    font.setPixelSize(13);
    font.setWeight(QFont::DemiBold);
    return font;
}

QString sizeLabelText(capturegeometry::PixelSize size)
{
    return QString::number(size.width) % u" x "_s % QString::number(size.height) % u" px"_s;
}

QSizeF textSize(const QString &text, const QFont &font)
{
    const QFontMetricsF metrics(font);
    return QSizeF(metrics.horizontalAdvance(text), metrics.height());
}

QSizeF labelSize(QSizeF textSize)
{
    return QSizeF(std::ceil(textSize.width() + labelHorizontalPadding),
                  std::ceil(textSize.height() + labelVerticalPadding));
}

void drawSizeLabel(QPainter &painter, const Rect &labelRect, const QString &text, const QFont &font)
{
    QPainterPath box;
    box.addRoundedRect(labelRect.toQRectF(), labelCornerRadius, labelCornerRadius);
    painter.fillPath(box, labelFillColor);
    painter.strokePath(box, pen(labelStrokeColor, 1));

    const QFontMetricsF metrics(font);
    const double left = labelRect.minX() + labelTextInsetX;
    const double bottom = labelRect.minY() + labelTextInsetY;
    paintUpright(painter, left, bottom, metrics.height(), [&] {
        painter.setFont(font);
        painter.setPen(Qt::white);
        painter.drawText(QPointF(0, metrics.ascent()), text);
    });
}

void drawCrosshair(QPainter &painter, QPointF point, const Rect &bounds)
{
    QPen dashed = pen(crosshairColor, 1);
    dashed.setDashPattern({crosshairDash, crosshairDash});
    dashed.setDashOffset(0);
    painter.setPen(dashed);
    painter.drawLine(QPointF(point.x(), 0), QPointF(point.x(), bounds.height()));
    painter.drawLine(QPointF(0, point.y()), QPointF(bounds.width(), point.y()));
}

} // namespace selectionpainting
