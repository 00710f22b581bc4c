#include "editor/ImageLoading.h"

#include <QBuffer>
#include <QColorSpace>
#include <QFile>
#include <QImageReader>
#include <QtEndian>

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

// libpng allocates a chunk at its declared length, up to 2 GiB, before it finds the data missing; a
// few damaged bytes must not cost that much. True when a PNG chunk runs past the end of the data.
bool hasPngChunkPastEnd(QIODevice &device)
{
    if (device.isSequential() || device.peek(8) != QByteArray::fromHex("89504e470d0a1a0a"))
        return false;
    const qint64 start = device.pos();
    bool isPastEnd = false;
    for (qint64 chunk = start + 8; !isPastEnd && chunk + 8 <= device.size();) {
        device.seek(chunk);
        const QByteArray head = device.read(8);
        if (head.size() < 8 || head.endsWith("IEND"))
            break;
        chunk += 12 + qint64(qFromBigEndian<quint32>(head.constData()));
        isPastEnd = chunk > device.size();
    }
    device.seek(start);
    return isPastEnd;
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
    if (hasPngChunkPastEnd(device))
        return fail(u"PNG chunk longer than the data"_s);
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
