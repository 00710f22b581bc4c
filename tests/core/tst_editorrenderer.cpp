#include "FlattenedImage.h"
#include "TestPrinters.h"

#include "editor/EditorFont.h"
#include "editor/EditorRenderer.h"
#include "editor/Overlay.h"
#include "editor/OverlayGeometry.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QGuiApplication>
#include <QTest>
#include <QTextLayout>

using namespace Qt::StringLiterals;
using namespace flattening;

class EditorRendererTest : public QObject
{
    Q_OBJECT

private slots:
    void withoutOverlaysTheImageIsCopiedOntoWhite();
    void canvasGrowsLeftWithWhiteOutside();
    void textFillKeepsItsAlpha();
    void fontIsClampedAndFallsBack_data();
    void fontIsClampedAndFallsBack();
    void renderedTextSizeIsClamped();
    void textIsUprightAtTheTopOfItsBox();
    void japaneseTextHasGlyphs();
    void absurdExtentGivesTheImageBack();
    void overlayWithoutANumberIsSkipped();
};

void EditorRendererTest::withoutOverlaysTheImageIsCopiedOntoWhite()
{
    // Opaque pictures come back unchanged: the end-to-end test saves an unchanged capture.
    QImage transparent(2, 1, QImage::Format_ARGB32);
    transparent.setPixel(0, 0, qRgba(0, 0, 0, 0));
    transparent.setPixel(1, 0, qRgba(255, 0, 0, 255));
    const Flattened result = flatten(transparent, {});
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

void EditorRendererTest::textFillKeepsItsAlpha()
{
    Overlay box = textBox(u"Ab"_s, {20, 20}, {180, 80}, 20);
    box.color = Qt::blue;
    box.textFillColor = QColor(255, 0, 0, 128);
    const Flattened result = flatten(filled(200, 100, qRgb(0, 160, 0)), {box});
    // Far from the text at the top-left of the box, the half fill blends with the picture.
    const QRgb pixel = result.at(160, 25);
    QVERIFY2(qAbs(qRed(pixel) - 128) <= 1 && qAbs(qGreen(pixel) - 80) <= 1 && qBlue(pixel) == 0,
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
        return result.ink(white, QRect(10, 10, 880, 380)).height();
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
    const QRect dot = result.ink(white, QRect(60, 30, 280, 240));
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

QTEST_MAIN(EditorRendererTest)
#include "tst_editorrenderer.moc"
