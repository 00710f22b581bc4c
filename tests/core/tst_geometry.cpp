#include "geometry/Rect.h"
#include "geometry/TraceFormat.h"
#include "TestPrinters.h"

#include <QTest>

#include <limits>

class GeometryTest : public QObject
{
    Q_OBJECT

private slots:
    void intersection_data();
    void intersection();
    void integralGrowsOutward_data();
    void integralGrowsOutward();
    void unionIgnoresNull();
    void negativeSizesStandardize();
    void traceForms_data();
    void traceForms();
};

void GeometryTest::intersection_data()
{
    QTest::addColumn<Rect>("a");
    QTest::addColumn<Rect>("b");
    QTest::addColumn<Rect>("expected");
    QTest::addColumn<bool>("isNull");
    QTest::newRow("overlap") << Rect(0, 0, 100, 50) << Rect(50, 25, 100, 100) << Rect(50, 25, 50, 25) << false;
    QTest::newRow("disjoint is null") << Rect(0, 0, 10, 10) << Rect(20, 20, 5, 5) << Rect::null() << true;
    QTest::newRow("touching edges give an empty, non-null rect")
        << Rect(0, 0, 10, 10) << Rect(10, 0, 5, 10) << Rect(10, 0, 0, 10) << false;
    QTest::newRow("negative origin") << Rect(-1920, 0, 1920, 1080) << Rect(-100, 500, 300, 300)
                                     << Rect(-100, 500, 100, 300) << false;
    QTest::newRow("null swallows") << Rect::null() << Rect(0, 0, 1, 1) << Rect::null() << true;
}

void GeometryTest::intersection()
{
    QFETCH(Rect, a);
    QFETCH(Rect, b);
    QFETCH(Rect, expected);
    QFETCH(bool, isNull);
    const Rect result = a.intersected(b);
    QCOMPARE(result.isNull(), isNull);
    if (!isNull)
        QCOMPARE(result, expected);
    QVERIFY(result.isEmpty() || !isNull);
}

void GeometryTest::integralGrowsOutward_data()
{
    QTest::addColumn<Rect>("input");
    QTest::addColumn<Rect>("expected");
    QTest::newRow("fractional both ends") << Rect(10.2, 10.7, 5.1, 0.1) << Rect(10, 10, 6, 1);
    QTest::newRow("already whole") << Rect(3, 4, 5, 6) << Rect(3, 4, 5, 6);
    QTest::newRow("negative fractions") << Rect(-1.5, -0.5, 1, 1) << Rect(-2, -1, 2, 2);
    QTest::newRow("zero size keeps its place") << Rect(2.5, 2.5, 0, 0) << Rect(2, 2, 1, 1);
}

void GeometryTest::integralGrowsOutward()
{
    QFETCH(Rect, input);
    QFETCH(Rect, expected);
    QCOMPARE(input.integral(), expected);
}

void GeometryTest::unionIgnoresNull()
{
    QCOMPARE(Rect::null().united(Rect(1, 2, 3, 4)), Rect(1, 2, 3, 4));
    QCOMPARE(Rect(1, 2, 3, 4).united(Rect::null()), Rect(1, 2, 3, 4));
    QCOMPARE(Rect(0, 0, 10, 10).united(Rect(-12, -12, 5, 5)), Rect(-12, -12, 22, 22));
}

void GeometryTest::negativeSizesStandardize()
{
    const Rect r(10, 10, -4, -6);
    QCOMPARE(r.minX(), 6.0);
    QCOMPARE(r.maxY(), 10.0);
    QCOMPARE(r.standardized(), Rect(6, 4, 4, 6));
    QCOMPARE(Rect::fromCorners({10, 2}, {3, 8}), Rect(3, 2, 7, 6));
}

void GeometryTest::traceForms_data()
{
    QTest::addColumn<Rect>("rect");
    QTest::addColumn<QString>("expected");
    // Whole numbers and halves show in the capture trace lines the capture tests compare.
    QTest::newRow("shortest round trip") << Rect(0.1, 1.0 / 3, 2, 2)
                                         << QStringLiteral("{{0.1, 0.3333333333333333}, {2, 2}}");
    QTest::newRow("negative zero prints as zero") << Rect(-0.0, 0, 1, 1) << QStringLiteral("{{0, 0}, {1, 1}}");
    QCOMPARE(trace::size(QSizeF(300, 200.5)), QStringLiteral("{300, 200.5}"));
    QCOMPARE(trace::displayID(std::nullopt), QStringLiteral("nil"));
    QCOMPARE(trace::displayID(4294967295u), QStringLiteral("4294967295"));
}

void GeometryTest::traceForms()
{
    QFETCH(Rect, rect);
    QFETCH(QString, expected);
    QCOMPARE(trace::rect(rect), expected);
}

QTEST_GUILESS_MAIN(GeometryTest)
#include "tst_geometry.moc"
