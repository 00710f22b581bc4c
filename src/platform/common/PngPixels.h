#pragma once

#include <cstddef>

// A picture to be written as PNG: rows of pixels in memory owned by someone else (a QImage, a shared
// memory segment the X server wrote into). Nothing here needs Qt's image classes, so a program that
// only grabs and writes can do without them.
struct PngPixels
{
    enum class Layout {
        // 32 bits per pixel holding 0xffRRGGBB in the machine's byte order (QImage::Format_RGB32, a
        // depth-24 X11 image), written as 8-bit RGB.
        Opaque32,
        // 8-bit R, G, B, written as they are.
        Rgb24,
        // 8-bit R, G, B, A, not premultiplied, written as they are.
        Rgba32,
        // 32 bits per pixel holding 0xAARRGGBB, not premultiplied, in the machine's byte order
        // (QImage::Format_ARGB32), written as 8-bit RGBA.
        Argb32,
    };

    const unsigned char *data = nullptr;
    int width = 0;
    int height = 0;
    std::ptrdiff_t bytesPerLine = 0;
    Layout layout = Layout::Opaque32;
    // The rows may be overwritten while they are encoded (a grab nobody reads afterwards): the encoder
    // then filters them where they are instead of into a copy, which saves that much fresh memory.
    bool isDisposable = false;

    bool isNull() const { return !data || width <= 0 || height <= 0; }
    bool hasAlpha() const { return layout == Layout::Rgba32 || layout == Layout::Argb32; }
    const unsigned char *row(int y) const { return data + std::ptrdiff_t(y) * bytesPerLine; }
    // Bytes of one row of the PNG's image data, before filtering.
    std::size_t rowLength() const { return std::size_t(width) * (hasAlpha() ? 4 : 3); }
};
