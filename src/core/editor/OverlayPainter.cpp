#include "editor/OverlayPainter.h"

#include "editor/EditorFont.h"
#include "editor/MosaicPixellation.h"
#include "editor/OverlayGeometry.h"
#include "editor/RoundStrokeRaster.h"

#include <QPainter>
#include <QPen>
#include <QTextOption>

#include <cmath>

namespace overlaypainter {

namespace {

void strokeOutline(QPainter &painter, const QColor &color, double width)
{
    QPen pen(color, width);
    pen.setJoinStyle(Qt::MiterJoin);
    pen.setCapStyle(Qt::FlatCap);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
}

} // namespace

QRectF beginUpright(QPainter &painter, const Rect &rect)
{
    const QTransform transform = painter.transform();
    const QRectF device = transform.mapRect(rect.toQRectF());
    const double scaleX = std::abs(transform.m11());
    const double scaleY = std::abs(transform.m22());
    painter.setTransform(QTransform(scaleX, 0, 0, scaleY, device.left(), device.top()));
    return QRectF(0, 0, std::abs(rect.width()), std::abs(rect.height()));
}

void drawOverlay(QPainter &painter, const Overlay &overlay, const QImage &sourceImage)
{
    switch (overlay.type) {
    case EditorTool::Rectangle:
        drawRectangle(painter, overlay.rect(), overlay.color);
        break;
    case EditorTool::Circle:
        drawCircle(painter, overlay.rect(), overlay.color);
        break;
    case EditorTool::Arrow:
        drawArrow(painter, overlay.startPoint, overlay.endPoint, overlay.color);
        break;
    case EditorTool::Freehand:
        drawFreehand(painter, overlay.points.list(), overlay.color);
        break;
    case EditorTool::Mosaic:
        drawMosaic(painter, overlay.rect(), sourceImage);
        break;
    case EditorTool::Text:
        drawText(painter, overlay.text, overlay.rect(), overlay.color, overlay.textFillColor, overlay.fontFamily,
                 overlay.fontSize);
        break;
    }
}

void drawRectangle(QPainter &painter, const Rect &rect, const QColor &color)
{
    if (!painter.isActive())
        return;
    painter.save();
    strokeOutline(painter, color, overlaygeometry::rectangleStrokeWidth(rect));
    painter.drawRect(rect.toQRectF());
    painter.restore();
}

void drawCircle(QPainter &painter, const Rect &rect, const QColor &color)
{
    if (!painter.isActive())
        return;
    painter.save();
    strokeOutline(painter, color, overlaygeometry::circleStrokeWidth(rect));
    painter.drawEllipse(rect.toQRectF());
    painter.restore();
}

void drawArrow(QPainter &painter, QPointF from, QPointF to, const QColor &color)
{
    if (!painter.isActive())
        return;
    QPainterPath path = overlaygeometry::arrowPath(from, to);
    path.setFillRule(Qt::WindingFill);
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPath(path);
    painter.restore();
}

void drawFreehand(QPainter &painter, const QList<QPointF> &points, const QColor &color)
{
    if (!painter.isActive() || points.isEmpty())
        return;
    // Rasterised in device pixels, then put on the device one to one.
    const QTransform toDevice = painter.deviceTransform();
    QList<QPointF> devicePoints;
    devicePoints.reserve(points.size());
    for (const QPointF &point : points)
        devicePoints.append(toDevice.map(point));
    const double scale = std::sqrt(std::abs(toDevice.determinant()));
    const double width = overlaygeometry::freehandLineWidth * scale;
    // Under a clip only its pixels are rasterised: a repaint of a small area costs that area.
    QRect within;
    if (painter.hasClipping()) {
        within = toDevice.mapRect(painter.clipBoundingRect()).toAlignedRect().adjusted(-1, -1, 1, 1);
        // As far as the rasteriser looks: a clip beyond it leaves nothing to draw, which must not fall
        // through to the general stroker below.
        const double grow = width / 2 + 1;
        const QRectF reach = overlaygeometry::boundsOfPoints({devicePoints.constData(), size_t(devicePoints.size())})
                                 .toQRectF()
                                 .adjusted(-grow, -grow, grow, grow);
        if (!reach.intersects(QRectF(within)))
            return;
    }
    painter.save();
    if (std::optional<roundstroke::Patch> patch = roundstroke::rasterize(devicePoints, width, color, within)) {
        // What lies between the painter's own coordinates and the device: the pixel ratio, and for a
        // widget inside a window the widget's place in the window's backing store.
        const QTransform belowWorld = painter.worldTransform().inverted() * toDevice;
        patch->image.setDevicePixelRatio(painter.device()->devicePixelRatio());
        painter.resetTransform();
        painter.drawImage(belowWorld.inverted().map(QPointF(patch->topLeft)), patch->image);
    } else if (points.size() == 1) {
        const double radius = overlaygeometry::freehandLineWidth / 2;
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(points.first(), radius, radius);
    } else {
        // Too large to rasterise here (a stroke far beyond a zoomed-in view): Qt's stroker clips.
        QPen pen(color, overlaygeometry::freehandLineWidth);
        pen.setCapStyle(Qt::RoundCap);
        pen.setJoinStyle(Qt::RoundJoin);
        painter.setPen(pen);
        painter.setBrush(Qt::NoBrush);
        painter.drawPolyline(points.constData(), int(points.size()));
    }
    painter.restore();
}

void drawMosaic(QPainter &painter, const Rect &rect, const QImage &sourceImage)
{
    if (!painter.isActive())
        return;
    // Under a clip only the blocks reaching into it are made.
    QRect within;
    if (painter.hasClipping()) {
        const QRectF clip = painter.clipBoundingRect();
        if (!clip.intersects(rect.standardized().toQRectF()))
            return;
        within = clip.toAlignedRect().adjusted(-1, -1, 1, 1);
    }
    painter.save();
    if (const std::optional<mosaic::Patch> patch = mosaic::pixellate(sourceImage, rect, within)) {
        if (patch->image.isNull()) {
            painter.restore();
            return;
        }
        const QRect &pixels = patch->pixels;
        const QRectF box = beginUpright(painter, Rect(pixels.x(), pixels.y(), pixels.width(), pixels.height()));
        // Blocks stay crisp when the canvas is zoomed.
        painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
        painter.drawImage(box, patch->image);
    } else {
        painter.fillRect(rect.toQRectF(), QColor::fromRgbF(0, 0, 0, 0.35f));
    }
    painter.restore();
}

void drawText(QPainter &painter, const QString &text, const Rect &rect, const QColor &color,
              const QColor &fillColor, const QString &fontFamily, double fontSize)
{
    if (!painter.isActive())
        return;
    painter.save();
    painter.fillRect(rect.toQRectF(), fillColor);
    strokeOutline(painter, color, overlaygeometry::textBorderWidth(rect));
    painter.drawRect(rect.toQRectF());

    const QRectF box = beginUpright(painter, rect);
    const QRectF inset = box.adjusted(4, 2, -4, -2);
    if (!text.isEmpty() && inset.isValid()) {
        QTextOption option(Qt::AlignLeft | Qt::AlignTop);
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        painter.setClipRect(inset, Qt::IntersectClip);
        painter.setFont(editorrender::makeEditorFont(fontFamily, fontSize));
        painter.setPen(color);
        painter.drawText(inset, text, option);
    }
    painter.restore();
}

} // namespace overlaypainter
