#include "FastPngWriter.h"

#include "PngImageData.h"

#include <QImage>
#include <QSaveFile>
#include <QtEndian>

#include <libdeflate.h>

#include <cstring>
#include <new>

using namespace Qt::StringLiterals;

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

FastPngWriter::FastPngWriter(int compressionLevel, bool mayUseSecondThread)
    : m_compressionLevel(compressionLevel)
    , m_mayUseSecondThread(mayUseSecondThread)
{
}

QByteArray FastPngWriter::encode(const QImage &image) const
{
    if (image.isNull())
        return {};
    const bool hasAlpha = image.hasAlphaChannel();
    // Captures and flattened edits are 32-bit opaque and are filtered as they are; anything else is
    // first converted to 8-bit RGB or straight RGBA.
    const QImage pixels = image.format() == QImage::Format_RGB32 || image.format() == QImage::Format_RGB888
                                  || image.format() == QImage::Format_RGBA8888
                              ? image
                              : image.convertToFormat(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
    if (pixels.isNull())
        return {};
    const size_t width = size_t(pixels.width());
    const size_t height = size_t(pixels.height());
    const size_t rowLength = width * (hasAlpha ? 4 : 3);

    try {
        QByteArray png("\x89PNG\r\n\x1a\n", 8);
        qsizetype chunk = openChunk(png);
        char header[13];
        qToBigEndian(quint32(width), header);
        qToBigEndian(quint32(height), header + 4);
        header[8] = 8;                                       // bits per sample
        header[9] = hasAlpha ? 6 : 2;                        // RGBA or RGB
        header[10] = header[11] = header[12] = 0;            // deflate, standard filters, not interlaced
        png.append(header, sizeof header);
        closeChunk(png, chunk, "IHDR");

        chunk = openChunk(png);
        if (!pngimagedata::append(pixels, rowLength, m_compressionLevel, m_mayUseSecondThread, png)
            || png.size() - chunk - 8 > maximumChunkLength)
            return {};
        closeChunk(png, chunk, "IDAT");
        closeChunk(png, openChunk(png), "IEND");
        return png;
    } catch (const std::bad_alloc &) {
        return {};
    }
}

std::optional<PngWriter::Failure> FastPngWriter::writeFile(const QImage &image, const QString &path) const
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
