#include "FastPngWriter.h"

#include "PngEncoder.h"

#include <QImage>

using namespace Qt::StringLiterals;

namespace {

// Captures are 32-bit opaque and flattened edits 32-bit with alpha; both are written as they are
// (premultiplied pixels straightened first). Anything else is converted to 8-bit RGB or straight RGBA.
// The result reads `converted`, which keeps the pixels.
PngPixels pixelsOf(const QImage &image, QImage &converted)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_RGB888:
    case QImage::Format_RGBA8888:
    case QImage::Format_ARGB32:
        converted = image;
        break;
    case QImage::Format_ARGB32_Premultiplied:
        converted = image.convertToFormat(QImage::Format_ARGB32);
        break;
    default:
        converted = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_RGBA8888 : QImage::Format_RGB888);
        break;
    }
    if (converted.isNull())
        return {};
    PngPixels::Layout layout = PngPixels::Layout::Rgba32;
    switch (converted.format()) {
    case QImage::Format_RGB32: layout = PngPixels::Layout::Opaque32; break;
    case QImage::Format_RGB888: layout = PngPixels::Layout::Rgb24; break;
    case QImage::Format_ARGB32: layout = PngPixels::Layout::Argb32; break;
    default: break;
    }
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
