#include "TestPrinters.h"

#include "LibdeflatePngWriter.h"
#include "editor/EditorFont.h"
#include "editor/EditorRenderer.h"
#include "editor/Overlay.h"
#include "editor/OverlayGeometry.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QGuiApplication>
#include <QTemporaryDir>
#include <QTest>
#include <QTextLayout>

#include <cmath>
#include <map>

using namespace Qt::StringLiterals;

namespace {

const QRgb white = qRgb(255, 255, 255);
const QRgb black = qRgb(0, 0, 0);

// The flattened document as a user gets it: rendered, written as PNG, read back by Qt's decoder.
struct Flattened
{
    QImage image;
    Rect bounds;

    // The pixel whose bottom-left corner is the image point (x, y).
    QRgb at(int x, int y) const
    {
        return image.pixel(x - int(bounds.minX()), int(bounds.maxY()) - y - 1);
    }
    // The canvas box of pixels that differ from `background`, in image coordinates (y up).
    QRect ink(QRgb background) const
    {
        QRect box;
        for (int row = 0; row < image.height(); ++row)
            for (int column = 0; column < image.width(); ++column)
                if (image.pixel(column, row) != background)
                    box |= QRect(column + int(bounds.minX()), int(bounds.maxY()) - row - 1, 1, 1);
        return box;
    }
};

Flattened flatten(const QImage &source, const QList<Overlay> &overlays)
{
    const QImage rendered = editorrender::renderEditedImage(source, overlays);
    QTemporaryDir folder;
    const QString path = folder.filePath(u"edited.png"_s);
    if (LibdeflatePngWriter().writeFile(rendered, path))
        return {};
    return {QImage(path).convertToFormat(QImage::Format_RGB32),
            overlaygeometry::renderContentBounds(overlays, QSizeF(source.size()))};
}

QImage filled(int width, int height, QRgb colour)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

// Every pixel different from its neighbours, so any misplaced block shows.
QImage noise(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    quint32 state = 12345;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            state = state * 1664525u + 1013904223u;
            image.setPixel(x, y, 0xff000000u | (state >> 8));
        }
    return image;
}

Overlay make(EditorTool type, QPointF start, QPointF end, QColor colour = Qt::black)
{
    return Overlay(type, start, end, colour, QString(), QColor(0, 0, 0, 0));
}

Overlay textBox(const QString &text, QPointF start, QPointF end, double size, const QString &family = u"NoSuch"_s)
{
    Overlay overlay(EditorTool::Text, start, end, Qt::black, text, QColor(0, 0, 0, 0));
    overlay.fontSize = size;
    overlay.fontFamily = family;
    return overlay;
}

// Coverage of a black stroke on white, summed along one row of pixels.
double inkAlongRow(const Flattened &result, int y, int fromX, int toX)
{
    double sum = 0;
    for (int x = fromX; x < toX; ++x)
        sum += (255 - qRed(result.at(x, y))) / 255.0;
    return sum;
}

} // namespace

class EditorRendererTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutOverlaysTheImageIsCopied();
    void transparentSourceLiesOnWhite();
    void canvasGrowsLeftWithWhiteOutside();
    void imageBottomIsTheLastRow();
    void textFillKeepsItsAlpha_data();
    void textFillKeepsItsAlpha();
    void fontIsClampedAndFallsBack_data();
    void fontIsClampedAndFallsBack();
    void renderedTextSizeIsClamped();
    void textIsUprightAtTheTopOfItsBox();
    void japaneseTextHasGlyphs();
    void mosaicBlocksAreUniformAndOnTheImageGrid_data();
    void mosaicBlocksAreUniformAndOnTheImageGrid();
    void mosaicHidesEarlierOverlaysWithSourcePixels();
    void mosaicWithoutSourcePixelsIsADarkBox();
    void singlePointFreehandIsADotOfFour();
    void zeroLengthArrowIsADotOfSix();
    void arrowHeadIsFilled();
    void strokeWidths_data();
    void strokeWidths();
    void absurdExtentGivesTheImageBack();
    void overlayWithoutANumberIsSkipped();
    void retinaImageKeepsItsPixels();
};

void EditorRendererTest::withoutOverlaysTheImageIsCopied()
{
    const QImage source = noise(37, 23);
    const Flattened result = flatten(source, {});
    QCOMPARE(result.image.size(), QSize(37, 23));
    QCOMPARE(result.image, source);
}

void EditorRendererTest::transparentSourceLiesOnWhite()
{
    QImage source(2, 1, QImage::Format_ARGB32);
    source.setPixel(0, 0, qRgba(0, 0, 0, 0));
    source.setPixel(1, 0, qRgba(255, 0, 0, 255));
    const Flattened result = flatten(source, {});
    QCOMPARE(result.image.pixel(0, 0), white);
    QCOMPARE(result.image.pixel(1, 0), qRgb(255, 0, 0));
}

void EditorRendererTest::canvasGrowsLeftWithWhiteOutside()
{
    const QRgb picture = qRgb(50, 100, 150);
    const Flattened result = flatten(filled(100, 80, picture), {make(EditorTool::Rectangle, {-10, -10}, {50, 50}, Qt::red)});
    QCOMPARE(result.image.size(), QSize(112, 92));
    const QRgb red = qRgb(255, 0, 0);
    QCOMPARE(result.at(-12, 30), red);
    QCOMPARE(result.at(-9, 30), red);
    QCOMPARE(result.at(-6, 30), white);
    QCOMPARE(result.at(-6, 60), white);
    QCOMPARE(result.at(30, -11), red);
    QCOMPARE(result.at(60, -5), white);
    QCOMPARE(result.at(70, 40), picture);
    QCOMPARE(result.at(99, 79), picture);
    QCOMPARE(result.at(30, 30), picture);
}

void EditorRendererTest::imageBottomIsTheLastRow()
{
    const QImage rendered = editorrender::renderEditedImage(
        filled(100, 80, white), {make(EditorTool::Rectangle, {10, 5}, {30, 15}, Qt::red)});
    // y-up 5 is the sixth row from the bottom.
    QCOMPARE(rendered.pixel(20, 80 - 1 - 5), qRgb(255, 0, 0));
    QCOMPARE(rendered.pixel(20, 5), white);
}

void EditorRendererTest::textFillKeepsItsAlpha_data()
{
    QTest::addColumn<QColor>("fill");
    QTest::addColumn<QRgb>("inside");
    QTest::newRow("transparent fill shows the image") << QColor(255, 0, 0, 0) << qRgb(0, 160, 0);
    QTest::newRow("half fill blends") << QColor(255, 0, 0, 128) << qRgb(128, 80, 0);
    QTest::newRow("opaque fill covers") << QColor(255, 0, 0) << qRgb(255, 0, 0);
}

void EditorRendererTest::textFillKeepsItsAlpha()
{
    QFETCH(QColor, fill);
    QFETCH(QRgb, inside);
    Overlay box = textBox(u"Ab"_s, {20, 20}, {180, 80}, 20);
    box.color = Qt::blue;
    box.textFillColor = fill;
    const Flattened result = flatten(filled(200, 100, qRgb(0, 160, 0)), {box});
    // Far from the text at the top-left of the box.
    const QRgb pixel = result.at(160, 25);
    QVERIFY2(qAbs(qRed(pixel) - qRed(inside)) <= 1 && qAbs(qGreen(pixel) - qGreen(inside)) <= 1
                 && qBlue(pixel) == qBlue(inside),
             qPrintable(QString::number(pixel, 16)));
    // The border is in the text colour whatever the fill.
    QCOMPARE(result.at(20, 50), qRgb(0, 0, 255));
    QCOMPARE(result.at(100, 79), qRgb(0, 0, 255));
}

void EditorRendererTest::fontIsClampedAndFallsBack_data()
{
    QTest::addColumn<QString>("family");
    QTest::addColumn<double>("size");
    QTest::addColumn<int>("pixelSize");
    QTest::addColumn<bool>("isFallback");
    QTest::newRow("300 is drawn at 160") << u"DejaVu Sans"_s << 300.0 << 160 << false;
    QTest::newRow("4 is drawn at 8") << u"DejaVu Sans"_s << 4.0 << 8 << false;
    QTest::newRow("in range is kept") << u"DejaVu Sans"_s << 33.0 << 33 << false;
    QTest::newRow("unknown family falls back") << u"No Such Family 123"_s << 20.0 << 20 << true;
    QTest::newRow("a name the matcher would substitute falls back") << u"Helvetica"_s << 300.0 << 160 << true;
}

void EditorRendererTest::fontIsClampedAndFallsBack()
{
    QFETCH(QString, family);
    QFETCH(double, size);
    QFETCH(int, pixelSize);
    QFETCH(bool, isFallback);
    if (family == u"Helvetica"_s && QFontDatabase::families().contains(family, Qt::CaseInsensitive))
        QSKIP("Helvetica is installed here");
    QVERIFY(QFontDatabase::families().contains(u"DejaVu Sans"_s));
    const QFont font = editorrender::makeEditorFont(family, size);
    const QFontInfo info(font);
    QCOMPARE(info.pixelSize(), pixelSize);
    if (isFallback) {
        QCOMPARE(font.family(), QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
        QCOMPARE(font.weight(), QFont::DemiBold);
    } else {
        QCOMPARE(info.family(), family);
        QCOMPARE(font.weight(), QFont::Normal);
    }
}

void EditorRendererTest::renderedTextSizeIsClamped()
{
    // The glyph alone, inside the box border.
    auto glyphHeight = [](double size) {
        const Flattened result = flatten(filled(900, 400, white), {textBox(u"H"_s, {0, 0}, {900, 400}, size)});
        QRect box;
        for (int y = 10; y < 390; ++y)
            for (int x = 10; x < 890; ++x)
                if (result.at(x, y) != white)
                    box |= QRect(x, y, 1, 1);
        return box.height();
    };
    const int at160 = glyphHeight(160);
    QVERIFY(at160 > 100);
    QCOMPARE(glyphHeight(300), at160);
    QVERIFY(glyphHeight(80) < at160 * 2 / 3);
}

void EditorRendererTest::textIsUprightAtTheTopOfItsBox()
{
    // A full stop sits on the baseline: upright, its ink is in the lower half of the first line, near
    // the top of the box; upside down it would be near the top of the line or outside the box.
    const double size = 40;
    const Flattened result = flatten(filled(400, 300, white), {textBox(u"."_s, {50, 20}, {350, 280}, size)});
    QRect dot;
    for (int y = 30; y < 270; ++y)
        for (int x = 60; x < 340; ++x)
            if (result.at(x, y) != white)
                dot |= QRect(x, y, 1, 1);
    QVERIFY(!dot.isEmpty());
    const QFontMetricsF metrics(editorrender::makeEditorFont(u"NoSuch"_s, size));
    const double lineTop = 280 - 2;
    const double baseline = lineTop - metrics.ascent();
    // In y-up terms: the dot's top is below the middle of the line, its bottom near the baseline.
    QVERIFY2(dot.bottom() + 1 <= lineTop - size / 2, qPrintable(trace::rect(Rect::fromQRectF(dot))));
    QVERIFY2(qAbs(dot.top() - baseline) <= 3, qPrintable(trace::rect(Rect::fromQRectF(dot))));
    QVERIFY(dot.left() >= 54 && dot.left() <= 54 + size / 2);
}

void EditorRendererTest::japaneseTextHasGlyphs()
{
    const QString text = u"日本語のテキスト and Latin"_s;
    QTextLayout layout(text, editorrender::makeEditorFont(u"Helvetica"_s, 30));
    layout.beginLayout();
    layout.createLine().setLineWidth(2000);
    layout.endLayout();
    int glyphs = 0;
    for (const QGlyphRun &run : layout.glyphRuns()) {
        for (quint32 index : run.glyphIndexes()) {
            QVERIFY2(index != 0, qPrintable(run.rawFont().familyName()));
            ++glyphs;
        }
    }
    QCOMPARE(glyphs, text.size());
    const Flattened result = flatten(filled(600, 100, white), {textBox(text, {0, 0}, {600, 100}, 30)});
    QVERIFY(result.ink(white).isValid());
}

void EditorRendererTest::mosaicBlocksAreUniformAndOnTheImageGrid_data()
{
    QTest::addColumn<QSize>("imageSize");
    QTest::addColumn<Rect>("rect");
    QTest::addColumn<int>("edge");
    QTest::newRow("48 x 240 uses blocks of 5") << QSize(100, 300) << Rect(0, 0, 48, 240) << 5;
    QTest::newRow("offset 48 x 240 keeps the image grid") << QSize(100, 300) << Rect(7, 13, 48, 240) << 5;
    QTest::newRow("480 x 960 uses blocks of 20") << QSize(520, 1000) << Rect(0, 0, 480, 960) << 20;
    QTest::newRow("offset 480 x 960 keeps the image grid") << QSize(520, 1000) << Rect(33, 21, 480, 960) << 20;
    QTest::newRow("reaching past the image edge") << QSize(100, 300) << Rect(70, 250, 48, 240) << 5;
}

void EditorRendererTest::mosaicBlocksAreUniformAndOnTheImageGrid()
{
    QFETCH(QSize, imageSize);
    QFETCH(Rect, rect);
    QFETCH(int, edge);
    QCOMPARE(qRound(std::max(5.0, std::min(rect.width(), rect.height()) / 24)), edge);
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

void EditorRendererTest::mosaicHidesEarlierOverlaysWithSourcePixels()
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

void EditorRendererTest::mosaicWithoutSourcePixelsIsADarkBox()
{
    const Flattened result = flatten(filled(50, 50, white), {make(EditorTool::Mosaic, {60, 0}, {100, 40})});
    QCOMPARE(result.image.size(), QSize(100, 50));
    // White under black at 0.35.
    const int expected = qRound(255 * 0.65);
    QVERIFY(qAbs(qRed(result.at(80, 20)) - expected) <= 1);
    QCOMPARE(result.at(55, 20), white);
}

void EditorRendererTest::singlePointFreehandIsADotOfFour()
{
    Overlay stroke = make(EditorTool::Freehand, {50, 50}, {50, 50});
    stroke.points = {{50, 50}};
    const Flattened result = flatten(filled(100, 100, white), {stroke});
    QCOMPARE(result.ink(white), QRect(48, 48, 4, 4));
    QCOMPARE(result.at(49, 49), black);
    QCOMPARE(result.at(50, 50), black);
}

void EditorRendererTest::zeroLengthArrowIsADotOfSix()
{
    const Flattened result = flatten(filled(100, 100, white), {make(EditorTool::Arrow, {50, 50}, {50, 50})});
    QCOMPARE(result.ink(white), QRect(47, 47, 6, 6));
    QCOMPARE(result.at(48, 49), black);
    QCOMPARE(result.at(51, 50), black);
}

void EditorRendererTest::arrowHeadIsFilled()
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

void EditorRendererTest::strokeWidths_data()
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

void EditorRendererTest::strokeWidths()
{
    QFETCH(Overlay, overlay);
    QFETCH(double, width);
    const Flattened result = flatten(filled(1100, 900, white), {overlay});
    const Rect rect = overlay.rect();
    const int row = int(rect.midY());
    const double ink = inkAlongRow(result, row, int(rect.minX()) - 20, int(rect.minX()) + 20);
    QVERIFY2(qAbs(ink - width) < 0.25, qPrintable(QString::number(ink)));
}

void EditorRendererTest::absurdExtentGivesTheImageBack()
{
    const QImage source = noise(10, 10);
    const QImage rendered = editorrender::renderEditedImage(source, {make(EditorTool::Rectangle, {0, 0}, {1e9, 5})});
    QCOMPARE(rendered.cacheKey(), source.cacheKey());
}

void EditorRendererTest::overlayWithoutANumberIsSkipped()
{
    Overlay stroke = make(EditorTool::Freehand, {0, 0}, {0, 0});
    stroke.points = {{1, 1}, {qQNaN(), 5}};
    Flattened result = flatten(filled(20, 20, white), {make(EditorTool::Circle, {0, 0}, {qQNaN(), 5}), stroke,
                                                       make(EditorTool::Rectangle, {5, 5}, {15, 15})});
    result.bounds = Rect(0, 0, 20, 20);
    QCOMPARE(result.image.size(), QSize(20, 20));
    QCOMPARE(result.ink(white), QRect(3, 3, 14, 14));
}

void EditorRendererTest::retinaImageKeepsItsPixels()
{
    QImage source = noise(40, 20);
    source.setDevicePixelRatio(2);
    const Flattened result = flatten(source, {make(EditorTool::Rectangle, {2, 2}, {10, 10})});
    QCOMPARE(result.image.size(), QSize(40, 20));
    QCOMPARE(result.at(30, 15), source.pixel(30, 20 - 1 - 15));
}

QTEST_MAIN(EditorRendererTest)
#include "tst_editorrenderer.moc"
