#include "PngImageData.h"

#include "PngRowFilter.h"

#include <QtEndian>

#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <memory>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace pngimagedata {

namespace {

// Below this much filtered data a second thread costs more than it saves.
constexpr size_t splitThreshold = size_t(1) << 20;
// zlib at level 1 is slower than libdeflate by about this much, so it gets the smaller part.
constexpr double zlibShare = 0.45;
// Rows filtered at a time for zlib.
constexpr size_t blockBytes = size_t(256) << 10;

struct CompressorDeleter
{
    void operator()(libdeflate_compressor *compressor) const { libdeflate_free_compressor(compressor); }
};

struct Part
{
    std::vector<uchar> bytes;
    quint32 adler = 1;
    bool isDone = false;
};

// Rows [0, endRow) as raw deflate ending in a sync flush.
void compressUpper(const QImage &pixels, size_t rowLength, int endRow, int level, Part &part) noexcept
{
    z_stream stream{};
    if (deflateInit2(&stream, std::clamp(level, 1, 9), Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return;
    const size_t rowsPerBlock = std::max<size_t>(1, blockBytes / (rowLength + 1));
    try {
        std::vector<uchar> block(rowsPerBlock * (rowLength + 1) + 1);
        part.bytes.resize(size_t(endRow) * (rowLength + 1) / 4 + 1024);
        stream.next_out = part.bytes.data();
        stream.avail_out = uInt(part.bytes.size());
        for (int row = 0; row < endRow;) {
            const int blockEnd = std::min(endRow, row + int(rowsPerBlock));
            pngrowfilter::filterRows(pixels, rowLength, row, blockEnd, block.data());
            const size_t size = size_t(blockEnd - row) * (rowLength + 1);
            part.adler = quint32(libdeflate_adler32(part.adler, block.data(), size));
            stream.next_in = block.data();
            stream.avail_in = uInt(size);
            const int flush = blockEnd == endRow ? Z_SYNC_FLUSH : Z_NO_FLUSH;
            do {
                if (stream.avail_out == 0) {
                    const size_t used = part.bytes.size();
                    part.bytes.resize(used * 2);
                    stream.next_out = part.bytes.data() + used;
                    stream.avail_out = uInt(part.bytes.size() - used);
                }
                if (deflate(&stream, flush) == Z_STREAM_ERROR) {
                    deflateEnd(&stream);
                    return;
                }
            } while (stream.avail_in > 0 || stream.avail_out == 0);
            row = blockEnd;
        }
        part.bytes.resize(part.bytes.size() - stream.avail_out);
        part.isDone = true;
    } catch (const std::bad_alloc &) {
    }
    deflateEnd(&stream);
}

// Rows [firstRow, height) as raw deflate ending the stream.
void compressLower(const QImage &pixels, size_t rowLength, int firstRow, int level, Part &part) noexcept
{
    const std::unique_ptr<libdeflate_compressor, CompressorDeleter> compressor(
        libdeflate_alloc_compressor(std::clamp(level, 1, 12)));
    const size_t size = size_t(pixels.height() - firstRow) * (rowLength + 1);
    const std::unique_ptr<uchar[]> filtered(new (std::nothrow) uchar[size + 1]);
    if (!compressor || !filtered)
        return;
    pngrowfilter::filterRows(pixels, rowLength, firstRow, pixels.height(), filtered.get());
    part.adler = quint32(libdeflate_adler32(1, filtered.get(), size));
    try {
        part.bytes.resize(libdeflate_deflate_compress_bound(compressor.get(), size));
    } catch (const std::bad_alloc &) {
        return;
    }
    const size_t written =
        libdeflate_deflate_compress(compressor.get(), filtered.get(), size, part.bytes.data(), part.bytes.size());
    part.bytes.resize(written);
    part.isDone = written > 0;
}

} // namespace

bool append(const QImage &pixels, size_t rowLength, int level, bool mayUseSecondThread, QByteArray &out)
{
    const size_t totalSize = size_t(pixels.height()) * (rowLength + 1);
    // zlib counts in 32 bits: beyond that, and for small pictures, one part.
    const bool isSplit = mayUseSecondThread && totalSize >= splitThreshold && totalSize < (size_t(1) << 31);
    const int splitRow = isSplit ? int(pixels.height() * zlibShare) : 0;
    Part upper;
    Part lower;
    upper.isDone = !isSplit;
    try {
        std::jthread helper;
        if (isSplit)
            helper = std::jthread([&] { compressUpper(pixels, rowLength, splitRow, level, upper); });
        compressLower(pixels, rowLength, splitRow, level, lower);
    } catch (const std::system_error &) {
        // No thread to be had: both parts here.
        compressUpper(pixels, rowLength, splitRow, level, upper);
        compressLower(pixels, rowLength, splitRow, level, lower);
    }
    if (!upper.isDone || !lower.isDone)
        return false;

    const size_t lowerSize = totalSize - size_t(splitRow) * (rowLength + 1);
    const quint32 adler =
        isSplit ? quint32(adler32_combine(upper.adler, lower.adler, z_off_t(lowerSize))) : lower.adler;
    const qsizetype start = out.size();
    try {
        out.resize(start + 2 + qsizetype(upper.bytes.size() + lower.bytes.size()) + 4);
    } catch (const std::bad_alloc &) {
        return false;
    }
    uchar *at = reinterpret_cast<uchar *>(out.data()) + start;
    *at++ = 0x78; // deflate with a 32 KiB window
    *at++ = 0x01; // fastest compression, and the header's check bits
    at = std::copy(upper.bytes.begin(), upper.bytes.end(), at);
    at = std::copy(lower.bytes.begin(), lower.bytes.end(), at);
    qToBigEndian(adler, at);
    return true;
}

} // namespace pngimagedata
