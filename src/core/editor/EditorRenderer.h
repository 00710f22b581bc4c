#pragma once

#include "editor/Overlay.h"
#include "geometry/Rect.h"

#include <QImage>
#include <QList>
#include <QTransform>

// Flattening of an editor document into one bitmap.
namespace editorrender {

// A new opaque bitmap of the content bounds (the image grown to take in every overlay), white where
// the image does not reach, with the image and then the overlays in list order painted on it (see
// overlaypainter). One pixel per image pixel, whatever the image's device pixel ratio. Overlays with
// a coordinate that is not a number are left out. Returns `image` itself when the canvas cannot be
// made (no image, absurd extent, no memory).
QImage renderEditedImage(const QImage &image, const QList<Overlay> &overlays);

// The transform that puts image coordinates onto a canvas covering `contentBounds` (y flipped).
QTransform canvasTransform(const Rect &contentBounds);

} // namespace editorrender
