#include "FastPngWriter.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QtEndian>

#include <thread>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(PngWriter::Failure::Kind)

namespace {

QImage noise(int width, int height, QImage::Format format, quint32 seed = 7)
{
    QImage image(width, height, QImage::Format_ARGB32);
    quint32 state = seed;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            state = state * 1664525u + 1013904223u;
            image.setPixel(x, y, state);
        }
    return image.convertToFormat(format);
}

struct Chunk
{
    QByteArray type;
    QByteArray data;
};

QList<Chunk> chunks(const QByteArray &png)
{
    QList<Chunk> result;
    for (qsizetype at = 8; at + 12 <= png.size();) {
        const quint32 length = qFromBigEndian<quint32>(png.constData() + at);
        result.append({png.mid(at + 4, 4), png.mid(at + 8, length)});
        at += 12 + length;
    }
    return result;
}

} // namespace

class FastPngWriterTest : public QObject
{
    Q_OBJECT

private slots:
    void everyPixelSurvives_data();
    void everyPixelSurvives();
    void fileHoldsOnlyTheImage();
    void anotherDecoderReadsIt();
    void concurrentEncodesAreIndependent();
    void writeFileFailures_data();
    void writeFileFailures();
    void writeFileReplacesAndLeavesNothingBehind();
};

void FastPngWriterTest::everyPixelSurvives_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<int>("colourType");
    QTest::newRow("alpha, straight") << noise(33, 9, QImage::Format_ARGB32) << 6;
    QTest::newRow("alpha, premultiplied") << noise(16, 16, QImage::Format_ARGB32_Premultiplied) << 6;
    QTest::newRow("24-bit") << noise(5, 40, QImage::Format_RGB888) << 2;
    QTest::newRow("grey") << noise(30, 30, QImage::Format_Grayscale8) << 2;
    QTest::newRow("palette") << noise(20, 7, QImage::Format_RGB32).convertToFormat(QImage::Format_Indexed8) << 2;
    QTest::newRow("palette with alpha") << noise(20, 7, QImage::Format_Indexed8) << 6;
    QTest::newRow("16-bit alpha") << noise(12, 12, QImage::Format_RGBA64) << 6;
    QTest::newRow("one pixel") << noise(1, 1, QImage::Format_RGB32) << 2;
    QTest::newRow("one wide row") << noise(4099, 1, QImage::Format_RGB32) << 2;
    QTest::newRow("one tall column") << noise(1, 3001, QImage::Format_ARGB32) << 6;
    QTest::newRow("large enough to split, alpha") << noise(700, 500, QImage::Format_ARGB32) << 6;
}

void FastPngWriterTest::everyPixelSurvives()
{
    QFETCH(QImage, image);
    const QImage expected = image.convertToFormat(QImage::Format_ARGB32);
    for (bool mayUseSecondThread : {true, false}) {
        const QByteArray png = FastPngWriter(1, mayUseSecondThread).encode(image);
        QVERIFY(!png.isEmpty());
        QTEST(int(png.at(25)), "colourType");
        const QImage decoded = QImage::fromData(png, "PNG");
        QCOMPARE(decoded.size(), image.size());
        QCOMPARE(decoded.convertToFormat(QImage::Format_ARGB32), expected);
    }
}

void FastPngWriterTest::fileHoldsOnlyTheImage()
{
    const QByteArray png = FastPngWriter().encode(noise(300, 200, QImage::Format_RGB32));
    QCOMPARE(png.left(8), QByteArray::fromHex("89504e470d0a1a0a"));
    const QList<Chunk> parts = chunks(png);
    QCOMPARE(parts.size(), 3);
    QCOMPARE(parts.at(0).type, QByteArray("IHDR"));
    QCOMPARE(parts.at(0).data, QByteArray::fromHex("0000012c000000c8" "0802000000"));
    QCOMPARE(parts.at(1).type, QByteArray("IDAT"));
    QCOMPARE(parts.at(2).type, QByteArray("IEND"));
    QVERIFY(parts.at(2).data.isEmpty());
}

void FastPngWriterTest::anotherDecoderReadsIt()
{
    const QString python = u"/usr/bin/python3"_s;
    if (!QFile::exists(python))
        QSKIP("no system Python to run PIL");
    QTemporaryDir folder;
    const QImage image = noise(641, 479, QImage::Format_ARGB32);
    const QString path = folder.filePath(u"pil.png"_s);
    QVERIFY(!FastPngWriter().writeFile(image, path));
    QProcess pil;
    pil.start(python, {u"-c"_s, u"import hashlib, sys\nfrom PIL import Image\nim = Image.open(sys.argv[1])\n"
                                u"im.load()\nprint(im.mode, hashlib.sha256(im.tobytes()).hexdigest())"_s,
                       path});
    QVERIFY(pil.waitForFinished(30000));
    if (pil.exitCode() != 0 && pil.readAllStandardError().contains("No module named 'PIL'"))
        QSKIP("PIL is not installed");
    const QImage rgba = image.convertToFormat(QImage::Format_RGBA8888);
    const QByteArray bytes(reinterpret_cast<const char *>(rgba.constBits()), rgba.sizeInBytes());
    QCOMPARE(pil.readAllStandardOutput().trimmed(),
             "RGBA " + QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

void FastPngWriterTest::concurrentEncodesAreIndependent()
{
    const FastPngWriter writer;
    QList<QImage> images;
    QList<QByteArray> expected;
    for (quint32 i = 0; i < 4; ++i) {
        images.append(noise(800, 600, QImage::Format_RGB32, i + 1));
        expected.append(writer.encode(images.last()));
    }
    QList<QByteArray> results(4);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            for (int round = 0; round < 5; ++round)
                results[i] = writer.encode(images.at(i));
        });
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(results, expected);
}

void FastPngWriterTest::writeFileFailures_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QString>("relativePath");
    QTest::addColumn<PngWriter::Failure::Kind>("kind");
    const QImage image = noise(4, 4, QImage::Format_RGB32);
    using Kind = PngWriter::Failure::Kind;
    QTest::newRow("missing folder") << image << u"no/such/folder/a.png"_s << Kind::CannotCreateDestination;
    QTest::newRow("name taken by a folder") << image << u"taken.png"_s << Kind::CannotCreateDestination;
    QTest::newRow("null image") << QImage() << u"null.png"_s << Kind::CannotWrite;
}

void FastPngWriterTest::writeFileFailures()
{
    QFETCH(QImage, image);
    QFETCH(QString, relativePath);
    QTemporaryDir folder;
    QVERIFY(QDir(folder.path()).mkdir(u"taken.png"_s));
    const auto failure = FastPngWriter().writeFile(image, folder.filePath(relativePath));
    QVERIFY(failure);
    QTEST(failure->kind, "kind");
    QVERIFY(!failure->description.isEmpty());
    QVERIFY(!QFileInfo(folder.filePath(relativePath)).isFile());
    if (image.isNull())
        QVERIFY(FastPngWriter().encode(image).isEmpty());
}

void FastPngWriterTest::writeFileReplacesAndLeavesNothingBehind()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"capture.png"_s);
    QFile old(path);
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();
    const QImage image = noise(64, 32, QImage::Format_RGB32);
    QVERIFY(!FastPngWriter().writeFile(image, path));
    QCOMPARE(QImage(path).convertToFormat(QImage::Format_RGB32), image);
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList{u"capture.png"_s});
}

QTEST_MAIN(FastPngWriterTest)
#include "tst_fastpngwriter.moc"
