#include "editor/EditorCanvasPainter.h"

#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"
#include "editor/OverlayGeometry.h"
#include "editor/OverlayPainter.h"

#include <QPainter>

namespace editorcanvas {

namespace {

// Edge smoothing reaches a device pixel past a shape; two view points cover it at any pixel ratio of 1 or more.
constexpr double smoothingMargin = 2;

} // namespace

QRectF overlayPaintArea(const EditorViewport &viewport, const Overlay &overlay)
{
    const QRectF bounds = overlaygeometry::overlayRenderBounds(overlay).toQRectF();
    return viewport.imageToViewTransform()
        .mapRect(bounds)
        .adjusted(-smoothingMargin, -smoothingMargin, smoothingMargin, smoothingMargin);
}

void paintCanvas(QPainter &painter, const ImageEditorView &view, const QRectF &exposed)
{
    if (!painter.isActive())
        return;
    const EditorViewport &viewport = view.viewport();
    const QImage &image = view.model().image();
    const QRectF canvas(QPointF(0, 0), viewport.zoomedCanvasSize());
    const QRectF area = exposed.isNull() ? canvas : exposed.intersected(canvas);
    if (area.isEmpty())
        return;
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform | QPainter::TextAntialiasing);
    painter.fillRect(area, ImageEditorView::canvasBackground);
    if (const QRectF frame = viewport.imageFrameInCanvas(); frame.intersects(area))
        painter.drawImage(frame, image, QRectF(image.rect()));

    const auto drawIfReaching = [&](const Overlay &overlay) {
        if (!overlayPaintArea(viewport, overlay).intersects(area))
            return;
        painter.save();
        painter.setTransform(viewport.imageToViewTransform(), true);
        overlaypainter::drawOverlay(painter, overlay, image);
        painter.restore();
    };
    for (Overlay overlay : view.model().overlays()) {
        if (overlay.type == EditorTool::Text)
            overlay.text.clear();
        drawIfReaching(overlay);
    }
    if (const std::optional<Overlay> &active = view.interaction().activeOverlay())
        drawIfReaching(*active);

    for (const ImageEditorView::Handle &handle : view.handles()) {
        painter.setPen(QPen(handle.outline, handle.outlineWidth));
        painter.setBrush(handle.fill);
        painter.drawEllipse(handle.center, handle.diameter / 2, handle.diameter / 2);
    }
    painter.restore();
}

} // namespace editorcanvas
