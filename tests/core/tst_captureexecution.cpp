#include "TestPrinters.h"
#include "helpers/CaptureFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const DisplayInfo primary = FakeDisplayProvider::display(1, Rect(0, 0, 1440, 900), 2);
// The screen a window reports: its own, none, or the display left of it (its own was unplugged while
// the overlay was up, and the window system moved it to the one that remains).
enum WindowScreen { OwnScreen, NoScreen, RemainingScreen };

} // namespace

class CaptureExecutionTest : public QObject
{
    Q_OBJECT

private slots:
    void refusals_data();
    void refusals();
    void liveCaptureWaitsForTheOverlayToLeave_data();
    void liveCaptureWaitsForTheOverlayToLeave();
    void screenWithoutIDGoesStraightToTheDesktopRectangle();
    void attempts_data();
    void attempts();
    void failedCaptureKeepsThePreviousRegion();
    void refusedPermissionAtCaptureTime();
};

void CaptureExecutionTest::refusals_data()
{
    QTest::addColumn<bool>("selecting");
    QTest::addColumn<Rect>("rect");
    QTest::addColumn<int>("screen");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("systemLog");
    QTest::addColumn<bool>("stillSelecting");
    QTest::newRow("no selection under way")
        << false << Rect(10, 10, 50, 50) << int(OwnScreen) << QStringList{u"capture ignored: selection inactive"_s}
        << QStringList{} << false;
    QTest::newRow("an empty rectangle is dropped silently")
        << true << Rect(10, 10, 0, 50) << int(OwnScreen) << QStringList{} << QStringList{} << true;
    QTest::newRow("no screen for the window, and no main screen")
        << true << Rect(10, 10, 50, 50) << int(NoScreen)
        << QStringList{u"capture begin rect={{10, 10}, {50, 50}}"_s, u"capture aborted: target screen not found"_s}
        << QStringList{} << true;
    QTest::newRow("entirely outside the display")
        << true << Rect(2000, 10, 50, 50) << int(OwnScreen)
        << QStringList{u"capture begin rect={{2000, 10}, {50, 50}}"_s, u"capture aborted invalid clampedLocalRect"_s}
        << QStringList{u"Vistrel: 無効なキャプチャ範囲のため処理を中断しました。"_s} << true;
    // Nothing is read from where the unplugged display was.
    QTest::newRow("the window's display was unplugged")
        << true << Rect(10, 10, 50, 50) << int(RemainingScreen)
        << QStringList{u"capture begin rect={{10, 10}, {50, 50}}"_s, u"capture aborted invalid clampedLocalRect"_s}
        << QStringList{u"Vistrel: 無効なキャプチャ範囲のため処理を中断しました。"_s} << true;
}

void CaptureExecutionTest::refusals()
{
    QFETCH(bool, selecting);
    QFETCH(Rect, rect);
    QFETCH(int, screen);
    QFETCH(QStringList, expected);
    QFETCH(QStringList, systemLog);
    QFETCH(bool, stillSelecting);
    CaptureFixture f({primary});
    f.showOverlay();
    f.view(0)->mouseDown(QPointF(10, 10));
    if (!selecting)
        f.session.cancelSelection();
    if (screen == NoScreen)
        f.window(0)->screenOverride = std::optional<DisplayInfo>();
    if (screen == RemainingScreen)
        f.window(0)->screenOverride = FakeDisplayProvider::display(2, Rect(-1440, 0, 1440, 900), 2);
    f.diagnostics.clear();

    f.execution.capture(rect, f.window(0));
    f.scheduler.advance(1);
    QCOMPARE(f.lines(), expected);
    QCOMPARE(f.systemLog.messages(), systemLog);
    QVERIFY(!f.state.isCapturing());
    QCOMPARE(f.state.isSelecting(), stillSelecting);
    QCOMPARE(f.window(0)->isVisible, stillSelecting);
    QCOMPARE(f.cursor.hiddenLevel(), stillSelecting && expected.isEmpty() ? 1 : 0);
    QVERIFY(f.pasteboard.contents.isEmpty());
}

void CaptureExecutionTest::liveCaptureWaitsForTheOverlayToLeave_data()
{
    QTest::addColumn<bool>("freezing");
    QTest::newRow("freezing turned off") << false;
    QTest::newRow("freezing failed, so no snapshot") << true;
}

void CaptureExecutionTest::liveCaptureWaitsForTheOverlayToLeave()
{
    QFETCH(bool, freezing);
    CaptureFixture f({primary});
    f.state.useFrozenBackground = freezing;
    if (freezing) {
        f.capturer.displayOutcomes = {{QImage(), std::nullopt}};
        f.capturer.rectOutcomes = {{QImage(), std::nullopt}};
    }
    f.showOverlay();
    QVERIFY(f.state.frozenDisplaySnapshots.isEmpty());
    const qsizetype freezeCalls = f.capturer.displayCalls.size();
    f.drag(0, QPointF(10, 20), QPointF(110, 70));
    QVERIFY(!f.window(0)->isVisible);
    f.scheduler.advance(0.059);
    QCOMPARE(f.capturer.displayCalls.size(), freezeCalls);
    f.scheduler.advance(0.001);
    QCOMPARE(f.capturer.displayCalls.size(), freezeCalls + 1);
    QCOMPARE(f.scheduler.requestedDelays(), QList<double>{0.06});
    f.scheduler.runUntilIdle();
    QCOMPARE(f.pasteboard.contents.size(), 1);
    QVERIFY(f.state.lastSelectionRegion);
    QVERIFY(!f.state.isCapturing());
    QVERIFY(f.linesStartingWith(u"capture attempts exhausted"_s).isEmpty());
}

void CaptureExecutionTest::screenWithoutIDGoesStraightToTheDesktopRectangle()
{
    CaptureFixture f;
    const DisplayInfo anonymous = FakeDisplayProvider::display(std::nullopt, Rect(0, 0, 800, 600), 1);
    f.setDisplays({anonymous});
    f.showOverlay();
    QVERIFY(f.capturer.displayCalls.isEmpty());
    f.drag(0, QPointF(10, 20), QPointF(110, 70));
    f.scheduler.advance(1);
    QCOMPARE(f.linesStartingWith(u"capture "_s).mid(1),
             (QStringList{u"capture localRect={{10, 20}, {100, 50}} appKitScreenRect={{10, 20}, {100, 50}} "
                          u"cgGlobalRect={{10, 530}, {100, 50}} screenFrame={{0, 0}, {800, 600}} displayID=nil"_s,
                          u"capture displayID unavailable, falling back to global rect={{10, 530}, {100, 50}}"_s}));
    QCOMPARE(f.capturer.rectCalls, QList<Rect>{Rect(10, 530, 100, 50)});
    QCOMPARE(f.pasteboard.contents.size(), 1);
    QVERIFY(!f.state.lastSelectionRegion);
}

// The same attempts serve the repeat capture, under its own prefix (see the repeat capture's outcomes).
void CaptureExecutionTest::attempts_data()
{
    QTest::addColumn<std::optional<QString>>("listError");
    QTest::addColumn<bool>("listed");
    QTest::addColumn<QList<FakeScreenCapturer::Outcome>>("displayOutcomes");
    QTest::addColumn<QList<FakeScreenCapturer::Outcome>>("rectOutcomes");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QSize>("imageSize");

    using Outcomes = QList<FakeScreenCapturer::Outcome>;
    const Outcomes none;
    const Outcomes failsWithError{{QImage(), u"stream stopped"_s}};
    const Outcomes failsSilently{{QImage(), std::nullopt}};
    const QString filterFailed =
        u"capture display-filter capture failed display=1 localRect={{10, 20}, {100, 50}} error="_s;
    const QString rectFailed = u"capture global-rect capture failed rect={{10, 830}, {100, 50}} error="_s;
    QTest::newRow("the display capture works")
        << std::optional<QString>() << true << none << none << QStringList{} << QSize(200, 100);
    QTest::newRow("display capture fails, then the desktop rectangle")
        << std::optional<QString>() << true << failsWithError << none
        << QStringList{filterFailed + u"stream stopped"_s} << QSize(100, 50);
    QTest::newRow("display not listed")
        << std::optional<QString>() << false << none << none << QStringList{filterFailed + u"nil"_s} << QSize(100, 50);
    QTest::newRow("display list unavailable")
        << std::optional<QString>(u"no content"_s) << true << none << none
        << QStringList{filterFailed + u"no content"_s} << QSize(100, 50);
    QTest::newRow("both fail")
        << std::optional<QString>() << true << failsSilently << failsWithError
        << QStringList{filterFailed + u"nil"_s, rectFailed + u"stream stopped"_s} << QSize(0, 0);
}

void CaptureExecutionTest::attempts()
{
    QFETCH(std::optional<QString>, listError);
    QFETCH(bool, listed);
    QFETCH(QList<FakeScreenCapturer::Outcome>, displayOutcomes);
    QFETCH(QList<FakeScreenCapturer::Outcome>, rectOutcomes);
    QFETCH(QStringList, expected);
    QFETCH(QSize, imageSize);
    CaptureFixture f({primary});
    f.capturer.shareableError = listError;
    if (!listed)
        f.capturer.shareable->clear();
    f.capturer.displayOutcomes = displayOutcomes;
    f.capturer.rectOutcomes = rectOutcomes;

    std::optional<QImage> result;
    f.parts.attempts.performCaptureAttempts(1, Rect(10, 20, 100, 50), primary.frame, 2, u"capture"_s,
                                            [&](QImage image) { result = image; });
    QVERIFY(!result); // completions arrive through the main thread's queue
    f.scheduler.runUntilIdle();
    QVERIFY(result);
    QCOMPARE(result->size(), imageSize);
    QCOMPARE(f.lines(), expected);
}

void CaptureExecutionTest::failedCaptureKeepsThePreviousRegion()
{
    CaptureFixture f({primary});
    f.captureRegion(0, Rect(10, 20, 100, 50));
    const LastSelectionRegion first = *f.state.lastSelectionRegion;
    f.sounds.played.clear();

    // Every read fails: the freeze, the overlay's live background, the capture.
    f.capturer.displayOutcomes = {{QImage(), std::nullopt}, {QImage(), std::nullopt}};
    f.capturer.rectOutcomes = {{QImage(), std::nullopt}, {QImage(), std::nullopt}, {QImage(), std::nullopt}};
    f.captureRegion(0, Rect(300, 300, 40, 40));
    QCOMPARE(f.linesStartingWith(u"capture attempts exhausted"_s),
             QStringList{u"capture attempts exhausted display=1"_s});
    QCOMPARE(f.state.lastSelectionRegion->localRect, first.localRect);
    QCOMPARE(f.pasteboard.writeCount, 1);
    QVERIFY(f.sounds.played.isEmpty());
    QVERIFY(!f.state.isBusy());
}

void CaptureExecutionTest::refusedPermissionAtCaptureTime()
{
    CaptureFixture f({primary});
    f.state.useFrozenBackground = false;
    f.showOverlay();
    f.permission.preflightResult = false;
    f.permission.requestResult = false;
    f.view(0)->mouseDown(QPointF(10, 10));
    f.view(0)->mouseDragged(QPointF(50, 50));
    f.execution.capture(Rect(10, 10, 40, 40), f.window(0));
    f.scheduler.advance(1);
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.systemLog.messages(), QStringList{u"Vistrel: 画面収録の許可が必要です。システム設定を開きます。"_s});
    QCOMPARE(f.workspace.opened.size(), 1);
    QVERIFY(f.capturer.displayCalls.isEmpty());
    QVERIFY(!f.state.isBusy());
    QCOMPARE(f.cursor.hiddenLevel(), 0);
    QVERIFY(!f.state.lastSelectionRegion);
}

QTEST_MAIN(CaptureExecutionTest)
#include "tst_captureexecution.moc"
