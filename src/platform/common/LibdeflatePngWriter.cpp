#include "LibdeflatePngWriter.h"

#include <QImage>
#include <QSaveFile>

#include <libdeflate.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

using namespace Qt::StringLiterals;

namespace {

constexpr char signature[] = {'\x89', 'P', 'N', 'G', '\r', '\n', '\x1a', '\n'};
constexpr quint64 highBits = 0x8080808080808080ull;
// The largest length a chunk may declare.
constexpr size_t maximumChunkLength = 0x7fffffff;

struct CompressorDeleter
{
    void operator()(libdeflate_compressor *compressor) const { libdeflate_free_compressor(compressor); }
};

char *putBigEndian(char *out, quint32 value)
{
    out[0] = char(value >> 24);
    out[1] = char(value >> 16);
    out[2] = char(value >> 8);
    out[3] = char(value);
    return out + 4;
}

// Writes length, type and CRC around `length` bytes of data that are already in place after the type.
char *finishChunk(char *chunk, const char (&type)[5], size_t length)
{
    putBigEndian(chunk, quint32(length));
    std::memcpy(chunk + 4, type, 4);
    const quint32 crc = quint32(libdeflate_crc32(0, chunk + 4, length + 4));
    return putBigEndian(chunk + 8 + length, crc);
}

// out = row − above, byte by byte modulo 256 (the "up" filter), eight bytes at a time: the high bit of
// each byte is set in the minuend and cleared in the subtrahend so no borrow crosses a byte, then
// the true high bit is put back.
void subtractRow(const uchar *row, const uchar *above, uchar *out, size_t length)
{
    size_t i = 0;
    for (; i + 8 <= length; i += 8) {
        quint64 a, b;
        std::memcpy(&a, row + i, 8);
        std::memcpy(&b, above + i, 8);
        const quint64 difference = ((a | highBits) - (b & ~highBits)) ^ ((a ^ ~b) & highBits);
        std::memcpy(out + i, &difference, 8);
    }
    for (; i < length; ++i)
        out[i] = uchar(row[i] - above[i]);
}

} // namespace

LibdeflatePngWriter::LibdeflatePngWriter(int compressionLevel)
    : m_compressionLevel(std::clamp(compressionLevel, 1, 12))
{
}

QByteArray LibdeflatePngWriter::encode(const QImage &image) const
{
    if (image.isNull())
        return {};
    const bool hasAlpha = image.hasAlphaChannel();
    const QImage pixels = image.convertToFormat(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    if (pixels.isNull())
        return {};
    const size_t width = size_t(pixels.width());
    const size_t height = size_t(pixels.height());
    const size_t rowLength = width * (hasAlpha ? 4 : 3);

    // Each row: the filter type, then the filtered bytes. The first row's "above" is all zeros.
    const size_t filteredSize = height * (rowLength + 1);
    std::unique_ptr<uchar[]> filtered(new (std::nothrow) uchar[filteredSize]);
    if (!filtered)
        return {};
    const std::unique_ptr<uchar[]> zeros(new (std::nothrow) uchar[rowLength]());
    if (!zeros)
        return {};
    for (size_t y = 0; y < height; ++y) {
        uchar *out = filtered.get() + y * (rowLength + 1);
        out[0] = 2;
        const uchar *above = y == 0 ? zeros.get() : pixels.constScanLine(int(y - 1));
        subtractRow(pixels.constScanLine(int(y)), above, out + 1, rowLength);
    }

    const std::unique_ptr<libdeflate_compressor, CompressorDeleter> compressor(
        libdeflate_alloc_compressor(m_compressionLevel));
    if (!compressor)
        return {};
    const size_t bound = libdeflate_zlib_compress_bound(compressor.get(), filteredSize);
    QByteArray png;
    png.resize(qsizetype(sizeof signature + 25 + 12 + bound + 12));
    if (png.size() != qsizetype(sizeof signature + 25 + 12 + bound + 12))
        return {};
    char *out = png.data();
    std::memcpy(out, signature, sizeof signature);
    out += sizeof signature;

    char *header = out + 8;
    putBigEndian(header, quint32(width));
    putBigEndian(header + 4, quint32(height));
    header[8] = 8;                  // bits per sample
    header[9] = hasAlpha ? 6 : 2;   // RGBA or RGB
    header[10] = header[11] = header[12] = 0; // deflate, adaptive filtering method, no interlace
    out = finishChunk(out, "IHDR", 13);

    const size_t compressedSize =
        libdeflate_zlib_compress(compressor.get(), filtered.get(), filteredSize, out + 8, bound);
    if (compressedSize == 0 || compressedSize > maximumChunkLength)
        return {};
    out = finishChunk(out, "IDAT", compressedSize);
    out = finishChunk(out, "IEND", 0);
    png.truncate(out - png.constData());
    return png;
}

std::optional<PngWriter::Failure> LibdeflatePngWriter::writeFile(const QImage &image, const QString &path) const
{
    const QByteArray png = encode(image);
    if (png.isEmpty())
        return Failure{Failure::Kind::CannotWrite, u"the image could not be encoded as PNG"_s};
    // Written beside the destination and renamed over it, so a failed save never leaves half a file.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return Failure{Failure::Kind::CannotCreateDestination, file.errorString()};
    if (file.write(png) != png.size() || !file.commit())
        return Failure{Failure::Kind::CannotWrite, file.errorString()};
    return std::nullopt;
}
