#include "PngRowFilter.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

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

// The same for rows of 32-bit 0xAARRGGBB pixels (no row above: zeros), written as R, G, B, A, or as
// R, G, B when the rows are opaque. An opaque pixel stores four bytes, the last of which the next pixel
// overwrites: `out` then needs one byte to spare.
template <bool withAlpha>
void subtractPixelRow(const quint32 *row, const quint32 *above, uchar *out, size_t width)
{
    constexpr quint32 high = 0x80808080u;
    constexpr size_t bytesPerPixel = withAlpha ? 4 : 3;
    for (size_t x = 0; x < width; ++x, out += bytesPerPixel) {
        const quint32 a = row[x];
        const quint32 b = above ? above[x] : 0;
        const quint32 difference = ((a | high) - (b & ~high)) ^ ((a ^ ~b) & high);
        const quint32 bytes = qToBigEndian(withAlpha ? (difference << 8) | (difference >> 24) : difference << 8);
        std::memcpy(out, &bytes, 4);
    }
}

} // namespace

void filterRows(const PngPixels &pixels, int firstRow, int endRow, uchar *filtered)
{
    const PngPixels::Layout layout = pixels.layout;
    const size_t width = size_t(pixels.width);
    const size_t rowLength = pixels.rowLength();
    for (int y = firstRow; y < endRow; ++y) {
        uchar *out = filtered + size_t(y - firstRow) * (rowLength + 1);
        out[0] = upFilter;
        const uchar *row = pixels.row(y);
        // Nothing above the first row: its bytes go as they are.
        const uchar *above = y == 0 ? nullptr : pixels.row(y - 1);
        const auto *pixels32 = reinterpret_cast<const quint32 *>(row);
        const auto *above32 = reinterpret_cast<const quint32 *>(above);
        if (layout == PngPixels::Layout::Opaque32)
            subtractPixelRow<false>(pixels32, above32, out + 1, width);
        else if (layout == PngPixels::Layout::Argb32)
            subtractPixelRow<true>(pixels32, above32, out + 1, width);
        else if (above)
            subtractRow(row, above, out + 1, rowLength);
        else
            std::memcpy(out + 1, row, rowLength);
    }
}

uchar *filterRowsInPlace(const PngPixels &pixels, int firstRow)
{
    const size_t filteredLength = pixels.rowLength() + 1;
    const size_t stride = size_t(std::max<std::ptrdiff_t>(0, pixels.bytesPerLine));
    const int count = pixels.height - firstRow;
    if (stride <= filteredLength || count <= 0)
        return nullptr;
    // Filtered row k (and the spare byte after it) must end before source row k − 1, still to be read
    // as the row above row k, begins: (k + 1) × filtered + 1 ≤ (k − 1) × stride.
    const size_t gain = stride - filteredLength;
    const int headRows = int(std::min<size_t>(size_t(count), (filteredLength + stride + 1 + gain - 1) / gain));
    const std::unique_ptr<uchar[]> head(new (std::nothrow) uchar[size_t(headRows) * filteredLength + 1]);
    if (!head)
        return nullptr;
    filterRows(pixels, firstRow, firstRow + headRows, head.get());
    uchar *base = const_cast<uchar *>(pixels.row(firstRow));
    for (int k = headRows; k < count; ++k)
        filterRows(pixels, firstRow + k, firstRow + k + 1, base + size_t(k) * filteredLength);
    std::memcpy(base, head.get(), size_t(headRows) * filteredLength);
    return base;
}

} // namespace pngrowfilter
