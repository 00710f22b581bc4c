// Pixels the encoder may overwrite (a grab nobody reads afterwards) are filtered where they lie: the
// file must come out exactly as from a copy, and hold the grabbed pixels, for every shape of picture,
// with the rows split between two threads or not.
#include "PngEncoder.h"

#include <QImage>
#include <QTest>

#include <cstring>

using namespace Qt::StringLiterals;

namespace {

QImage noise(int width, int height, int bytesPerLine, quint32 seed)
{
    // Rows as an X server hands them: 0x00RRGGBB, the top byte not necessarily 0xff, any padding.
    QImage image(width, height, QImage::Format_RGB32);
    quint32 state = seed;
    for (int y = 0; y < height; ++y) {
        auto *row = reinterpret_cast<quint32 *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            state = state * 1664525u + 1013904223u;
            // Runs of equal pixels as on a screen, so the compressor finds matches across the rows.
            row[x] = (x % 7 == 0 ? state : (x > 0 ? row[x - 1] : state)) & 0x00ffffff;
        }
    }
    if (bytesPerLine == image.bytesPerLine())
        return image;
    QImage wide(bytesPerLine / 4, height, QImage::Format_RGB32);
    wide.fill(0x00abcdef);
    for (int y = 0; y < height; ++y)
        std::memcpy(wide.scanLine(y), image.constScanLine(y), size_t(width) * 4);
    return wide;
}

} // namespace

class PngEncoderTest : public QObject
{
    Q_OBJECT

private slots:
    void disposablePixelsGiveTheSameFile_data();
    void disposablePixelsGiveTheSameFile();
};

void PngEncoderTest::disposablePixelsGiveTheSameFile_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("padding");
    QTest::addColumn<bool>("mayUseSecondThread");
    QTest::newRow("a 4K desktop on two threads") << 3840 << 2160 << 0 << true;
    QTest::newRow("a region on two threads") << 1280 << 720 << 0 << true;
    QTest::newRow("a region on one thread") << 1280 << 720 << 0 << false;
    QTest::newRow("fewer rows than go through the small buffer") << 640 << 5 << 0 << true;
    QTest::newRow("one row") << 999 << 1 << 0 << true;
    QTest::newRow("two pixels wide, tall") << 2 << 3000 << 0 << true;
    QTest::newRow("one pixel wide: no room, filtered into a copy") << 1 << 500 << 0 << true;
    QTest::newRow("padded rows") << 333 << 4000 << 64 << true;
}

void PngEncoderTest::disposablePixelsGiveTheSameFile()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, padding);
    QFETCH(bool, mayUseSecondThread);
    const QImage original = noise(width, height, width * 4 + padding, 11);
    const PngPixels kept{original.constBits(), width, height, original.bytesPerLine(), PngPixels::Layout::Opaque32};
    const QByteArray expected = pngencoder::encode(kept, 1, mayUseSecondThread);
    QVERIFY(!expected.isEmpty());

    QImage disposable = original.copy();
    PngPixels overwritten = kept;
    overwritten.data = disposable.bits();
    overwritten.isDisposable = true;
    QCOMPARE(pngencoder::encode(overwritten, 1, mayUseSecondThread), expected);

    // The grabbed colours; the unused top byte of each pixel is no part of them.
    QCOMPARE(QImage::fromData(expected, "PNG").convertToFormat(QImage::Format_RGB32), original.copy(0, 0, width, height));
}

QTEST_APPLESS_MAIN(PngEncoderTest)
#include "tst_pngencoder.moc"
