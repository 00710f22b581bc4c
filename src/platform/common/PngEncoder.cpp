#include "PngEncoder.h"

#include "AtomicFile.h"
#include "PngImageData.h"

#include <QtEndian>

#include <libdeflate.h>

#include <cstring>
#include <new>

using namespace Qt::StringLiterals;

namespace pngencoder {

namespace {

// The largest length a chunk may declare.
constexpr qsizetype maximumChunkLength = 0x7fffffff;

// A chunk is opened by reserving its length and type, its data is appended, and closing it fills in
// the length and type and appends the CRC.
qsizetype openChunk(QByteArray &out)
{
    const qsizetype start = out.size();
    out.append(8, '\0');
    return start;
}

void closeChunk(QByteArray &out, qsizetype chunkStart, const char (&type)[5])
{
    const qsizetype length = out.size() - chunkStart - 8;
    qToBigEndian(quint32(length), out.data() + chunkStart);
    std::memcpy(out.data() + chunkStart + 4, type, 4);
    const quint32 crc = quint32(libdeflate_crc32(0, out.constData() + chunkStart + 4, size_t(length) + 4));
    char bytes[4];
    qToBigEndian(crc, bytes);
    out.append(bytes, 4);
}

} // namespace

QByteArray encode(const PngPixels &pixels, int compressionLevel, bool mayUseSecondThread)
{
    if (pixels.isNull())
        return {};
    try {
        QByteArray png("\x89PNG\r\n\x1a\n", 8);
        qsizetype chunk = openChunk(png);
        char header[13];
        qToBigEndian(quint32(pixels.width), header);
        qToBigEndian(quint32(pixels.height), header + 4);
        header[8] = 8;                                       // bits per sample
        header[9] = pixels.hasAlpha() ? 6 : 2;               // RGBA or RGB
        header[10] = header[11] = header[12] = 0;            // deflate, standard filters, not interlaced
        png.append(header, sizeof header);
        closeChunk(png, chunk, "IHDR");

        chunk = openChunk(png);
        if (!pngimagedata::append(pixels, compressionLevel, mayUseSecondThread, png)
            || png.size() - chunk - 8 > maximumChunkLength)
            return {};
        closeChunk(png, chunk, "IDAT");
        closeChunk(png, openChunk(png), "IEND");
        return png;
    } catch (const std::bad_alloc &) {
        return {};
    }
}

std::optional<PngWriter::Failure> writeFile(const PngPixels &pixels, const QString &path, int compressionLevel,
                                            bool mayUseSecondThread)
{
    const QByteArray png = encode(pixels, compressionLevel, mayUseSecondThread);
    if (png.isEmpty())
        return PngWriter::Failure{PngWriter::Failure::Kind::CannotWrite, u"the image could not be encoded as PNG"_s};
    if (const std::optional<atomicfile::Failure> failure = atomicfile::replace(path, png)) {
        return PngWriter::Failure{failure->isCreating ? PngWriter::Failure::Kind::CannotCreateDestination
                                                      : PngWriter::Failure::Kind::CannotWrite,
                                  failure->description};
    }
    return std::nullopt;
}

} // namespace pngencoder
