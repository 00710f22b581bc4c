#include "FlattenedImage.h"
#include "TestPrinters.h"

#include <QGuiApplication>
#include <QTest>

#include <array>
#include <cmath>
#include <map>

using namespace flattening;

// Pixel tests of the overlay kinds with a shape of their own: mosaic blocks, dots, arrow heads and
// stroke widths.
class OverlayPainterTest : public QObject
{
    Q_OBJECT

private slots:
    void mosaicBlocksAreUniformAndOnTheImageGrid_data();
    void mosaicBlocksAreUniformAndOnTheImageGrid();
    void mosaicHidesEarlierOverlaysWithSourcePixels();
    void mosaicWithoutSourcePixelsIsADarkBox();
    void singlePointFreehandIsADotOfFour();
    void zeroLengthArrowIsADotOfSix();
    void arrowHeadIsFilled();
    void strokeWidths_data();
    void strokeWidths();
};

void OverlayPainterTest::mosaicBlocksAreUniformAndOnTheImageGrid_data()
{
    QTest::addColumn<QSize>("imageSize");
    QTest::addColumn<Rect>("rect");
    QTest::addColumn<int>("edge");
    QTest::newRow("48 x 240 offset: blocks of 5 on the image grid") << QSize(100, 300) << Rect(7, 13, 48, 240) << 5;
    QTest::newRow("480 x 960 offset: blocks of 20 on the image grid") << QSize(520, 1000) << Rect(33, 21, 480, 960) << 20;
    QTest::newRow("reaching past the image edge") << QSize(100, 300) << Rect(70, 250, 48, 240) << 5;
}

void OverlayPainterTest::mosaicBlocksAreUniformAndOnTheImageGrid()
{
    QFETCH(QSize, imageSize);
    QFETCH(Rect, rect);
    QFETCH(int, edge);
    const QImage source = noise(imageSize.width(), imageSize.height());
    const Flattened result = flatten(source, {make(EditorTool::Mosaic, rect.origin(), {rect.maxX(), rect.maxY()})});
    auto sourceAt = [&](int x, int y) { return source.pixel(x, imageSize.height() - 1 - y); };

    // Each block's colour: the rounded mean of the source pixels it covers inside the rectangle.
    std::map<std::pair<int, int>, std::array<int, 4>> sums;
    for (int y = int(rect.minY()); y < int(rect.maxY()) && y < imageSize.height(); ++y)
        for (int x = int(rect.minX()); x < int(rect.maxX()) && x < imageSize.width(); ++x) {
            auto &sum = sums[{x / edge, y / edge}];
            const QRgb p = sourceAt(x, y);
            sum[0] += qRed(p);
            sum[1] += qGreen(p);
            sum[2] += qBlue(p);
            sum[3] += 1;
        }
    int mismatches = 0;
    for (int y = int(rect.minY()) - 2; y < int(rect.maxY()) + 2 && y < imageSize.height(); ++y)
        for (int x = int(rect.minX()) - 2; x < int(rect.maxX()) + 2 && x < imageSize.width(); ++x) {
            if (x < 0 || y < 0)
                continue;
            QRgb expected = sourceAt(x, y);
            if (rect.contains(QPointF(x + 0.5, y + 0.5))) {
                const auto &sum = sums[{x / edge, y / edge}];
                const int n = sum[3];
                expected = qRgb((sum[0] + n / 2) / n, (sum[1] + n / 2) / n, (sum[2] + n / 2) / n);
            }
            if (result.at(x, y) != expected && ++mismatches < 5)
                qWarning("pixel (%d, %d) is %08x, expected %08x", x, y, result.at(x, y), expected);
        }
    QCOMPARE(mismatches, 0);
}

void OverlayPainterTest::mosaicHidesEarlierOverlaysWithSourcePixels()
{
    const QRgb grey = qRgb(120, 120, 120);
    const Flattened result = flatten(filled(200, 200, grey),
                                     {make(EditorTool::Rectangle, {40, 40}, {160, 160}, Qt::red),
                                      make(EditorTool::Mosaic, {20, 20}, {180, 180}),
                                      make(EditorTool::Circle, {90, 90}, {110, 110}, Qt::blue)});
    QCOMPARE(result.at(40, 100), grey);
    QCOMPARE(result.at(100, 158), grey);
    QCOMPARE(result.at(90, 100), qRgb(0, 0, 255));
}

void OverlayPainterTest::mosaicWithoutSourcePixelsIsADarkBox()
{
    const Flattened result = flatten(filled(50, 50, white), {make(EditorTool::Mosaic, {60, 0}, {100, 40})});
    QCOMPARE(result.image.size(), QSize(100, 50));
    // White under black at 0.35.
    const int expected = qRound(255 * 0.65);
    QVERIFY(qAbs(qRed(result.at(80, 20)) - expected) <= 1);
    QCOMPARE(result.at(55, 20), white);
}

void OverlayPainterTest::singlePointFreehandIsADotOfFour()
{
    Overlay stroke = make(EditorTool::Freehand, {50, 50}, {50, 50});
    stroke.points = {{50, 50}};
    const Flattened result = flatten(filled(100, 100, white), {stroke});
    QCOMPARE(result.ink(white), QRect(48, 48, 4, 4));
    QCOMPARE(result.at(49, 49), black);
    QCOMPARE(result.at(50, 50), black);
}

void OverlayPainterTest::zeroLengthArrowIsADotOfSix()
{
    const Flattened result = flatten(filled(100, 100, white), {make(EditorTool::Arrow, {50, 50}, {50, 50})});
    QCOMPARE(result.ink(white), QRect(47, 47, 6, 6));
    QCOMPARE(result.at(48, 49), black);
    QCOMPARE(result.at(51, 50), black);
}

void OverlayPainterTest::arrowHeadIsFilled()
{
    const Flattened result = flatten(filled(140, 100, white), {make(EditorTool::Arrow, {20, 50}, {120, 50})});
    QCOMPARE(result.at(100, 56), black);
    QCOMPARE(result.at(100, 43), black);
    QCOMPARE(result.at(110, 50), black);
    QCOMPARE(result.at(60, 50), black);
    QCOMPARE(result.at(100, 61), white);
    QCOMPARE(result.at(121, 50), white);
    // No outline: the tail is only 2 wide.
    QCOMPARE(result.at(21, 52), white);
}

void OverlayPainterTest::strokeWidths_data()
{
    QTest::addColumn<Overlay>("overlay");
    QTest::addColumn<double>("width");
    QTest::newRow("small rectangle: 4") << make(EditorTool::Rectangle, {100, 100}, {200, 200}) << 4.0;
    QTest::newRow("wide rectangle: 1% of its width") << make(EditorTool::Rectangle, {50, 100}, {1050, 400}) << 10.0;
    QTest::newRow("tall thin rectangle: 4") << make(EditorTool::Rectangle, {100, 50}, {140, 850}) << 4.0;
    QTest::newRow("circle: 4% of the shorter side") << make(EditorTool::Circle, {100, 100}, {700, 400}) << 12.0;
    QTest::newRow("tall circle: 4% of its width") << make(EditorTool::Circle, {100, 50}, {300, 850}) << 8.0;
    QTest::newRow("text border: 4% of the shorter side") << textBox(QString(), {100, 100}, {600, 250}, 20) << 6.0;
    QTest::newRow("small text border: 2") << textBox(QString(), {100, 100}, {300, 140}, 20) << 2.0;
}

void OverlayPainterTest::strokeWidths()
{
    QFETCH(Overlay, overlay);
    QFETCH(double, width);
    const Flattened result = flatten(filled(1100, 900, white), {overlay});
    const Rect rect = overlay.rect();
    const int row = int(rect.midY());
    const double ink = inkAlongRow(result, row, int(rect.minX()) - 20, int(rect.minX()) + 20);
    QVERIFY2(qAbs(ink - width) < 0.25, qPrintable(QString::number(ink)));
}

QTEST_MAIN(OverlayPainterTest)
#include "tst_overlaypainter.moc"
