// The conversions between device pixels, Qt's logical space and the global bottom-left space, on
// layouts with mixed scales (whose logical space has gaps) and with a spanning automatic monitor.
#include "DesktopSpace.h"
#include "TestPrinters.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Two 1920x1080-pixel monitors side by side, the left one at 2x: logically 960x540 and 1920x1080.
const QList<DesktopScreen> mixed = {
    {u"LEFT"_s, QRect(0, 0, 960, 540), QRect(0, 0, 960, 540), QRect(0, 0, 1920, 1080), 2},
    {u"RIGHT"_s, QRect(1920, 0, 1920, 1080), QRect(1920, 0, 1920, 1050), QRect(1920, 0, 1920, 1080), 1},
};

} // namespace

class DesktopSpaceTest : public QObject
{
    Q_OBJECT

private slots:
    void onlyASpanningMonitorIsLeftOut();
    void nativeRectanglesLandOnTheirDisplays_data();
    void nativeRectanglesLandOnTheirDisplays();
    void logicalToNativeIsTheInverse_data();
    void logicalToNativeIsTheInverse();
    void globalSpaceFlipsAboutThePrimaryDisplay_data();
    void globalSpaceFlipsAboutThePrimaryDisplay();
    void compositorLayoutCorrectsQtAndMapsToItsPictures_data();
    void compositorLayoutCorrectsQtAndMapsToItsPictures();
};

void DesktopSpaceTest::onlyASpanningMonitorIsLeftOut()
{
    QList<DesktopScreen> screens = mixed;
    screens.prepend({u"screen"_s, QRect(0, 0, 3840, 1080), QRect(), QRect(0, 0, 3840, 1080), 1});
    QStringList kept;
    for (const DesktopScreen &screen : desktopspace::withoutCoveringScreens(screens))
        kept.append(screen.name);
    QCOMPARE(kept, (QStringList{u"LEFT"_s, u"RIGHT"_s}));
    // A monitor repeating another's rectangle (a user-defined one over the automatic one, mirrored
    // outputs) is the same display: the first stays, also when the two scales differ.
    DesktopScreen again = mixed.at(0);
    again.name = u"AGAIN"_s;
    again.logical.setSize(again.native.size());
    again.scale = 1;
    kept.clear();
    for (const DesktopScreen &screen : desktopspace::withoutCoveringScreens({mixed.at(0), mixed.at(1), again}))
        kept.append(screen.name);
    QCOMPARE(kept, (QStringList{u"LEFT"_s, u"RIGHT"_s}));

    // macOS: Qt's logical space is the layout in points, and a 2x display's pixel size reaches over its
    // 1x neighbour. Both stay, and the global space still flips about the primary (built-in) display.
    const DesktopSpace space(desktopspace::withoutCoveringScreens({
        {u"Built-in"_s, QRect(0, 0, 1440, 900), QRect(0, 25, 1440, 875), QRect(0, 0, 2880, 1800), 2},
        {u"External"_s, QRect(1440, 0, 1280, 800), QRect(1440, 0, 1280, 800), QRect(1440, 0, 1280, 800), 1},
    }));
    QCOMPARE(space.screens().size(), 2);
    QCOMPARE(space.primary(), QRect(0, 0, 1440, 900));
    QCOMPARE(space.toGlobal(QRectF(1440, 0, 1280, 800)), Rect(1440, 100, 1280, 800));
}

void DesktopSpaceTest::nativeRectanglesLandOnTheirDisplays_data()
{
    QTest::addColumn<QRectF>("native");
    QTest::addColumn<QRectF>("logical");
    QTest::newRow("inside the 2x display") << QRectF(100, 100, 200, 150) << QRectF(50, 50, 100, 75);
    QTest::newRow("inside the 1x display") << QRectF(2100, 100, 200, 150) << QRectF(2100, 100, 200, 150);
    // Each corner by its own display: cut to either display, the rectangle covers what that display shows.
    QTest::newRow("spanning both") << QRectF(1800, 0, 300, 100) << QRectF(900, 0, 1200, 100);
    QTest::newRow("ending at the edge stays on its display") << QRectF(1720, 980, 200, 100)
                                                             << QRectF(860, 490, 100, 50);
    QTest::newRow("beyond every display goes by the nearest") << QRectF(3900, 1100, 10, 10)
                                                              << QRectF(3900, 1100, 10, 10);
}

void DesktopSpaceTest::nativeRectanglesLandOnTheirDisplays()
{
    QFETCH(QRectF, native);
    QTEST(desktopspace::nativeToLogical(native, mixed), "logical");
}

void DesktopSpaceTest::logicalToNativeIsTheInverse_data()
{
    QTest::addColumn<QRectF>("logical");
    QTest::addColumn<QRect>("native");
    QTest::newRow("whole 2x display") << QRectF(0, 0, 960, 540) << QRect(0, 0, 1920, 1080);
    QTest::newRow("whole 1x display") << QRectF(1920, 0, 1920, 1080) << QRect(1920, 0, 1920, 1080);
    QTest::newRow("part pixels grow to whole ones") << QRectF(10.25, 10.25, 0.5, 0.5) << QRect(20, 20, 2, 2);
    QTest::newRow("fractional on 1x rounds outward") << QRectF(1920.5, 0.5, 1, 1) << QRect(1920, 0, 2, 2);
}

void DesktopSpaceTest::logicalToNativeIsTheInverse()
{
    QFETCH(QRectF, logical);
    QTEST(desktopspace::logicalToNative(logical, mixed), "native");
}

void DesktopSpaceTest::globalSpaceFlipsAboutThePrimaryDisplay_data()
{
    QTest::addColumn<QRect>("primary");
    QTest::addColumn<QRectF>("logical");
    QTest::addColumn<Rect>("global");
    QTest::newRow("primary itself") << QRect(0, 0, 960, 540) << QRectF(0, 0, 960, 540) << Rect(0, 0, 960, 540);
    QTest::newRow("taller display right of a 2x primary")
        << QRect(0, 0, 960, 540) << QRectF(1920, 0, 1920, 1080) << Rect(1920, -540, 1920, 1080);
    QTest::newRow("top-left selection") << QRect(0, 0, 1920, 1080) << QRectF(100, 100, 200, 150)
                                        << Rect(100, 830, 200, 150);
    QTest::newRow("primary not at the root origin")
        << QRect(1920, 0, 1920, 1080) << QRectF(0, 200, 1920, 1080) << Rect(-1920, -200, 1920, 1080);
}

void DesktopSpaceTest::globalSpaceFlipsAboutThePrimaryDisplay()
{
    QFETCH(QRect, primary);
    QFETCH(QRectF, logical);
    QFETCH(Rect, global);
    QCOMPARE(desktopspace::toGlobal(logical, primary), global);
    QCOMPARE(desktopspace::fromGlobal(global, primary), logical);
    QCOMPARE(desktopspace::pointToGlobal(logical.bottomLeft(), primary), global.origin());
    const Rect topLeft = desktopspace::toTopLeftGlobal(logical, primary);
    QCOMPARE(topLeft.origin(), logical.topLeft() - QPointF(primary.topLeft()));
    QCOMPARE(desktopspace::fromTopLeftGlobal(topLeft, primary), logical);
}

// GNOME with two 1280x720 and 1920x1080 pixel monitors, the second at scale 2. In its pixel layout Qt 6.4
// gives the second its layout position and its size in pixels, the compositor's report fixes the size;
// in its logical layout Qt is right and the report changes nothing. Rectangles in Qt's logical space land
// in a picture of the whole layout at `perUnit` pixels per layout unit.
void DesktopSpaceTest::compositorLayoutCorrectsQtAndMapsToItsPictures_data()
{
    QTest::addColumn<QRect>("qtSecond");
    QTest::addColumn<QRect>("reportedSecond");
    QTest::addColumn<double>("perUnit");
    QTest::addColumn<QRectF>("logical");
    QTest::addColumn<QRect>("inPicture");
    const QRect pixelLayout(1280, 0, 1920, 1080);
    const QRect logicalLayout(1280, 0, 960, 540);
    QTest::newRow("pixel layout, on the scale 1 monitor")
        << pixelLayout << pixelLayout << 1.0 << QRectF(100, 100, 300, 200) << QRect(100, 100, 300, 200);
    QTest::newRow("pixel layout, a point is two pixels on the scale 2 monitor")
        << pixelLayout << pixelLayout << 1.0 << QRectF(1330, 50, 150, 100) << QRect(1380, 100, 300, 200);
    QTest::newRow("pixel layout, across both by each corner's own monitor")
        << pixelLayout << pixelLayout << 1.0 << QRectF(1180, 0, 150, 100) << QRect(1180, 0, 200, 200);
    QTest::newRow("logical layout, the picture at the highest scale")
        << logicalLayout << logicalLayout << 2.0 << QRectF(1330, 50, 150, 100) << QRect(2660, 100, 300, 200);
    QTest::newRow("unreported: Qt's screens as they are")
        << logicalLayout << QRect() << 2.0 << QRectF(100, 100, 300, 200) << QRect(200, 200, 600, 400);
}

void DesktopSpaceTest::compositorLayoutCorrectsQtAndMapsToItsPictures()
{
    QFETCH(QRect, qtSecond);
    QFETCH(QRect, reportedSecond);
    QFETCH(double, perUnit);
    const QList<DesktopScreen> qt = {
        {u"Meta-0"_s, QRect(0, 0, 1280, 720), QRect(0, 0, 1280, 720), QRect(0, 0, 1280, 720), 1},
        {u"Meta-1"_s, qtSecond, qtSecond, QRect(qtSecond.topLeft(), qtSecond.size() * 2), 2},
    };
    QList<CompositorOutput> reported = {{u"Meta-0"_s, QRect(0, 0, 1280, 720), 1, QSize(1280, 720)}};
    if (!reportedSecond.isNull())
        reported.append({u"Meta-1"_s, reportedSecond, 2, QSize(1920, 1080)});
    const QList<DesktopScreen> screens = desktopspace::withCompositorLayout(qt, reported);

    QCOMPARE(screens.at(1).logical, QRect(1280, 0, 960, 540));
    QCOMPARE(screens.at(1).native.size(), QSize(1920, 1080));
    QCOMPARE(screens.at(1).layoutRect(), reportedSecond.isNull() ? qtSecond : reportedSecond);
    QFETCH(QRectF, logical);
    QTEST(desktopspace::logicalToLayout(logical, screens, perUnit), "inPicture");
}

QTEST_GUILESS_MAIN(DesktopSpaceTest)
#include "tst_desktopspace.moc"
