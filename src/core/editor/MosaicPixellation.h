#pragma once

#include "geometry/Rect.h"

#include <QImage>
#include <QRect>

#include <optional>

// Pixellation of the mosaic tool.
//
// The mosaic covers the pixels whose centres lie inside its rectangle. They are divided into square
// blocks on a grid fixed to the image (lines at whole multiples of the block edge from the image's
// bottom-left corner), so a block never depends on where the rectangle starts. A block's colour is the
// mean, in premultiplied ARGB and rounded to nearest, of the source pixels it covers inside both the
// rectangle and the image; blocks that cover no source pixel (outside the image) stay transparent.
namespace mosaic {

// max(5, shorter side / 24): a 24th of the shorter side, never below 5 pixels.
double blockEdge(const Rect &rect);

struct Patch
{
    // Premultiplied ARGB, top row first.
    QImage image;
    // Where the patch lies, in image pixels: x from the left, y from the bottom (y up).
    QRect pixels;
};

// The pixellated patch of `source` under `rect` (image coordinates, y up). Absent when there is
// nothing to pixellate: no finite area, no source pixel under it, or no memory for the patch.
// With `within` (image pixels, y up) only the blocks reaching into it are made, the same as in the
// whole patch; they may all be transparent, outside the image, and the patch is empty (a null image)
// when no block reaches into it.
std::optional<Patch> pixellate(const QImage &source, const Rect &rect, const QRect &within = QRect());

} // namespace mosaic
