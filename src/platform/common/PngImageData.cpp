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

// What the compressors write. Left uninitialised: only the pages written are ever touched, so a
// generous first size costs neither time nor resident memory.
struct Bytes
{
    std::unique_ptr<uchar[]> data;
    size_t capacity = 0;
    size_t size = 0;

    // Keeps what was written. False when memory ran out.
    bool reserve(size_t bytes)
    {
        std::unique_ptr<uchar[]> bigger(new (std::nothrow) uchar[bytes]);
        if (!bigger)
            return false;
        std::copy(data.get(), data.get() + size, bigger.get());
        data = std::move(bigger);
        capacity = bytes;
        return true;
    }
};

struct Part
{
    Bytes bytes;
    quint32 adler = 1;
    bool isDone = false;
};

// Rows [0, endRow) as raw deflate ending in a sync flush.
void compressUpper(const PngPixels &pixels, int endRow, int level, Part &part) noexcept
{
    const size_t rowLength = pixels.rowLength();
    z_stream stream{};
    if (deflateInit2(&stream, std::clamp(level, 1, 9), Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK)
        return;
    const size_t rowsPerBlock = std::max<size_t>(1, blockBytes / (rowLength + 1));
    const std::unique_ptr<uchar[]> block(new (std::nothrow) uchar[rowsPerBlock * (rowLength + 1) + 1]);
    Bytes &out = part.bytes;
    if (block && out.reserve(size_t(endRow) * (rowLength + 1) / 4 + 1024)) {
        stream.next_out = out.data.get();
        stream.avail_out = uInt(out.capacity);
        for (int row = 0; row < endRow;) {
            const int blockEnd = std::min(endRow, row + int(rowsPerBlock));
            pngrowfilter::filterRows(pixels, row, blockEnd, block.get());
            const size_t size = size_t(blockEnd - row) * (rowLength + 1);
            part.adler = quint32(libdeflate_adler32(part.adler, block.get(), size));
            stream.next_in = block.get();
            stream.avail_in = uInt(size);
            const int flush = blockEnd == endRow ? Z_SYNC_FLUSH : Z_NO_FLUSH;
            do {
                if (stream.avail_out == 0) {
                    out.size = out.capacity;
                    if (!out.reserve(out.capacity * 2)) {
                        deflateEnd(&stream);
                        return;
                    }
                    stream.next_out = out.data.get() + out.size;
                    stream.avail_out = uInt(out.capacity - out.size);
                }
                if (deflate(&stream, flush) == Z_STREAM_ERROR) {
                    deflateEnd(&stream);
                    return;
                }
            } while (stream.avail_in > 0 || stream.avail_out == 0);
            row = blockEnd;
        }
        out.size = out.capacity - stream.avail_out;
        part.isDone = true;
    }
    deflateEnd(&stream);
}

// Rows [firstRow, height) as raw deflate ending the stream.
void compressLower(const PngPixels &pixels, int firstRow, int level, Part &part) noexcept
{
    const std::unique_ptr<libdeflate_compressor, CompressorDeleter> compressor(
        libdeflate_alloc_compressor(std::clamp(level, 1, 12)));
    if (!compressor)
        return;
    const size_t size = size_t(pixels.height - firstRow) * (pixels.rowLength() + 1);
    const uchar *filtered = pixels.isDisposable ? pngrowfilter::filterRowsInPlace(pixels, firstRow) : nullptr;
    std::unique_ptr<uchar[]> copy;
    if (!filtered) {
        copy.reset(new (std::nothrow) uchar[size + 1]);
        if (!copy)
            return;
        pngrowfilter::filterRows(pixels, firstRow, pixels.height, copy.get());
        filtered = copy.get();
    }
    part.adler = quint32(libdeflate_adler32(1, filtered, size));
    Bytes &out = part.bytes;
    if (!out.reserve(libdeflate_deflate_compress_bound(compressor.get(), size)))
        return;
    out.size = libdeflate_deflate_compress(compressor.get(), filtered, size, out.data.get(), out.capacity);
    part.isDone = out.size > 0;
}

} // namespace

bool append(const PngPixels &pixels, int level, bool mayUseSecondThread, QByteArray &out)
{
    const size_t rowLength = pixels.rowLength();
    const size_t totalSize = size_t(pixels.height) * (rowLength + 1);
    // zlib counts in 32 bits: beyond that, and for small pictures, one part.
    const bool isSplit = mayUseSecondThread && totalSize >= splitThreshold && totalSize < (size_t(1) << 31);
    const int splitRow = isSplit ? int(pixels.height * zlibShare) : 0;
    Part upper;
    Part lower;
    upper.isDone = !isSplit;
    try {
        std::jthread helper;
        if (isSplit)
            helper = std::jthread([&] { compressUpper(pixels, splitRow, level, upper); });
        compressLower(pixels, splitRow, level, lower);
    } catch (const std::system_error &) {
        // No thread to be had: both parts here.
        compressUpper(pixels, splitRow, level, upper);
        compressLower(pixels, splitRow, level, lower);
    }
    if (!upper.isDone || !lower.isDone)
        return false;

    const size_t lowerSize = totalSize - size_t(splitRow) * (rowLength + 1);
    const quint32 adler =
        isSplit ? quint32(adler32_combine(upper.adler, lower.adler, z_off_t(lowerSize))) : lower.adler;
    const qsizetype start = out.size();
    try {
        out.resize(start + 2 + qsizetype(upper.bytes.size + lower.bytes.size) + 4);
    } catch (const std::bad_alloc &) {
        return false;
    }
    uchar *at = reinterpret_cast<uchar *>(out.data()) + start;
    *at++ = 0x78; // deflate with a 32 KiB window
    *at++ = 0x01; // fastest compression, and the header's check bits
    at = std::copy(upper.bytes.data.get(), upper.bytes.data.get() + upper.bytes.size, at);
    at = std::copy(lower.bytes.data.get(), lower.bytes.data.get() + lower.bytes.size, at);
    qToBigEndian(adler, at);
    return true;
}

} // namespace pngimagedata
