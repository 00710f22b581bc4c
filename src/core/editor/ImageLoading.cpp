#include "editor/ImageLoading.h"

#include <QBuffer>
#include <QColorSpace>
#include <QFile>
#include <QImageReader>

using namespace Qt::StringLiterals;

namespace imageloading {

namespace {

void applyAllocationLimit()
{
    // Process-wide; set once, before the first decode.
    static const bool isApplied = [] {
        QImageReader::setAllocationLimit(allocationLimitMegabytes);
        return true;
    }();
    Q_UNUSED(isApplied);
}

QImage read(QIODevice &device, QString *error)
{
    applyAllocationLimit();
    auto fail = [error](const QString &reason) {
        if (error)
            *error = reason;
        return QImage();
    };
    QImageReader reader(&device);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    if (!reader.canRead())
        return fail(u"not an image of a known format"_s);
    // Most decoders check the limit themselves; checking the declared size here covers those that
    // do not, before they allocate.
    const QSize declared = reader.size();
    if (declared.isValid() && qint64(declared.width()) * declared.height() * 4
                                  > qint64(allocationLimitMegabytes) * 1024 * 1024)
        return fail(u"image of %1 x %2 pixels exceeds the limit of %3 MiB"_s.arg(declared.width())
                        .arg(declared.height())
                        .arg(allocationLimitMegabytes));
    QImage image = reader.read();
    if (image.isNull())
        return fail(reader.errorString());
    if (image.colorSpace().isValid() && image.colorSpace() != QColorSpace(QColorSpace::SRgb))
        image.convertToColorSpace(QColorSpace::SRgb);
    image.setDevicePixelRatio(1);
    return image;
}

} // namespace

QImage loadImageFile(const QString &path, QString *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        if (error)
            *error = file.errorString();
        return QImage();
    }
    return read(file, error);
}

QImage decodeImageData(const QByteArray &data, QString *error)
{
    QByteArray bytes = data;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    return read(buffer, error);
}

} // namespace imageloading
