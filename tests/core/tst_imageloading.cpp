#include "editor/ImageLoading.h"

#include <QBuffer>
#include <QColorSpace>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImageWriter>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

using namespace Qt::StringLiterals;

namespace {

// Few colours, so the palette of GIF keeps them exact.
QImage picture(int width = 31, int height = 17)
{
    QImage image(width, height, QImage::Format_RGB32);
    const QRgb colours[] = {qRgb(255, 0, 0), qRgb(0, 128, 255), qRgb(250, 250, 250), qRgb(20, 30, 40)};
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, colours[(x / 4 + y / 3) % 4]);
    return image;
}

// Qt reads GIF but cannot write it: a 1 × 1 picture whose two-colour palette starts with red.
const QByteArray oneRedPixelGif = QByteArray::fromHex(
    "47494638376101000100810000ff00000000000000000000002c000000000100010000080400010404003b");

QByteArray encoded(const QImage &image, const QByteArray &format, int quality = -1)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setQuality(quality);
    if (!writer.write(image))
        qWarning("cannot write %s: %s", format.constData(), qPrintable(writer.errorString()));
    return bytes;
}

quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = 0xffffffffu;
    for (char c : bytes) {
        crc ^= quint8(c);
        for (int k = 0; k < 8; ++k)
            crc = (crc >> 1) ^ (0xedb88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

QByteArray bigEndian32(quint32 value)
{
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray littleEndian(quint32 value, int size)
{
    QByteArray bytes(size, '\0');
    for (int i = 0; i < size; ++i)
        bytes[i] = char(value >> (8 * i));
    return bytes;
}

QByteArray pngChunk(const QByteArray &type, const QByteArray &data)
{
    return bigEndian32(quint32(data.size())) + type + data + bigEndian32(crc32(type + data));
}

// Headers declaring a picture of `side` × `side`, followed by a little of what would be its data.
QByteArray pngHeader(quint32 side)
{
    const QByteArray header = bigEndian32(side) + bigEndian32(side) + QByteArray::fromHex("0802000000");
    return QByteArray::fromHex("89504e470d0a1a0a") + pngChunk("IHDR", header)
           + pngChunk("IDAT", QByteArray::fromHex("789c636000000001000100")) + pngChunk("IEND", {});
}

QByteArray bmpHeader(quint32 side)
{
    return "BM" + littleEndian(54 + 64, 4) + littleEndian(0, 4) + littleEndian(54, 4) + littleEndian(40, 4)
           + littleEndian(side, 4) + littleEndian(side, 4) + littleEndian(1, 2) + littleEndian(24, 2)
           + QByteArray(24, '\0') + QByteArray(64, '\x7f');
}

QByteArray gifHeader(quint32 side)
{
    return "GIF89a" + littleEndian(side, 2) + littleEndian(side, 2) + QByteArray::fromHex("000000") + ","
           + littleEndian(0, 4) + littleEndian(side, 2) + littleEndian(side, 2) + QByteArray::fromHex("00020144003b");
}

QByteArray webpHeader(quint32 side)
{
    const QByteArray vp8x = "VP8X" + littleEndian(10, 4) + littleEndian(0, 4) + littleEndian(side - 1, 3)
                            + littleEndian(side - 1, 3);
    return "RIFF" + littleEndian(quint32(4 + vp8x.size()), 4) + "WEBP" + vp8x;
}

} // namespace

class ImageLoadingTest : public QObject
{
    Q_OBJECT

private slots:
    void formatsDecode_data();
    void formatsDecode();
    void filesAreReadByTheirContents();
    void orientationIsApplied();
    void otherColourSpacesBecomeSrgb();
    void badInputGivesNoImage_data();
    void badInputGivesNoImage();
    void pictureAboveQtsDefaultLimitIsHandled();
};

void ImageLoadingTest::formatsDecode_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QImage>("expected");
    for (const QByteArray format : {"png", "bmp", "tiff", "webp"}) {
        if (!QImageWriter::supportedImageFormats().contains(format))
            QFAIL("image format plugin missing (qt6-image-formats-plugins)");
        // WebP at quality 100 is lossless.
        QTest::newRow(format.constData()) << encoded(picture(), format, format == "webp" ? 100 : -1) << picture();
    }
    QImage red(1, 1, QImage::Format_RGB32);
    red.fill(qRgb(255, 0, 0));
    QTest::newRow("gif") << oneRedPixelGif << red;
}

void ImageLoadingTest::formatsDecode()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QImage, expected);
    QString error;
    const QImage loaded = imageloading::decodeImageData(bytes, &error);
    QVERIFY2(!loaded.isNull(), qPrintable(error));
    QCOMPARE(loaded.convertToFormat(QImage::Format_RGB32), expected);
    QCOMPARE(loaded.devicePixelRatio(), 1.0);
}

void ImageLoadingTest::filesAreReadByTheirContents()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(u"really-a-png.jpg"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(encoded(picture(), "png"));
    file.close();
    QCOMPARE(imageloading::loadImageFile(file.fileName()).convertToFormat(QImage::Format_RGB32), picture());

    QFile empty(folder.filePath(u"empty.png"_s));
    QVERIFY(empty.open(QIODevice::WriteOnly));
    empty.close();
    QVERIFY(QDir(folder.path()).mkdir(u"folder.png"_s));
    for (const QString &name : {u"empty.png"_s, u"missing.png"_s, u"folder.png"_s}) {
        QString error;
        QVERIFY2(imageloading::loadImageFile(folder.filePath(name), &error).isNull(), qPrintable(name));
        QVERIFY2(!error.isEmpty(), qPrintable(name));
    }
}

void ImageLoadingTest::orientationIsApplied()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, "jpeg");
    writer.setTransformation(QImageIOHandler::TransformationRotate90);
    QVERIFY(writer.write(picture(40, 20)));
    QCOMPARE(imageloading::decodeImageData(bytes).size(), QSize(20, 40));
}

void ImageLoadingTest::otherColourSpacesBecomeSrgb()
{
    QImage wide(8, 8, QImage::Format_RGB32);
    wide.fill(qRgb(200, 100, 50));
    wide.setColorSpace(QColorSpace(QColorSpace::DisplayP3));
    const QImage loaded = imageloading::decodeImageData(encoded(wide, "png"));
    QCOMPARE(loaded.colorSpace(), QColorSpace(QColorSpace::SRgb));
    // Display P3's orange is more saturated than any sRGB value of the same numbers.
    QVERIFY(qRed(loaded.pixel(4, 4)) > 200);
    QVERIFY(qBlue(loaded.pixel(4, 4)) < 50);
}

void ImageLoadingTest::badInputGivesNoImage_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error"); // a part of the message; empty: any
    const QByteArray png = encoded(picture(200, 100), "png");
    const QByteArray jpeg = encoded(picture(200, 100), "jpeg");
    QByteArray damaged = png;
    for (qsizetype i = 60; i < damaged.size() - 20; i += 7)
        damaged[i] = char(damaged[i] ^ 0x5a);
    QTest::newRow("zero bytes") << QByteArray() << QString();
    QTest::newRow("text") << QByteArray("just some words, not a picture\n") << QString();
    QTest::newRow("png signature only") << png.left(8) << QString();
    QTest::newRow("png cut in half") << png.left(png.size() / 2) << QString();
    QTest::newRow("png with damaged data") << damaged << QString();
    // libpng would allocate the declared 1.75 GiB before finding the text is not there.
    const QByteArray longText = bigEndian32(0x70000000) + "tEXtComment\0" + bigEndian32(0);
    QTest::newRow("png chunk longer than the data") << png.chopped(12) + longText + png.right(12)
                                                    << u"chunk longer than the data"_s;
    QTest::newRow("jpeg header only") << jpeg.left(200) << QString();
    QTest::newRow("gif header only") << oneRedPixelGif.left(13) << QString();
    const QString tooLarge = u"exceeds the limit of 512 MiB"_s;
    QTest::newRow("png 16384 x 16384") << pngHeader(16384) << tooLarge;
    QTest::newRow("bmp 16384 x 16384") << bmpHeader(16384) << tooLarge;
    QTest::newRow("gif 16384 x 16384") << gifHeader(16384) << tooLarge;
    QTest::newRow("webp 16384 x 16384") << webpHeader(16384) << tooLarge;
    QTest::newRow("png 65535 x 65535") << pngHeader(65535) << tooLarge;
}

void ImageLoadingTest::badInputGivesNoImage()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    QString message;
    QVERIFY(imageloading::decodeImageData(bytes, &message).isNull());
    QVERIFY(!message.isEmpty());
    QVERIFY2(message.contains(error), qPrintable(message));
}

void ImageLoadingTest::pictureAboveQtsDefaultLimitIsHandled()
{
    // 8000 × 5000 takes 153 MiB as 32-bit pixels, beyond the 128 MiB Qt allows by default.
    QImage large(8000, 5000, QImage::Format_RGB32);
    large.fill(qRgb(10, 20, 30));
    const QByteArray png = encoded(large, "png");
    large = QImage();
    QString error;
    const QImage loaded = imageloading::decodeImageData(png, &error);
    QVERIFY2(!loaded.isNull(), qPrintable(error));
    QCOMPARE(loaded.size(), QSize(8000, 5000));
    QCOMPARE(loaded.pixel(7999, 4999), qRgb(10, 20, 30));
}

QTEST_MAIN(ImageLoadingTest)
#include "tst_imageloading.moc"
