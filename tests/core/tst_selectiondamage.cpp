// A pointer move over the overlay repaints only what changed: every pixel that differs between the
// view painted before and after a step lies in the rectangles the view reported, and those are a
// small part of the display.
#include "TestPrinters.h"
#include "helpers/SelectionViewFixture.h"

#include "capture/SelectionDamage.h"

#include <QRegion>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

enum class Step { Move, Press, Drag };

// The view's rectangles as pixels of a canvas of `scale` device pixels per point (y downwards).
QRegion canvasRegion(const QList<Rect> &areas, double viewHeight, double scale)
{
    QRegion region;
    for (const Rect &area : areas) {
        region |= QRectF(area.minX() * scale, (viewHeight - area.maxY()) * scale, area.width() * scale,
                         area.height() * scale)
                      .toAlignedRect();
    }
    return region;
}

} // namespace

Q_DECLARE_METATYPE(Step)

class SelectionDamageTest : public QObject
{
    Q_OBJECT

private slots:
    void everyChangedPixelIsRepainted_data();
    void everyChangedPixelIsRepainted();
    void unchangedDecorationsNeedNothing();
};

void SelectionDamageTest::everyChangedPixelIsRepainted_data()
{
    QTest::addColumn<QList<QPointF>>("before");
    QTest::addColumn<Step>("step");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("largestShare");
    const QList<QPointF> none;
    const QList<QPointF> dragged{{100, 100}, {300, 250}};
    QTest::newRow("crosshair appears") << none << Step::Move << QPointF(400.5, 300.25) << 1.0 << 0.02;
    QTest::newRow("crosshair moves sideways") << QList<QPointF>{{400, 300}} << Step::Move << QPointF(403.7, 300)
                                              << 1.0 << 0.02;
    QTest::newRow("crosshair moves on a 2x display") << QList<QPointF>{{400, 300}} << Step::Move
                                                     << QPointF(390.25, 310.5) << 2.0 << 0.02;
    QTest::newRow("press starts a selection") << QList<QPointF>{{400, 300}} << Step::Press << QPointF(410, 290)
                                              << 1.0 << 0.02;
    QTest::newRow("drag grows the selection") << dragged << Step::Drag << QPointF(320.5, 262.75) << 1.0 << 0.05;
    QTest::newRow("drag shrinks it on a 2x display") << dragged << Step::Drag << QPointF(250, 180) << 2.0 << 0.05;
    QTest::newRow("drag crosses the start point") << dragged << Step::Drag << QPointF(60, 40) << 1.0 << 0.25;
    QTest::newRow("label moves inside at the corner") << QList<QPointF>{{600, 300}, {980, 20}} << Step::Drag
                                                      << QPointF(995, 5) << 1.0 << 0.05;
    QTest::newRow("drag leaves the view") << dragged << Step::Drag << QPointF(1400, -50) << 1.0 << 0.6;
}

void SelectionDamageTest::everyChangedPixelIsRepainted()
{
    QFETCH(QList<QPointF>, before);
    QFETCH(Step, step);
    QFETCH(QPointF, to);
    QFETCH(double, scale);
    QFETCH(double, largestShare);
    ViewFixture f;
    f.showFrozenScreen(QColor(40, 120, 200));
    if (before.size() == 1)
        f.view.mouseMoved(before.first());
    for (qsizetype i = 0; i < before.size() && before.size() > 1; ++i)
        i == 0 ? f.view.mouseDown(before.at(i)) : f.view.mouseDragged(before.at(i));
    const QImage shownBefore = render(f.view, Qt::black, scale);

    f.window.dirtyRects.clear();
    switch (step) {
    case Step::Move: f.view.mouseMoved(to); break;
    case Step::Press: f.view.mouseDown(to); break;
    case Step::Drag: f.view.mouseDragged(to); break;
    }
    const QImage shownAfter = render(f.view, Qt::black, scale);
    const QRegion repainted = canvasRegion(f.window.dirtyRects, f.size.height(), scale);

    int changed = 0;
    for (int y = 0; y < shownAfter.height(); ++y) {
        const auto *a = reinterpret_cast<const QRgb *>(shownBefore.constScanLine(y));
        const auto *b = reinterpret_cast<const QRgb *>(shownAfter.constScanLine(y));
        for (int x = 0; x < shownAfter.width(); ++x) {
            if (a[x] == b[x])
                continue;
            ++changed;
            if (!repainted.contains(QPoint(x, y)))
                QFAIL(qPrintable(u"pixel %1,%2 changed but is not repainted"_s.arg(x).arg(y)));
        }
    }
    QVERIFY2(changed > 0, "the step changed nothing, so it tests nothing");
    qint64 area = 0;
    for (const QRect &part : repainted)
        area += qint64(part.width()) * part.height();
    const double share = double(area) / (double(shownAfter.width()) * shownAfter.height());
    QVERIFY2(share <= largestShare, qPrintable(u"%1 of the view repainted"_s.arg(share)));
}

void SelectionDamageTest::unchangedDecorationsNeedNothing()
{
    // A selection with its label and the crosshair, dragged to where it already is.
    ViewFixture f;
    f.view.mouseDown(QPointF(50, 50));
    f.view.mouseDragged(QPointF(200, 150));
    f.window.dirtyRects.clear();
    f.view.mouseDragged(QPointF(200, 150));
    QVERIFY(f.window.dirtyRects.isEmpty());
}

QTEST_MAIN(SelectionDamageTest)
#include "tst_selectiondamage.moc"
