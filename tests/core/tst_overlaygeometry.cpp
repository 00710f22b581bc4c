#include "TestPrinters.h"

#include "editor/Overlay.h"
#include "editor/OverlayGeometry.h"

#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

Overlay make(EditorTool type, QPointF start, QPointF end, const QList<QPointF> &points = {})
{
    Overlay overlay(type, start, end, Qt::red, QString(), Qt::cyan);
    overlay.points = points;
    return overlay;
}

bool near(QPointF a, QPointF b)
{
    return std::abs(a.x() - b.x()) < 1e-9 && std::abs(a.y() - b.y()) < 1e-9;
}

} // namespace

class OverlayGeometryTest : public QObject
{
    Q_OBJECT

private slots:
    void normalisedRect_data();
    void normalisedRect();
    void freehandPath();
    void arrowProportions_data();
    void arrowProportions();
    void arrowWithinOneHasNoGeometry_data();
    void arrowWithinOneHasNoGeometry();
    void renderBounds_data();
    void renderBounds();
    void contentBounds_data();
    void contentBounds();
};

void OverlayGeometryTest::normalisedRect_data()
{
    QTest::addColumn<Overlay>("overlay");
    QTest::addColumn<Rect>("expected");
    QTest::newRow("drag to top-right") << make(EditorTool::Rectangle, {10, 20}, {50, 80}) << Rect(10, 20, 40, 60);
    QTest::newRow("drag to bottom-left gives the same box")
        << make(EditorTool::Rectangle, {50, 80}, {10, 20}) << Rect(10, 20, 40, 60);
    QTest::newRow("click without drag is empty") << make(EditorTool::Circle, {5, 5}, {5, 5}) << Rect(5, 5, 0, 0);
    QTest::newRow("freehand uses its points, not start and end")
        << make(EditorTool::Freehand, {0, 0}, {500, 500}, {{10, 30}, {40, 20}, {25, 60}}) << Rect(10, 20, 30, 40);
    QTest::newRow("single-point freehand is 1 x 1")
        << make(EditorTool::Freehand, {0, 0}, {0, 0}, {{7, 9}}) << Rect(7, 9, 1, 1);
    QTest::newRow("horizontal freehand line is 1 high")
        << make(EditorTool::Freehand, {0, 0}, {0, 0}, {{3, 4}, {13, 4}}) << Rect(3, 4, 10, 1);
    QTest::newRow("freehand without points falls back to start and end")
        << make(EditorTool::Freehand, {4, 4}, {1, 2}) << Rect(1, 2, 3, 2);
    // The box follows the stroke as it is drawn and moved, without walking its points again.
    Overlay grown = make(EditorTool::Freehand, {0, 0}, {0, 0});
    for (QPointF point : {QPointF(50, 50), QPointF(60, 70), QPointF(45, 55)})
        grown.points.append(point);
    QTest::newRow("freehand grown from no points") << grown << Rect(45, 50, 15, 20);
    Overlay moved = make(EditorTool::Freehand, {0, 0}, {0, 0}, {{10, 30}, {40, 20}, {25, 60}});
    moved.points.translate({-15, 7});
    QTest::newRow("freehand moved") << moved << Rect(-5, 27, 30, 40);
    moved.points.append({50, 0});
    QTest::newRow("freehand moved, then grown") << moved << Rect(-5, 0, 55, 67);
}

void OverlayGeometryTest::normalisedRect()
{
    QFETCH(Overlay, overlay);
    QFETCH(Rect, expected);
    QCOMPARE(overlay.rect(), expected);
}

void OverlayGeometryTest::freehandPath()
{
    QVERIFY(overlaygeometry::freehandPath({}).isEmpty());
    const QPainterPath stroke = overlaygeometry::freehandPath({{0, 0}, {10, 0}, {10, 10}});
    QCOMPARE(stroke.elementCount(), 3);
    QCOMPARE(stroke.boundingRect(), QRectF(0, 0, 10, 10));
}

void OverlayGeometryTest::arrowProportions_data()
{
    QTest::addColumn<double>("length");
    QTest::addColumn<double>("headLength");
    QTest::addColumn<double>("headWidth");
    QTest::addColumn<double>("tailWidth");
    QTest::newRow("10: the head takes the whole length") << 10.0 << 10.0 << 2.0 << 0.2;
    QTest::newRow("40: head 12 at least") << 40.0 << 12.0 << 8.0 << 0.8;
    QTest::newRow("200: head 0.22 L, width 0.2 L") << 200.0 << 44.0 << 40.0 << 3.0;
    QTest::newRow("2000: tail stays at 3") << 2000.0 << 440.0 << 400.0 << 3.0;
}

void OverlayGeometryTest::arrowProportions()
{
    QFETCH(double, length);
    QFETCH(double, headLength);
    QFETCH(double, headWidth);
    QFETCH(double, tailWidth);
    // Pointing down and left, so the normal and the direction both matter.
    const QPointF start(500, 500);
    const QPointF direction(-0.6, -0.8);
    const auto geometry = overlaygeometry::makeTaperedArrowGeometry(start, start + direction * length);
    QVERIFY(geometry);
    const QPointF base = (geometry->headLeft + geometry->headRight) / 2;
    QCOMPARE(qRound(QLineF(base, geometry->tip).length() * 1000), qRound(headLength * 1000));
    QCOMPARE(qRound(QLineF(geometry->headLeft, geometry->headRight).length() * 1000), qRound(headWidth * 1000));
    QCOMPARE(qRound(QLineF(geometry->tailLeft, geometry->tailRight).length() * 1000), qRound(tailWidth * 1000));
    // The left side lies to the left of the direction of travel.
    const QPointF left = geometry->headLeft - base;
    QVERIFY(direction.x() * left.y() - direction.y() * left.x() > 0);
}

void OverlayGeometryTest::arrowWithinOneHasNoGeometry_data()
{
    QTest::addColumn<QPointF>("end");
    QTest::addColumn<bool>("hasGeometry");
    QTest::newRow("same point") << QPointF(0, 0) << false;
    QTest::newRow("exactly 1") << QPointF(0, 1) << false;
    QTest::newRow("just over 1") << QPointF(1.0001, 0) << true;
}

void OverlayGeometryTest::arrowWithinOneHasNoGeometry()
{
    QFETCH(QPointF, end);
    QFETCH(bool, hasGeometry);
    QCOMPARE(overlaygeometry::makeTaperedArrowGeometry({0, 0}, end).has_value(), hasGeometry);
}

void OverlayGeometryTest::renderBounds_data()
{
    QTest::addColumn<Overlay>("overlay");
    QTest::addColumn<Rect>("expected");
    QTest::newRow("rectangle: half its stroke") << make(EditorTool::Rectangle, {0, 0}, {1000, 50})
                                                << Rect(-5, -5, 1010, 60);
    QTest::newRow("circle: half its stroke") << make(EditorTool::Circle, {0, 0}, {600, 300})
                                             << Rect(-6, -6, 612, 312);
    QTest::newRow("arrow: box of the outline") << make(EditorTool::Arrow, {0, 0}, {100, 0})
                                               << Rect(0, -10, 100, 20);
    QTest::newRow("arrow without direction: 8 x 8 around the end")
        << make(EditorTool::Arrow, {10, 10}, {10.5, 10}) << Rect(6.5, 6, 8, 8);
    QTest::newRow("single-point freehand: 7 x 7") << make(EditorTool::Freehand, {}, {}, {{20, 30}})
                                                  << Rect(17, 27, 7, 7);
    QTest::newRow("mosaic: its rectangle") << make(EditorTool::Mosaic, {5, 5}, {50, 60}) << Rect(5, 5, 45, 55);
    QTest::newRow("text: half its border") << make(EditorTool::Text, {0, 0}, {260, 72}) << Rect(-1.44, -1.44, 262.88, 74.88);
}

void OverlayGeometryTest::renderBounds()
{
    QFETCH(Overlay, overlay);
    QFETCH(Rect, expected);
    const Rect bounds = overlaygeometry::overlayRenderBounds(overlay);
    QVERIFY2(near(bounds.origin(), expected.origin()) && near(QPointF(bounds.width(), bounds.height()),
                                                              QPointF(expected.width(), expected.height())),
             qPrintable(trace::rect(bounds)));
}

void OverlayGeometryTest::contentBounds_data()
{
    QTest::addColumn<QList<Overlay>>("overlays");
    QTest::addColumn<Rect>("expected");
    QTest::newRow("no overlays: the image") << QList<Overlay>() << Rect(0, 0, 200, 100);
    QTest::newRow("overlays inside leave the image")
        << QList<Overlay>{make(EditorTool::Rectangle, {20, 20}, {80, 80}), make(EditorTool::Mosaic, {0, 0}, {200, 100})}
        << Rect(0, 0, 200, 100);
    QTest::newRow("fractional edges round outward")
        << QList<Overlay>{make(EditorTool::Mosaic, {150.5, 90}, {210.2, 100.7})} << Rect(0, 0, 211, 101);
}

void OverlayGeometryTest::contentBounds()
{
    QFETCH(QList<Overlay>, overlays);
    QFETCH(Rect, expected);
    QCOMPARE(overlaygeometry::renderContentBounds(overlays, QSizeF(200, 100)), expected);
}

QTEST_GUILESS_MAIN(OverlayGeometryTest)
#include "tst_overlaygeometry.moc"
