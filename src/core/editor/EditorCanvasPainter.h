#pragma once

#include <QRectF>
#include <QRegion>

#include <array>
#include <optional>

class EditorViewport;
class ImageEditorView;
class QPainter;
struct Overlay;

// Paints the editor canvas the way the flattened picture will look, at the view's zoom: the
// background, the image, the overlays in drawing order, the overlay being drawn, and the handles of
// the selected overlay. Text boxes get their fill and border; their text is in the fields over them,
// except for a box still being drawn, which has no field yet.
namespace editorcanvas {

void paintCanvas(QPainter &painter, const ImageEditorView &view);
// Paints what lies in `exposed` (canvas view points) and nothing outside it, one rectangle of it at a
// time. Overlays that cannot reach a rectangle are not drawn there at all, so a small repaint stays
// cheap however busy the document is.
void paintCanvas(QPainter &painter, const ImageEditorView &view, const QRegion &exposed);

// The canvas area, in view points, outside which `overlay` leaves every pixel alone (edge smoothing
// included).
QRectF overlayPaintArea(const EditorViewport &viewport, const Overlay &overlay);
// The same on whole view points, without the inside of a rectangle's frame, which it does not paint.
QRegion overlayPaintRegion(const EditorViewport &viewport, const Overlay &overlay);
// Where a motion that turned `before` into `after` repaints: both their regions, with the four sides
// of two rectangles merged side by side so that the repaint stays a few rectangles.
QRegion overlayChangeRegion(const EditorViewport &viewport, const Overlay &before, const Overlay &after);

} // namespace editorcanvas
