#include "FakeKeyValueStore.h"
#include "FakeScheduler.h"
#include "TestPrinters.h"

#include "editor/EditorViewport.h"
#include "editor/ImageEditorModel.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// `pointSize` on screen, with `ratio` pixels per point, as a capture from a HiDPI display.
QImage picture(QSize pointSize, double ratio)
{
    QImage image(pointSize * ratio, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setDevicePixelRatio(ratio);
    return image;
}

// A viewport over an image of the given size in points.
struct ViewportFixture
{
    explicit ViewportFixture(QSize imageSize, double ratio = 1) : model(picture(imageSize, ratio), store) {}

    FakeKeyValueStore store;
    FakeScheduler scheduler;
    ImageEditorModel model;
    EditorViewport viewport{model, scheduler};
};

} // namespace

class EditorViewportTest : public QObject
{
    Q_OBJECT

private slots:
    void canvasGeometry_data();
    void canvasGeometry();
    void conversionsAreInverses_data();
    void conversionsAreInverses();
    void zoom_data();
    void zoom();
    void zoomControls();
    void centeringIsAttemptedFourTimes();
    void fifthCallEndsCentering();
    void centeringAfterTheViewIsGoneDoesNothing();
};

void EditorViewportTest::canvasGeometry_data()
{
    QTest::addColumn<QSize>("imageSize");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<double>("zoom");
    QTest::addColumn<QSizeF>("canvasSize");
    QTest::addColumn<QRectF>("imageFrame");
    QTest::newRow("100 x 50 at 1") << QSize(100, 50) << 1.0 << 1.0 << QSizeF(1100, 1050) << QRectF(500, 500, 100, 50);
    QTest::newRow("100 x 50 at 0.5") << QSize(100, 50) << 1.0 << 0.5 << QSizeF(550, 525) << QRectF(250, 250, 50, 25);
    QTest::newRow("1 x 1 keeps the padding") << QSize(1, 1) << 1.0 << 1.0 << QSizeF(1001, 1001) << QRectF(500, 500, 1, 1);
    QTest::newRow("at least one view point") << QSize(100, 50) << 1.0 << 0.0 << QSizeF(1, 1) << QRectF(0, 0, 0, 0);
    QTest::newRow("zoomed in") << QSize(300, 200) << 1.0 << 2.0 << QSizeF(2600, 2400) << QRectF(1000, 1000, 600, 400);
    // 800 × 600 pixels taken from 400 × 300 points: shown at its size on screen.
    QTest::newRow("HiDPI at 1") << QSize(400, 300) << 2.0 << 1.0 << QSizeF(1400, 1300) << QRectF(500, 500, 400, 300);
    QTest::newRow("HiDPI at 2") << QSize(400, 300) << 2.0 << 2.0 << QSizeF(2800, 2600) << QRectF(1000, 1000, 800, 600);
}

void EditorViewportTest::canvasGeometry()
{
    QFETCH(QSize, imageSize);
    QFETCH(double, ratio);
    QFETCH(double, zoom);
    QFETCH(QSizeF, canvasSize);
    QFETCH(QRectF, imageFrame);
    ViewportFixture f(imageSize, ratio);
    f.viewport.setZoomScale(zoom);
    QCOMPARE(f.viewport.zoomedCanvasSize(), canvasSize);
    QCOMPARE(f.viewport.imageFrameInCanvas(), imageFrame);
    QCOMPARE(f.viewport.imageCenterAnchor(), imageFrame.center());
    if (zoom == 0) // no scale to divide by: every point maps to the origin
        QCOMPARE(f.viewport.convertToImagePoint(QPointF(700, 300)), QPointF(0, 0));
}

void EditorViewportTest::conversionsAreInverses_data()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<double>("zoom");
    QTest::addColumn<QPointF>("viewPoint");
    QTest::addColumn<QPointF>("imagePoint");
    QTest::newRow("image top-left") << 1.0 << 1.0 << QPointF(500, 500) << QPointF(0, 50);
    QTest::newRow("image bottom-left") << 1.0 << 1.0 << QPointF(500, 550) << QPointF(0, 0);
    QTest::newRow("canvas origin") << 1.0 << 1.0 << QPointF(0, 0) << QPointF(-500, 550);
    QTest::newRow("half zoom") << 1.0 << 0.5 << QPointF(275, 262.5) << QPointF(50, 25);
    QTest::newRow("odd zoom") << 1.0 << 1.3 << QPointF(13, 1.3) << QPointF(-490, 549);
    // The overlays' coordinates stay in image pixels: two per point.
    QTest::newRow("HiDPI image top-left") << 2.0 << 1.0 << QPointF(500, 500) << QPointF(0, 100);
    QTest::newRow("HiDPI image bottom-right") << 2.0 << 1.0 << QPointF(600, 550) << QPointF(200, 0);
    QTest::newRow("HiDPI canvas origin") << 2.0 << 1.0 << QPointF(0, 0) << QPointF(-1000, 1100);
    QTest::newRow("HiDPI zoomed in") << 2.0 << 2.0 << QPointF(1100, 1050) << QPointF(100, 50);
}

void EditorViewportTest::conversionsAreInverses()
{
    QFETCH(double, ratio);
    QFETCH(double, zoom);
    QFETCH(QPointF, viewPoint);
    QFETCH(QPointF, imagePoint);
    ViewportFixture f(QSize(100, 50), ratio);
    f.viewport.setZoomScale(zoom);
    QCOMPARE(f.viewport.convertToImagePoint(viewPoint), imagePoint);
    QCOMPARE(f.viewport.convertToViewPoint(imagePoint), viewPoint);
    QCOMPARE(f.viewport.convertToViewPoint(f.viewport.convertToImagePoint(viewPoint)), viewPoint);
    QCOMPARE(f.viewport.imageToViewTransform().map(imagePoint), viewPoint);
}

void EditorViewportTest::zoom_data()
{
    QTest::addColumn<bool>("fromSlider");
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("zoom");
    QTest::addColumn<bool>("resetEnabled");
    QTest::newRow("exactly 1") << false << 1.0 << 1.0 << false;
    QTest::newRow("1.0005 is still 100%") << false << 1.0005 << 1.0005 << false;
    QTest::newRow("0.9995 is still 100%") << false << 0.9995 << 0.9995 << false;
    QTest::newRow("1.1") << false << 1.1 << 1.1 << true;
    QTest::newRow("slider: a step") << true << 1.7 << 1.7 << true;
    QTest::newRow("slider: between steps") << true << 1.74 << 1.7 << true;
    QTest::newRow("slider: below the range") << true << 0.1 << 0.5 << true;
    QTest::newRow("slider: above the range") << true << 7.0 << 3.0 << true;
}

void EditorViewportTest::zoom()
{
    QFETCH(bool, fromSlider);
    QFETCH(double, value);
    QFETCH(double, zoom);
    QFETCH(bool, resetEnabled);
    ViewportFixture f(QSize(10, 10));
    if (fromSlider)
        f.viewport.setZoomFromSlider(value);
    else
        f.viewport.setZoomScale(value);
    QCOMPARE(f.viewport.zoomScale(), zoom);
    QCOMPARE(f.viewport.zoomControls().isResetEnabled, resetEnabled);
    f.viewport.resetZoom();
    QCOMPARE(f.viewport.zoomScale(), 1.0);
}

void EditorViewportTest::zoomControls()
{
    ViewportFixture f(QSize(10, 10));
    const EditorViewport::ZoomControls controls = f.viewport.zoomControls();
    QCOMPARE(controls.heading, u"ズーム"_s);
    QCOMPARE(controls.resetTitle, u"100%に戻す"_s);
    QStringList titles;
    QList<double> zooms;
    for (const EditorViewport::ZoomButton &button : controls.presets) {
        titles.append(button.title);
        zooms.append(button.zoomScale);
    }
    QCOMPARE(titles, (QStringList{u"50%"_s, u"100%"_s, u"150%"_s, u"200%"_s}));
    QCOMPARE(zooms, (QList<double>{0.5, 1.0, 1.5, 2.0}));
}

void EditorViewportTest::centeringIsAttemptedFourTimes()
{
    ViewportFixture f(QSize(100, 50));
    QList<QPointF> scrolls;
    const auto scroll = [&scrolls](QPointF anchor) { scrolls.append(anchor); };
    // Each layout pass calls again once the previous scroll has happened.
    for (int call = 1; call <= 4; ++call) {
        f.viewport.performInitialCentering(scroll);
        QCOMPARE(f.scheduler.requestedDelays().last(), call * 0.05);
        f.scheduler.advance(call * 0.05 - 0.001);
        QCOMPARE(scrolls.size(), call - 1);
        f.scheduler.advance(0.001);
        QCOMPARE(scrolls.size(), call);
    }
    QCOMPARE(scrolls, QList<QPointF>(4, QPointF(550, 525)));
    f.viewport.performInitialCentering(scroll);
    QCOMPARE(f.scheduler.pendingMainTasks(), 0);
}

void EditorViewportTest::fifthCallEndsCentering()
{
    ViewportFixture f(QSize(100, 50));
    int scrolls = 0;
    // The fifth call ends it before any scroll has happened: a sixth schedules nothing either.
    for (int call = 0; call < 6; ++call)
        f.viewport.performInitialCentering([&scrolls](QPointF) { ++scrolls; });
    QCOMPARE(f.scheduler.pendingMainTasks(), 4);
    f.scheduler.advance(1);
    QCOMPARE(scrolls, 4);
}

void EditorViewportTest::centeringAfterTheViewIsGoneDoesNothing()
{
    FakeScheduler scheduler;
    FakeKeyValueStore store;
    ImageEditorModel model(picture(QSize(10, 10), 1), store);
    int scrolls = 0;
    {
        EditorViewport viewport(model, scheduler);
        viewport.performInitialCentering([&scrolls](QPointF) { ++scrolls; });
    }
    scheduler.advance(1);
    QCOMPARE(scrolls, 0);
}

QTEST_GUILESS_MAIN(EditorViewportTest)
#include "tst_editorviewport.moc"
