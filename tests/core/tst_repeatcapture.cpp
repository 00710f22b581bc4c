#include "TestPrinters.h"
#include "helpers/CaptureFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const DisplayInfo primary = FakeDisplayProvider::display(1, Rect(0, 0, 1440, 900), 2);
const DisplayInfo wide = FakeDisplayProvider::display(2, Rect(1440, 0, 2560, 1440), 1);

} // namespace

class RepeatCaptureTest : public QObject
{
    Q_OBJECT

private slots:
    void outcomes_data();
    void outcomes();
    void repeatsLiveWithoutOverlayOrDelay();
};

void RepeatCaptureTest::outcomes_data()
{
    QTest::addColumn<QString>("condition");
    QTest::addColumn<int>("beeps");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QString>("regionAfter"); // "unchanged", "absent"
    QTest::addColumn<bool>("saved");

    const QString begin = u"repeat capture begin display=2 localRect={{100, 200}, {300, 150}} "
                          u"appKitScreenRect={{1540, 200}, {300, 150}} cgGlobalRect={{1540, 550}, {300, 150}} "
                          u"screenFrame={{1440, 0}, {2560, 1440}}"_s;
    QTest::newRow("busy with a selection") << u"selecting"_s << 0 << QStringList{} << u"unchanged"_s << false;
    QTest::newRow("no stored region") << u"no region"_s << 1
                                      << QStringList{u"repeat capture skipped: no previous selection"_s}
                                      << u"absent"_s << false;
    QTest::newRow("display gone") << u"unplugged"_s << 1
                                  << QStringList{u"repeat capture skipped: display=2 is no longer connected"_s}
                                  << u"absent"_s << false;
    QTest::newRow("display narrowed: a warning, and the region is cut at the new right edge")
        << u"resized"_s << 0
        << QStringList{u"repeat capture warning: display=2 size changed stored={2560, 1440} current={300, 1080}"_s,
                       u"repeat capture begin display=2 localRect={{100, 200}, {200, 150}} "
                       u"appKitScreenRect={{1540, 200}, {200, 150}} cgGlobalRect={{1540, 550}, {200, 150}} "
                       u"screenFrame={{1440, 0}, {300, 1080}}"_s,
                       u"saveImage success path=%1/Vistrel_2024-05-01_13-07-42.png"_s,
                       u"capture saved and scheduleEditNotification"_s}
        << u"unchanged"_s << true;
    QTest::newRow("region outside the display") << u"outside"_s << 1
                                                << QStringList{u"repeat capture warning: display=2 size changed "
                                                               u"stored={2560, 1440} current={90, 90}"_s,
                                                               u"repeat capture skipped: stored rect out of current screen bounds"_s}
                                                << u"unchanged"_s << false;
    QTest::newRow("permission refused") << u"refused"_s << 0 << QStringList{begin} << u"unchanged"_s << false;
    QTest::newRow("every attempt fails")
        << u"failing"_s << 1
        << QStringList{begin,
                       u"repeat capture display-filter capture failed display=2 localRect={{100, 200}, {300, 150}} error=nil"_s,
                       u"repeat capture global-rect capture failed rect={{1540, 550}, {300, 150}} error=nil"_s,
                       u"repeat capture attempts exhausted display=2"_s}
        << u"unchanged"_s << false;
    QTest::newRow("success") << u"ok"_s << 0
                             << QStringList{begin, u"saveImage success path=%1/Vistrel_2024-05-01_13-07-42.png"_s,
                                            u"capture saved and scheduleEditNotification"_s}
                             << u"unchanged"_s << true;
}

void RepeatCaptureTest::outcomes()
{
    QFETCH(QString, condition);
    QFETCH(int, beeps);
    QFETCH(QStringList, expected);
    QFETCH(QString, regionAfter);
    QFETCH(bool, saved);
    CaptureFixture f({primary, wide});
    if (condition != u"no region"_s)
        f.captureRegion(1, Rect(100, 200, 300, 150));
    const std::optional<LastSelectionRegion> before = f.state.lastSelectionRegion;
    const int pastes = f.pasteboard.writeCount;

    if (condition == u"selecting"_s) {
        f.showOverlay();
    } else if (condition == u"unplugged"_s) {
        f.setDisplays({primary});
    } else if (condition == u"resized"_s) {
        f.setDisplays({primary, FakeDisplayProvider::display(2, Rect(1440, 0, 300, 1080), 1)});
    } else if (condition == u"outside"_s) {
        f.setDisplays({primary, FakeDisplayProvider::display(2, Rect(1440, 0, 90, 90), 1)});
    } else if (condition == u"refused"_s) {
        f.permission.preflightResult = false;
        f.permission.requestResult = false;
    } else if (condition == u"failing"_s) {
        f.capturer.displayOutcomes = {{QImage(), std::nullopt}};
        f.capturer.rectOutcomes = {{QImage(), std::nullopt}};
    }
    f.diagnostics.clear();
    f.sounds.played.clear();

    f.parts.repeat.captureLastSelection();
    f.scheduler.runUntilIdle();
    f.scheduler.runBackgroundTasks();

    const QString folder = QFileInfo(f.saveFolder.path()).canonicalFilePath();
    for (QString &line : expected)
        line = line.arg(folder);
    QCOMPARE(f.lines(), expected);
    QCOMPARE(f.sounds.beepCount(), beeps);
    QCOMPARE(f.pasteboard.writeCount - pastes, saved ? 1 : 0);
    if (saved) // the pixels of the region in the begin line
        QCOMPARE(f.pasteboard.contents.last().size(), condition == u"resized"_s ? QSize(200, 150) : QSize(300, 150));
    if (regionAfter == u"absent"_s) {
        QVERIFY(!f.state.lastSelectionRegion);
    } else {
        QVERIFY(f.state.lastSelectionRegion);
        QCOMPARE(f.state.lastSelectionRegion->localRect, before->localRect);
        QCOMPARE(f.state.lastSelectionRegion->screenFrame, before->screenFrame);
    }
    QCOMPARE(f.state.isCapturing(), false);
    QCOMPARE(f.workspace.opened.size(), condition == u"refused"_s ? 1 : 0);
}

void RepeatCaptureTest::repeatsLiveWithoutOverlayOrDelay()
{
    CaptureFixture f({primary, wide});
    f.captureRegion(0, Rect(10.25, 20.25, 100, 50));
    const int windowCalls = f.windowFactory.windows.first()->displayCount;
    const int hides = f.cursor.hideCount;
    const QList<double> delays = f.scheduler.requestedDelays();
    f.capturer.displayCalls.clear();

    f.parts.repeat.captureLastSelection();
    f.scheduler.runUntilIdle();
    QCOMPARE(f.capturer.displayCalls.size(), 1);
    // The region as stored: aligned to the 2x display's half points, from the live screen.
    QCOMPARE(f.capturer.displayCalls.first().sourceRect, Rect(10, 829.5, 100.5, 50.5));
    QCOMPARE(f.capturer.displayCalls.first().outputSize, QSize(201, 101));
    QCOMPARE(f.scheduler.requestedDelays(), delays);
    QCOMPARE(f.windowFactory.windows.first()->displayCount, windowCalls);
    QCOMPARE(f.cursor.hideCount, hides);
    QCOMPARE(f.pasteboard.contents.last().deviceIndependentSize(), QSizeF(100.5, 50.5));
}

QTEST_MAIN(RepeatCaptureTest)
#include "tst_repeatcapture.moc"
