#pragma once

class ImageEditorView;
class QPainter;

// Paints the editor canvas the way the flattened picture will look, at the view's zoom: the
// background, the image, the overlays in drawing order, the overlay being drawn, and the handles of
// the selected overlay. Text boxes get their fill and border; their text is in the fields over them,
// except for a box still being drawn, which has no field yet.
namespace editorcanvas {

void paintCanvas(QPainter &painter, const ImageEditorView &view);

} // namespace editorcanvas
