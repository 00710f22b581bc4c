#include "editor/EditorCanvasPainter.h"

#include "editor/OverlayPainter.h"
#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"

#include <QPainter>

namespace editorcanvas {

void paintCanvas(QPainter &painter, const ImageEditorView &view)
{
    if (!painter.isActive())
        return;
    const EditorViewport &viewport = view.viewport();
    const QImage &image = view.model().image();
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform | QPainter::TextAntialiasing);
    painter.fillRect(QRectF(QPointF(0, 0), viewport.zoomedCanvasSize()), ImageEditorView::canvasBackground);
    painter.drawImage(viewport.imageFrameInCanvas(), image, QRectF(image.rect()));

    painter.save();
    painter.setTransform(viewport.imageToViewTransform(), true);
    for (Overlay overlay : view.model().overlays()) {
        if (overlay.type == EditorTool::Text)
            overlay.text.clear();
        overlaypainter::drawOverlay(painter, overlay, image);
    }
    if (const std::optional<Overlay> &active = view.interaction().activeOverlay())
        overlaypainter::drawOverlay(painter, *active, image);
    painter.restore();

    for (const ImageEditorView::Handle &handle : view.handles()) {
        painter.setPen(QPen(handle.outline, handle.outlineWidth));
        painter.setBrush(handle.fill);
        painter.drawEllipse(handle.center, handle.diameter / 2, handle.diameter / 2);
    }
    painter.restore();
}

} // namespace editorcanvas
