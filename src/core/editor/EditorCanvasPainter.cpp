#include "editor/EditorCanvasPainter.h"

#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"
#include "editor/OverlayGeometry.h"
#include "editor/OverlayPainter.h"

#include <QPainter>

#include <cmath>

namespace editorcanvas {

namespace {

// Edge smoothing reaches a device pixel past a shape; two view points cover it at any pixel ratio of 1 or more.
constexpr double smoothingMargin = 2;

// The overlays as the canvas draws them, with where each can paint (a frame's inside left out).
struct PlacedOverlay
{
    Overlay overlay;
    QRegion reach;
};

void paintArea(QPainter &painter, const ImageEditorView &view, const QRect &area, const QList<PlacedOverlay> &overlays,
               const QList<ImageEditorView::Handle> &handles)
{
    const EditorViewport &viewport = view.viewport();
    const QImage &image = view.model().image();
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform | QPainter::TextAntialiasing);
    painter.fillRect(area, ImageEditorView::canvasBackground);
    if (const QRectF frame = viewport.imageFrameInCanvas(); frame.intersects(QRectF(area)))
        painter.drawImage(frame, image, QRectF(image.rect()));
    painter.save();
    painter.setTransform(viewport.imageToViewTransform(), true);
    for (const PlacedOverlay &placed : overlays) {
        if (placed.reach.intersects(area))
            overlaypainter::drawOverlay(painter, placed.overlay, image);
    }
    painter.restore();
    for (const ImageEditorView::Handle &handle : handles) {
        painter.setPen(QPen(handle.outline, handle.outlineWidth));
        painter.setBrush(handle.fill);
        painter.drawEllipse(handle.center, handle.diameter / 2, handle.diameter / 2);
    }
    painter.restore();
}

} // namespace

QRectF overlayPaintArea(const EditorViewport &viewport, const Overlay &overlay)
{
    const QRectF bounds = overlaygeometry::overlayRenderBounds(overlay).toQRectF();
    return viewport.imageToViewTransform()
        .mapRect(bounds)
        .adjusted(-smoothingMargin, -smoothingMargin, smoothingMargin, smoothingMargin);
}

namespace {

// The top, bottom, left and right strips a rectangle overlay paints, on whole view points; absent when
// its frame has no inside.
std::optional<std::array<QRect, 4>> rectangleSides(const EditorViewport &viewport, const Overlay &overlay)
{
    if (overlay.type != EditorTool::Rectangle)
        return std::nullopt;
    const QRectF area = overlayPaintArea(viewport, overlay);
    // Inside the line and its smoothing nothing is painted.
    const double line = overlaygeometry::rectangleStrokeWidth(overlay.rect()) * viewport.viewPointsPerImagePixel();
    const double inset = line + 2 * smoothingMargin;
    const QRectF inside = area.adjusted(inset, inset, -inset, -inset);
    if (inside.isEmpty())
        return std::nullopt;
    const QRect outer = area.toAlignedRect();
    const int left = int(std::ceil(inside.left()));
    const int top = int(std::ceil(inside.top()));
    const int right = int(std::floor(inside.right()));
    const int bottom = int(std::floor(inside.bottom()));
    if (right <= left || bottom <= top)
        return std::nullopt;
    return std::array<QRect, 4>{QRect(outer.left(), outer.top(), outer.width(), top - outer.top()),
                                QRect(outer.left(), bottom, outer.width(), outer.bottom() + 1 - bottom),
                                QRect(outer.left(), top, left - outer.left(), bottom - top),
                                QRect(right, top, outer.right() + 1 - right, bottom - top)};
}

} // namespace

QRegion overlayPaintRegion(const EditorViewport &viewport, const Overlay &overlay)
{
    const std::optional<std::array<QRect, 4>> sides = rectangleSides(viewport, overlay);
    if (!sides)
        return QRegion(overlayPaintArea(viewport, overlay).toAlignedRect());
    QRegion region;
    for (const QRect &side : *sides)
        region += side;
    return region;
}

QRegion overlayChangeRegion(const EditorViewport &viewport, const Overlay &before, const Overlay &after)
{
    const std::optional<std::array<QRect, 4>> old = rectangleSides(viewport, before);
    const std::optional<std::array<QRect, 4>> now = rectangleSides(viewport, after);
    if (!old || !now)
        return overlayPaintRegion(viewport, before) + overlayPaintRegion(viewport, after);
    QRegion region;
    for (size_t side = 0; side < 4; ++side)
        region += (*old)[side].united((*now)[side]);
    return region;
}

void paintCanvas(QPainter &painter, const ImageEditorView &view)
{
    paintCanvas(painter, view, QRegion(QRectF(QPointF(0, 0), view.viewport().zoomedCanvasSize()).toAlignedRect()));
}

void paintCanvas(QPainter &painter, const ImageEditorView &view, const QRegion &exposed)
{
    if (!painter.isActive())
        return;
    const EditorViewport &viewport = view.viewport();
    const QRegion area = exposed.intersected(QRectF(QPointF(0, 0), viewport.zoomedCanvasSize()).toAlignedRect());
    if (area.isEmpty())
        return;
    QList<PlacedOverlay> overlays;
    for (const Overlay &overlay : view.model().overlays()) {
        const QRegion reach = overlayPaintRegion(viewport, overlay);
        if (!area.intersects(reach))
            continue;
        overlays.append({overlay, reach});
        if (overlay.type == EditorTool::Text)
            overlays.last().overlay.text.clear();
    }
    if (const std::optional<Overlay> &active = view.interaction().activeOverlay())
        overlays.append({*active, overlayPaintRegion(viewport, *active)});
    const QList<ImageEditorView::Handle> handles = view.handles();
    for (const QRect &rect : area)
        paintArea(painter, view, rect, overlays, handles);
}

} // namespace editorcanvas
