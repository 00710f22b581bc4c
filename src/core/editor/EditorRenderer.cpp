#include "editor/EditorRenderer.h"

#include "editor/EditorFont.h"
#include "editor/MosaicPixellation.h"
#include "editor/OverlayGeometry.h"

#include <QPainter>
#include <QPen>
#include <QTextOption>

#include <algorithm>
#include <cmath>

namespace editorrender {

namespace {

// Beyond this the flattened picture is not worth a try: a side of 64 Ki pixels, or 1 GiB of pixels.
constexpr double maximumCanvasSide = 65536;
constexpr double maximumCanvasPixels = double(1 << 28);

// Makes the painter draw upright into the device box of `rect`, keeping the current scale. Returns the
// box in the new coordinates: origin at its top-left, y down.
QRectF beginUpright(QPainter &painter, const Rect &rect)
{
    const QTransform transform = painter.transform();
    const QRectF device = transform.mapRect(rect.toQRectF());
    const double scaleX = std::abs(transform.m11());
    const double scaleY = std::abs(transform.m22());
    painter.setTransform(QTransform(scaleX, 0, 0, scaleY, device.left(), device.top()));
    return QRectF(0, 0, std::abs(rect.width()), std::abs(rect.height()));
}

bool isFinite(QPointF p)
{
    return std::isfinite(p.x()) && std::isfinite(p.y());
}

// An overlay with a coordinate that is not a number has no shape to draw.
bool isDrawable(const Overlay &overlay)
{
    return isFinite(overlay.startPoint) && isFinite(overlay.endPoint)
           && std::all_of(overlay.points.cbegin(), overlay.points.cend(), [](QPointF p) { return isFinite(p); });
}

void strokeOutline(QPainter &painter, const QColor &color, double width)
{
    QPen pen(color, width);
    pen.setJoinStyle(Qt::MiterJoin);
    pen.setCapStyle(Qt::FlatCap);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
}

} // namespace

QTransform canvasTransform(const Rect &contentBounds)
{
    return QTransform(1, 0, 0, -1, -contentBounds.minX(), contentBounds.maxY());
}

QImage renderEditedImage(const QImage &image, const QList<Overlay> &overlays)
{
    if (image.isNull())
        return image;
    QList<Overlay> drawable = overlays;
    drawable.removeIf([](const Overlay &overlay) { return !isDrawable(overlay); });
    const QSize pixels = image.size();
    const Rect bounds = overlaygeometry::renderContentBounds(drawable, QSizeF(pixels));
    if (!bounds.isFinite() || bounds.width() > maximumCanvasSide || bounds.height() > maximumCanvasSide
        || bounds.width() * bounds.height() > maximumCanvasPixels)
        return image;

    // Opaque: everything is painted source-over onto white, so alpha would always be full.
    QImage canvas(std::max(1, int(bounds.width())), std::max(1, int(bounds.height())), QImage::Format_RGB32);
    if (canvas.isNull())
        return image;
    canvas.fill(Qt::white);
    QPainter painter(&canvas);
    if (!painter.isActive())
        return image;
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform | QPainter::TextAntialiasing);
    painter.setTransform(canvasTransform(Rect(bounds.minX(), bounds.minY(), canvas.width(), canvas.height())));

    painter.save();
    const QRectF imageBox = beginUpright(painter, Rect(0, 0, pixels.width(), pixels.height()));
    painter.drawImage(imageBox, image, QRectF(image.rect()));
    painter.restore();

    for (const Overlay &overlay : std::as_const(drawable))
        drawOverlay(painter, overlay, image);
    painter.end();
    return canvas;
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
        drawFreehand(painter, overlay.points, overlay.color);
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
    painter.save();
    if (points.size() == 1) {
        const double diameter = overlaygeometry::freehandLineWidth;
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(points.first(), diameter / 2, diameter / 2);
    } else {
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
    painter.save();
    if (const std::optional<mosaic::Patch> patch = mosaic::pixellate(sourceImage, rect)) {
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
        painter.setFont(makeEditorFont(fontFamily, fontSize));
        painter.setPen(color);
        painter.drawText(inset, text, option);
    }
    painter.restore();
}

} // namespace editorrender
