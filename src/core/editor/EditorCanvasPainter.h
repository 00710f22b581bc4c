#pragma once

#include <QRectF>

class EditorViewport;
class ImageEditorView;
class QPainter;
struct Overlay;

// Paints the editor canvas the way the flattened picture will look, at the view's zoom: the
// background, the image, the overlays in drawing order, the overlay being drawn, and the handles of
// the selected overlay. Text boxes get their fill and border; their text is in the fields over them,
// except for a box still being drawn, which has no field yet.
namespace editorcanvas {

// Paints what lies in `exposed` (canvas view points; null for the whole canvas) and nothing outside it.
// Overlays that cannot reach it are not drawn at all, so a small repaint stays cheap however busy the
// document is.
void paintCanvas(QPainter &painter, const ImageEditorView &view, const QRectF &exposed = QRectF());

// The canvas area, in view points, outside which `overlay` leaves every pixel alone (edge smoothing
// included).
QRectF overlayPaintArea(const EditorViewport &viewport, const Overlay &overlay);

} // namespace editorcanvas
