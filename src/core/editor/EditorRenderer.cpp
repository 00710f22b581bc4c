#include "editor/EditorRenderer.h"

#include "editor/OverlayGeometry.h"
#include "editor/OverlayPainter.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace editorrender {

namespace {

// Beyond this the flattened picture is not worth a try: a side of 64 Ki pixels, or 1 GiB of pixels.
constexpr double maximumCanvasSide = 65536;
constexpr double maximumCanvasPixels = double(1 << 28);

bool isFinite(QPointF p)
{
    return std::isfinite(p.x()) && std::isfinite(p.y());
}

// An overlay with a coordinate that is not a number has no shape to draw.
bool isDrawable(const Overlay &overlay)
{
    return isFinite(overlay.startPoint) && isFinite(overlay.endPoint)
           && std::all_of(overlay.points.begin(), overlay.points.end(), [](QPointF p) { return isFinite(p); });
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

    // An RGBA canvas, as the saved file keeps the alpha channel. Everything is painted source-over onto
    // white, so in practice alpha stays full. When the image fills the canvas and has no transparency,
    // copying it is the same as painting it on white.
    const bool isImageTheCanvas = bounds == Rect(0, 0, pixels.width(), pixels.height()) && !image.hasAlphaChannel();
    QImage canvas = isImageTheCanvas ? image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                     : QImage(std::max(1, int(bounds.width())), std::max(1, int(bounds.height())),
                                              QImage::Format_ARGB32_Premultiplied);
    if (canvas.isNull())
        return image;
    canvas.setDevicePixelRatio(1);
    if (!isImageTheCanvas)
        canvas.fill(Qt::white);
    QPainter painter(&canvas);
    if (!painter.isActive())
        return image;
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform | QPainter::TextAntialiasing);
    painter.setTransform(canvasTransform(Rect(bounds.minX(), bounds.minY(), canvas.width(), canvas.height())));

    if (!isImageTheCanvas) {
        painter.save();
        const QRectF imageBox = overlaypainter::beginUpright(painter, Rect(0, 0, pixels.width(), pixels.height()));
        painter.drawImage(imageBox, image, QRectF(image.rect()));
        painter.restore();
    }

    for (const Overlay &overlay : std::as_const(drawable))
        overlaypainter::drawOverlay(painter, overlay, image);
    painter.end();
    // Straight alpha, in place: what the PNG holds.
    return std::move(canvas).convertToFormat(QImage::Format_ARGB32);
}

} // namespace editorrender
