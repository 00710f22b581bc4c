#include "TestPrinters.h"

#include "capture/CaptureGeometry.h"

#include <QTest>

using namespace capturegeometry;

Q_DECLARE_METATYPE(std::optional<QRect>)

namespace {

bool fuzzyEqual(const Rect &a, const Rect &b)
{
    auto same = [](double x, double y) { return std::abs(x - y) < 1e-9; };
    return same(a.x(), b.x()) && same(a.y(), b.y()) && same(a.width(), b.width()) && same(a.height(), b.height());
}

DisplayInfo display(quint32 id, Rect frame)
{
    return {id, frame, frame, 1};
}

} // namespace

class CaptureGeometryTest : public QObject
{
    Q_OBJECT

private slots:
    void pixelAlignment_data();
    void pixelAlignment();
    void desktopTop_data();
    void desktopTop();
    void cropRectangle_data();
    void cropRectangle();
    void cropCopiesOnlyTheCroppedPixels();
    void selectionPixels_data();
    void selectionPixels();
    void displayFilterOutputIsNeverBelowOnePixel();
    void labelPlacement_data();
    void labelPlacement();
};

void CaptureGeometryTest::pixelAlignment_data()
{
    QTest::addColumn<Rect>("input");
    QTest::addColumn<double>("scale");
    QTest::addColumn<Rect>("expected");
    QTest::newRow("grows outward to half points at 2x") << Rect(10.2, 10.2, 0.1, 0.1) << 2.0 << Rect(10, 10, 0.5, 0.5);
    QTest::newRow("zero width becomes one device pixel") << Rect(5, 5, 0, 3) << 2.0 << Rect(5, 5, 0.5, 3);
    QTest::newRow("scale below one counts as one") << Rect(1.5, 1.5, 2, 2) << 0.5 << Rect(1, 1, 3, 3);
    QTest::newRow("scale zero counts as one") << Rect(1.5, 1.5, 2, 2) << 0.0 << Rect(1, 1, 3, 3);
    QTest::newRow("negative edges round toward minus infinity")
        << Rect(-10.3, -5.7, 1, 1) << 1.0 << Rect(-11, -6, 2, 2);
    QTest::newRow("thirds at 3x") << Rect(0.5, 0.5, 1, 1) << 3.0 << Rect(1.0 / 3, 1.0 / 3, 4.0 / 3, 4.0 / 3);
}

void CaptureGeometryTest::pixelAlignment()
{
    QFETCH(Rect, input);
    QFETCH(double, scale);
    QFETCH(Rect, expected);
    const Rect aligned = pixelAlignedRect(input, scale);
    QVERIFY2(fuzzyEqual(aligned, expected), qPrintable(trace::rect(aligned)));
}

void CaptureGeometryTest::desktopTop_data()
{
    QTest::addColumn<QList<DisplayInfo>>("screens");
    QTest::addColumn<std::optional<DisplayInfo>>("mainScreen");
    QTest::addColumn<double>("expected");
    const DisplayInfo primary = display(1, Rect(0, 0, 1440, 900));
    const DisplayInfo above = display(2, Rect(-200, 900, 1920, 1080));
    const DisplayInfo left = display(3, Rect(-1280, -100, 1280, 1024));
    QTest::newRow("the display at the origin, even when not listed first")
        << QList<DisplayInfo>{above, primary} << std::optional<DisplayInfo>(above) << 900.0;
    QTest::newRow("without one at the origin, the main display")
        << QList<DisplayInfo>{above, left} << std::optional<DisplayInfo>(left) << 924.0;
    QTest::newRow("without either, the highest top edge")
        << QList<DisplayInfo>{left, above} << std::optional<DisplayInfo>() << 1980.0;
    QTest::newRow("no displays at all") << QList<DisplayInfo>{} << std::optional<DisplayInfo>() << 0.0;
}

void CaptureGeometryTest::desktopTop()
{
    QFETCH(QList<DisplayInfo>, screens);
    QFETCH(std::optional<DisplayInfo>, mainScreen);
    QFETCH(double, expected);
    QCOMPARE(desktopTopY(screens, mainScreen), expected);
}

void CaptureGeometryTest::cropRectangle_data()
{
    QTest::addColumn<Rect>("localRect");
    QTest::addColumn<QSize>("imagePixels");
    QTest::addColumn<Rect>("logicalFrame");
    QTest::addColumn<std::optional<QRect>>("expected");
    // Flipping and scaling, whatever the frame's position, the multi-display capture table checks across layouts.
    const Rect frame(0, 0, 1000, 800);
    QTest::newRow("partly outside keeps the part inside")
        << Rect(900, 700, 200, 200) << QSize(1000, 800) << frame << std::optional<QRect>(QRect(900, 0, 100, 100));
    QTest::newRow("entirely outside gives nothing")
        << Rect(1200, 100, 50, 50) << QSize(1000, 800) << frame << std::optional<QRect>();
    QTest::newRow("touching the edge from outside gives nothing")
        << Rect(1000, 100, 50, 50) << QSize(1000, 800) << frame << std::optional<QRect>();
    QTest::newRow("empty selection gives nothing")
        << Rect(10, 10, 0, 50) << QSize(1000, 800) << frame << std::optional<QRect>();
    QTest::newRow("empty frame gives nothing")
        << Rect(10, 10, 5, 5) << QSize(1000, 800) << Rect(0, 0, 0, 800) << std::optional<QRect>();
}

void CaptureGeometryTest::cropRectangle()
{
    QFETCH(Rect, localRect);
    QFETCH(QSize, imagePixels);
    QFETCH(Rect, logicalFrame);
    QFETCH(std::optional<QRect>, expected);
    QCOMPARE(frozenCropPixelRect(localRect, imagePixels, logicalFrame), expected);
}

void CaptureGeometryTest::cropCopiesOnlyTheCroppedPixels()
{
    QImage screen(400, 300, QImage::Format_RGB32);
    screen.fill(Qt::black);
    screen.setPixel(20, 279, qRgb(255, 0, 0)); // the bottom-left pixel of the crop below
    const QImage cropped = cropFrozenImage(Rect(10, 10, 30, 20), {screen, Rect(0, 0, 200, 150)});
    QCOMPARE(cropped.size(), QSize(60, 40));
    QCOMPARE(cropped.sizeInBytes(), qsizetype(60 * 40 * 4));
    QCOMPARE(cropped.pixel(0, 39), qRgb(255, 0, 0));
    QVERIFY(cropFrozenImage(Rect(500, 10, 30, 20), {screen, Rect(0, 0, 200, 150)}).isNull());
}

void CaptureGeometryTest::selectionPixels_data()
{
    QTest::addColumn<Rect>("rect");
    QTest::addColumn<double>("scale");
    QTest::addColumn<qint64>("width");
    QTest::addColumn<qint64>("height");
    QTest::newRow("inside one 2x pixel") << Rect(0, 0, 0.3, 0.3) << 2.0 << qint64(1) << qint64(1);
    QTest::newRow("straddling a 2x pixel edge") << Rect(0.4, 0.4, 0.3, 0.3) << 2.0 << qint64(2) << qint64(2);
    QTest::newRow("scale zero counts as one") << Rect(10, 10, 100, 50) << 0.0 << qint64(100) << qint64(50);
    QTest::newRow("empty measures one pixel") << Rect(10, 10, 0, 0) << 2.0 << qint64(1) << qint64(1);
}

void CaptureGeometryTest::selectionPixels()
{
    QFETCH(Rect, rect);
    QFETCH(double, scale);
    QFETCH(qint64, width);
    QFETCH(qint64, height);
    QCOMPARE(selectionPixelSize(rect, scale), (PixelSize{width, height}));
}

// More pixels than the backing scale, separately across and down, the multi-display capture table checks
// across layouts; a selection smaller than a pixel still gets one.
void CaptureGeometryTest::displayFilterOutputIsNeverBelowOnePixel()
{
    const Rect frame(0, 0, 1440, 900);
    const Rect tiny(5, 5, 0.1, 0.1);
    QCOMPARE(displayFilterOutputSize(tiny, frame, 1, 1440, 900), QSize(1, 1));
    QVERIFY(fuzzyEqual(displayFilterSourceRect(tiny, frame), Rect(5, 894.9, 0.1, 0.1)));
}

void CaptureGeometryTest::labelPlacement_data()
{
    QTest::addColumn<Rect>("selection");
    QTest::addColumn<Rect>("expected");
    // Bounds 1000 x 800, label 120 x 26, gap 8.
    QTest::newRow("below-right of the selection") << Rect(100, 300, 200, 100) << Rect(308, 266, 120, 26);
    QTest::newRow("inside the right edge when it would run off")
        << Rect(700, 300, 250, 100) << Rect(822, 266, 120, 26);
    QTest::newRow("inside the bottom edge when it would run off")
        << Rect(100, 20, 200, 100) << Rect(308, 28, 120, 26);
    QTest::newRow("touching the bottom-right corner: inside the selection near that corner")
        << Rect(600, 0, 400, 300) << Rect(872, 8, 120, 26);
    QTest::newRow("narrower than the label: whole label, clamped into the bounds")
        << Rect(990, 400, 10, 10) << Rect(872, 366, 120, 26);
    QTest::newRow("a selection at the left edge below the bottom keeps the margin")
        << Rect(-50, -50, 20, 20) << Rect(8, 8, 120, 26);
}

void CaptureGeometryTest::labelPlacement()
{
    QFETCH(Rect, selection);
    QFETCH(Rect, expected);
    QCOMPARE(sizeLabelRect(selection, QSizeF(120, 26), 8, Rect(0, 0, 1000, 800)), expected);
    // Bounds narrower than the label put it at the left margin.
    QCOMPARE(sizeLabelRect(selection, QSizeF(120, 26), 8, Rect(0, 0, 100, 800)).x(), 8.0);
}

QTEST_APPLESS_MAIN(CaptureGeometryTest)
#include "tst_capturegeometry.moc"
