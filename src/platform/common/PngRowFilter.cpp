#include "PngRowFilter.h"

#include <QtEndian>

#include <cstring>

namespace pngrowfilter {

namespace {

constexpr quint8 upFilter = 2;

// out = row − above, byte by byte modulo 256, eight bytes at a time: the high bit of each byte is set
// in the minuend and cleared in the subtrahend so no borrow crosses a byte, then the true high bit is
// put back.
void subtractRow(const uchar *row, const uchar *above, uchar *out, size_t length)
{
    constexpr quint64 high = 0x8080808080808080ull;
    size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        quint64 a, b;
        std::memcpy(&a, row + i, 8);
        std::memcpy(&b, above + i, 8);
        const quint64 difference = ((a | high) - (b & ~high)) ^ ((a ^ ~b) & high);
        std::memcpy(out + i, &difference, 8);
    }
    for (; i < length; ++i)
        out[i] = uchar(row[i] - above[i]);
}

// The same for rows of 0xffRRGGBB pixels, written as R, G, B (no row above: zeros). Each pixel stores
// four bytes, the last of which the next pixel overwrites: `out` needs one byte to spare.
void subtractOpaqueRow(const QRgb *row, const QRgb *above, uchar *out, size_t width)
{
    constexpr quint32 high = 0x80808080u;
    for (size_t x = 0; x < width; ++x, out += 3) {
        const quint32 a = row[x];
        const quint32 b = above ? above[x] : 0;
        const quint32 difference = ((a | high) - (b & ~high)) ^ ((a ^ ~b) & high);
        const quint32 rgb = qToBigEndian(difference << 8);
        std::memcpy(out, &rgb, 4);
    }
}

} // namespace

void filterRows(const QImage &pixels, size_t rowLength, int firstRow, int endRow, uchar *filtered)
{
    const bool isOpaque32 = pixels.format() == QImage::Format_RGB32;
    const size_t width = size_t(pixels.width());
    for (int y = firstRow; y < endRow; ++y) {
        uchar *out = filtered + size_t(y - firstRow) * (rowLength + 1);
        out[0] = upFilter;
        const uchar *row = pixels.constScanLine(y);
        if (y == 0) {
            // Nothing above the first row: its bytes go as they are.
            if (isOpaque32)
                subtractOpaqueRow(reinterpret_cast<const QRgb *>(row), nullptr, out + 1, width);
            else
                std::memcpy(out + 1, row, rowLength);
        } else if (isOpaque32) {
            subtractOpaqueRow(reinterpret_cast<const QRgb *>(row),
                              reinterpret_cast<const QRgb *>(pixels.constScanLine(y - 1)), out + 1, width);
        } else {
            subtractRow(row, pixels.constScanLine(y - 1), out + 1, rowLength);
        }
    }
}

} // namespace pngrowfilter
