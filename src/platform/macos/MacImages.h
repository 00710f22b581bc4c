#pragma once

// CGImage and QImage both ways. Objective-C++ side: included by the .mm files of this folder only.

#include <CoreGraphics/CoreGraphics.h>

#include <QImage>

namespace macimages {

// A copy of the pixels as premultiplied ARGB32, converted to sRGB: the rest of the product (the overlay
// windows, the PNG writer, the clipboard) treats pixel values as sRGB. A null image for NULL or when
// the pixels cannot be allocated. Any thread.
QImage imageFromCGImage(CGImageRef image);

// A new image holding a copy of the pixels, tagged sRGB; the caller releases it. NULL for a null image.
CGImageRef createCGImage(const QImage &image) CF_RETURNS_RETAINED;

} // namespace macimages
