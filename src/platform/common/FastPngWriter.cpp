#include "FastPngWriter.h"

#include "PngEncoder.h"

#include <QImage>

using namespace Qt::StringLiterals;

namespace {

// Captures and flattened edits are 32-bit opaque and are written as they are; anything else is first
// converted to 8-bit RGB or straight RGBA. The result reads `converted`, which keeps the pixels.
PngPixels pixelsOf(const QImage &image, QImage &converted)
{
    const bool hasAlpha = image.hasAlphaChannel();
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_RGB888:
    case QImage::Format_RGBA8888:
        converted = image;
        break;
    default:
        converted = image.convertToFormat(hasAlpha ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
        break;
    }
    if (converted.isNull())
        return {};
    const PngPixels::Layout layout = converted.format() == QImage::Format_RGB32 ? PngPixels::Layout::Opaque32
        : converted.format() == QImage::Format_RGB888                           ? PngPixels::Layout::Rgb24
                                                                                : PngPixels::Layout::Rgba32;
    return {converted.constBits(), converted.width(), converted.height(), converted.bytesPerLine(), layout};
}

} // namespace

FastPngWriter::FastPngWriter(int compressionLevel, bool mayUseSecondThread)
    : m_compressionLevel(compressionLevel)
    , m_mayUseSecondThread(mayUseSecondThread)
{
}

QByteArray FastPngWriter::encode(const QImage &image) const
{
    QImage converted;
    return pngencoder::encode(pixelsOf(image, converted), m_compressionLevel, m_mayUseSecondThread);
}

std::optional<PngWriter::Failure> FastPngWriter::writeFile(const QImage &image, const QString &path) const
{
    QImage converted;
    const PngPixels pixels = pixelsOf(image, converted);
    if (pixels.isNull())
        return Failure{Failure::Kind::CannotWrite, u"the image could not be encoded as PNG"_s};
    return pngencoder::writeFile(pixels, path, m_compressionLevel, m_mayUseSecondThread);
}
