#include "TestPrinters.h"
#include "helpers/CaptureFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const DisplayInfo primary = FakeDisplayProvider::display(1, Rect(0, 0, 1440, 900), 2);
const DisplayInfo secondary = FakeDisplayProvider::display(2, Rect(1440, -124, 1280, 1024), 1);
const DisplayInfo third = FakeDisplayProvider::display(3, Rect(-1920, 0, 1920, 1080), 1);

QImage image(QSize size)
{
    return FakeScreenCapturer::filled(size);
}

} // namespace

class SelectionSessionTest : public QObject
{
    Q_OBJECT

private slots:
    void startIsIgnoredWhileBusy_data();
    void startIsIgnoredWhileBusy();
    void permissionIsAskedOffTheMainThread_data();
    void permissionIsAskedOffTheMainThread();
    void displaysAreFrozenOneAfterAnother();
    void freezeFallsBackThenLeavesTheDisplayLive_data();
    void freezeFallsBackThenLeavesTheDisplayLive();
    void windowsAreLoggedPerDisplay();
    void poolGrowsAndOrdersOutExtraWindows();
    void escapeMonitorIsInstalledOnceAndRemovedOnClose();
    void cursorHidesAndUnhidesInPairs_data();
    void cursorHidesAndUnhidesInPairs();
    void cancelDropsTheFrozenImages();
    void screenChangeDiscardsARegionOfAGoneDisplay_data();
    void screenChangeDiscardsARegionOfAGoneDisplay();
    void noDisplaysEndsTheSession();
};

void SelectionSessionTest::startIsIgnoredWhileBusy_data()
{
    QTest::addColumn<QString>("phase");
    QTest::newRow("preparing") << u"preparing"_s;
    QTest::newRow("selecting") << u"selecting"_s;
    QTest::newRow("capturing") << u"capturing"_s;
}

void SelectionSessionTest::startIsIgnoredWhileBusy()
{
    QFETCH(QString, phase);
    CaptureFixture f({primary});
    if (phase == u"preparing"_s) {
        f.permission.preflightResult = false;
        f.showOverlay();
        QVERIFY(f.state.isPreparingSelection());
    } else {
        f.showOverlay();
        QVERIFY(f.state.isSelecting());
        if (phase == u"capturing"_s) {
            f.state.useFrozenBackground = false;
            f.drag(0, QPointF(10, 10), QPointF(50, 50));
            QVERIFY(f.state.isCapturing());
        }
    }
    const QStringList before = f.lines();
    const int windowsBefore = f.windowFactory.windows.size();
    f.session.startSelection();
    f.scheduler.runUntilIdle();
    QCOMPARE(f.lines(), before);
    QCOMPARE(f.windowFactory.windows.size(), windowsBefore);
    QCOMPARE(f.lines().count(u"startSelection accepted"_s), 1);
}

void SelectionSessionTest::permissionIsAskedOffTheMainThread_data()
{
    QTest::addColumn<bool>("granted");
    QTest::newRow("granted when asked") << true;
    QTest::newRow("refused: the privacy settings open") << false;
}

void SelectionSessionTest::permissionIsAskedOffTheMainThread()
{
    QFETCH(bool, granted);
    CaptureFixture f({primary});
    f.permission.preflightResult = false;
    f.permission.requestResult = granted;
    f.showOverlay();
    QCOMPARE(f.permission.requestCount, 0);
    QCOMPARE(f.scheduler.pendingBackgroundTasks(), 1);
    f.scheduler.runBackgroundTasks();
    QCOMPARE(f.permission.requestCount, 1);
    QCOMPARE(f.state.isSelecting(), granted);
    QCOMPARE(f.windowFactory.windows.size(), granted ? 1 : 0);
    if (granted)
        return;
    QCOMPARE(f.systemLog.messages(), QStringList{u"Vistrel: 画面収録の許可が必要です。システム設定を開きます。"_s});
    QCOMPARE(f.workspace.opened,
             QList<QUrl>{QUrl(u"x-apple.systempreferences:com.apple.preference.security?Privacy_ScreenCapture"_s)});
    QCOMPARE(f.lines(), QStringList{u"startSelection accepted"_s});
    QVERIFY(!f.state.isBusy());
    QVERIFY(f.capturer.displayCalls.isEmpty());
}

void SelectionSessionTest::displaysAreFrozenOneAfterAnother()
{
    CaptureFixture f({primary, secondary});
    f.showOverlay();
    QCOMPARE(f.journal.mid(0, 4), (QStringList{u"capturer.shareableDisplays"_s, u"capturer.captureDisplay"_s,
                                               u"capturer.shareableDisplays"_s, u"capturer.captureDisplay"_s}));
    QCOMPARE(f.capturer.displayCalls.size(), 2);
    QCOMPARE(f.capturer.displayCalls.at(0).displayID, 1u);
    QCOMPARE(f.capturer.displayCalls.at(0).sourceRect, Rect(0, 0, 1440, 900));
    QCOMPARE(f.capturer.displayCalls.at(0).outputSize, QSize(2880, 1800));
    QCOMPARE(f.capturer.displayCalls.at(1).displayID, 2u);
    QCOMPARE(f.capturer.displayCalls.at(1).outputSize, QSize(1280, 1024));

    const QMap<quint32, FrozenDisplaySnapshot> &snapshots = f.state.frozenDisplaySnapshots;
    QCOMPARE(snapshots.keys(), (QList<quint32>{1, 2}));
    QCOMPARE(snapshots.value(2).logicalFrame, secondary.frame);
    QCOMPARE(f.view(0)->frozenBackgroundImage().size(), QSize(2880, 1800));
    QCOMPARE(f.view(1)->frozenBackgroundImage().size(), QSize(1280, 1024));
}

void SelectionSessionTest::freezeFallsBackThenLeavesTheDisplayLive_data()
{
    QTest::addColumn<std::optional<QString>>("displayError");
    QTest::addColumn<bool>("listed");
    QTest::addColumn<bool>("rectWorks");
    QTest::addColumn<std::optional<QString>>("rectError");
    QTest::addColumn<bool>("liveWorks");
    QTest::addColumn<QString>("expectedLine");
    QTest::addColumn<QString>("expectedFrozen");
    const QString frozen = u"selection window display=2 frame={{1440, -124}, {1280, 1024}} frozen=1280x1024"_s;
    const QString live = u"selection window display=2 frame={{1440, -124}, {1280, 1024}} frozen=nil"_s;
    QTest::newRow("display capture fails, the desktop rectangle works")
        << std::optional<QString>(u"stopped"_s) << true << true << std::optional<QString>() << false << QString()
        << frozen;
    QTest::newRow("display not offered by the capture service, the desktop rectangle works")
        << std::optional<QString>() << false << true << std::optional<QString>() << false << QString() << frozen;
    QTest::newRow("both fail with an error, the live read works")
        << std::optional<QString>(u"stopped"_s) << true << false << std::optional<QString>(u"not permitted"_s) << true
        << u"frozen capture failed display=2 frame={{1440, -124}, {1280, 1024}} error=not permitted"_s << live;
    QTest::newRow("both fail without an error, so does the live read")
        << std::optional<QString>() << false << false << std::optional<QString>() << false
        << u"frozen capture failed display=2 frame={{1440, -124}, {1280, 1024}} error=unknown"_s << live;
}

void SelectionSessionTest::freezeFallsBackThenLeavesTheDisplayLive()
{
    QFETCH(std::optional<QString>, displayError);
    QFETCH(bool, listed);
    QFETCH(bool, rectWorks);
    QFETCH(std::optional<QString>, rectError);
    QFETCH(bool, liveWorks);
    QFETCH(QString, expectedLine);
    QFETCH(QString, expectedFrozen);
    CaptureFixture f({primary, secondary});
    if (!listed)
        f.capturer.shareable->removeLast();
    f.capturer.displayOutcomes = {{image(QSize(2880, 1800)), std::nullopt}};
    if (listed)
        f.capturer.displayOutcomes.append({QImage(), displayError});
    f.capturer.rectOutcomes = {{rectWorks ? image(QSize(1280, 1024)) : QImage(), rectError}};
    if (!liveWorks)
        f.capturer.rectOutcomes.append({QImage(), std::nullopt});
    f.showOverlay();

    // The fallback gets the display's frame as it is, not flipped. A display left unfrozen is read once
    // more where it is on the desktop, just before its overlay appears, and shows that under the dimming.
    QList<Rect> rectCalls{secondary.frame};
    if (!rectWorks)
        rectCalls.append(Rect(1440, 0, 1280, 1024));
    QCOMPARE(f.capturer.rectCalls, rectCalls);
    const int expectedCount = rectWorks ? 2 : 1;
    QCOMPARE(f.state.frozenDisplaySnapshots.size(), expectedCount);
    QVERIFY(f.lines().contains(u"frozen displays captured count=%1 via ScreenCaptureKit"_s.arg(expectedCount)));
    QCOMPARE(f.linesStartingWith(u"frozen capture failed"_s),
             expectedLine.isEmpty() ? QStringList() : QStringList{expectedLine});
    QCOMPARE(f.linesStartingWith(u"selection window display=2"_s), QStringList{expectedFrozen});
    QCOMPARE(f.view(1)->frozenBackgroundImage().isNull(), !rectWorks && !liveWorks);
}

void SelectionSessionTest::windowsAreLoggedPerDisplay()
{
    CaptureFixture f;
    const DisplayInfo withoutID = FakeDisplayProvider::display(std::nullopt, Rect(0, 900, 800, 600), 1.5);
    f.setDisplays({primary, withoutID});
    f.showOverlay();
    QCOMPARE(f.lines(),
             (QStringList{u"startSelection accepted"_s, u"frozen displays captured count=1 via ScreenCaptureKit"_s,
                          u"showSelectionWindow screens=2 layout=[id=1 frame={{0, 0}, {1440, 900}} scale=2] "
                          u"[id=nil frame={{0, 900}, {800, 600}} scale=1.5]"_s,
                          u"selection window display=1 frame={{0, 0}, {1440, 900}} frozen=2880x1800"_s,
                          u"selection window display=nil frame={{0, 900}, {800, 600}}"_s}));
    QCOMPARE(f.window(0)->frame(), primary.frame);
    QCOMPARE(f.view(0)->frame(), Rect(0, 0, 1440, 900));
    QCOMPARE(f.view(1)->frame(), Rect(0, 0, 800, 600));
    QVERIFY(f.window(0)->isKey);
    QVERIFY(f.window(1)->isVisible && !f.window(1)->isKey);
    QVERIFY(f.window(0)->displayCount > 0);
}

void SelectionSessionTest::poolGrowsAndOrdersOutExtraWindows()
{
    CaptureFixture f({primary, secondary});
    f.showOverlay();
    SelectionView *firstView = f.view(0);
    f.session.cancelSelection();

    f.setDisplays({primary, secondary, third});
    f.showOverlay();
    QCOMPARE(f.windowFactory.windows.size(), 3);
    QCOMPARE(f.view(0), firstView);
    QCOMPARE(f.window(2)->frame(), third.frame);

    // Shown again over fewer displays, the windows left over leave the screen but stay in the pool.
    f.setDisplays({third});
    f.session.showSelectionWindow();
    QCOMPARE(f.windowFactory.windows.size(), 3);
    QCOMPARE(f.window(0)->frame(), third.frame);
    QVERIFY(f.window(0)->isVisible && f.window(0)->isKey);
    QVERIFY(!f.window(1)->isVisible);
    QVERIFY(!f.window(2)->isVisible);
    QCOMPARE(f.view(0), firstView);
    // Nor do they take the pointer: a press where the second display was stays with the shown window,
    // and once the overlay is closed no window takes any.
    SelectionPointerRouter &router = f.state.selectionWindows.router();
    router.route(*f.view(0), SelectionPointerRouter::Kind::Press, QPointF(secondary.frame.midX(), secondary.frame.midY()), true);
    QVERIFY(f.view(0)->startPoint() && !f.view(1)->startPoint());
    f.session.cancelSelection();
    router.route(*f.view(0), SelectionPointerRouter::Kind::Press, QPointF(third.frame.midX(), third.frame.midY()), true);
    QVERIFY(!f.view(0)->startPoint());
    QCOMPARE(f.cursor.hiddenLevel(), 0);
}

void SelectionSessionTest::escapeMonitorIsInstalledOnceAndRemovedOnClose()
{
    CaptureFixture f({primary});
    f.showOverlay();
    f.session.showSelectionWindow();
    QCOMPARE(f.keyMonitor.addCount, 1);
    QVERIFY(!f.keyMonitor.press(12));
    QVERIFY(f.state.isSelecting());
    QVERIFY(f.keyMonitor.press(53));
    QVERIFY(!f.state.isSelecting());
    QCOMPARE(f.keyMonitor.removeCount, 1);
    QVERIFY(f.keyMonitor.monitors.isEmpty());

    // A capture closes the overlay and removes the monitor as well.
    f.showOverlay();
    QCOMPARE(f.keyMonitor.addCount, 2);
    f.drag(0, QPointF(10, 10), QPointF(40, 40));
    QVERIFY(f.keyMonitor.monitors.isEmpty());
    QCOMPARE(f.keyMonitor.removeCount, 2);
}

void SelectionSessionTest::cursorHidesAndUnhidesInPairs_data()
{
    QTest::addColumn<QString>("ending");
    QTest::newRow("capture from the frozen image") << u"frozen capture"_s;
    QTest::newRow("live capture") << u"live capture"_s;
    QTest::newRow("click without a drag") << u"click"_s;
    QTest::newRow("Escape in the middle of a drag") << u"escape"_s;
    QTest::newRow("Space over nothing, then Escape") << u"space"_s;
    QTest::newRow("capture aborted for want of a screen") << u"no screen"_s;
}

void SelectionSessionTest::cursorHidesAndUnhidesInPairs()
{
    QFETCH(QString, ending);
    CaptureFixture f({primary});
    f.state.useFrozenBackground = ending != u"live capture"_s;
    f.showOverlay();
    if (ending == u"live capture"_s) // without freezing, nothing is captured before the drag ends
        QVERIFY(f.capturer.displayCalls.isEmpty() && f.view(0)->frozenBackgroundImage().isNull());
    SelectionView *view = f.view(0);
    view->mouseDown(QPointF(10, 10));
    QCOMPARE(f.cursor.hiddenLevel(), 1);
    if (ending == u"click"_s) {
        view->mouseUp(QPointF(10, 10));
    } else if (ending == u"escape"_s) {
        view->mouseDragged(QPointF(90, 90));
        QVERIFY(f.keyMonitor.press(53));
    } else if (ending == u"space"_s) {
        view->keyDown(49);
        QVERIFY(f.state.isSelecting());
        QVERIFY(f.keyMonitor.press(53));
    } else if (ending == u"no screen"_s) {
        f.window(0)->screenOverride = std::optional<DisplayInfo>();
        f.execution.capture(Rect(10, 10, 50, 50), f.window(0));
        QVERIFY(f.state.isSelecting());
        QCOMPARE(f.cursor.hiddenLevel(), 0);
        view->mouseUp(QPointF(10, 10));
    } else {
        view->mouseDragged(QPointF(90, 90));
        view->mouseUp(QPointF(90, 90));
    }
    f.scheduler.advance(1);
    QCOMPARE(f.cursor.hiddenLevel(), 0);
    QCOMPARE(f.cursor.hideCount, 1);
    QVERIFY(!f.state.didHideSelectionCursor());
    QVERIFY(!f.state.isBusy());
}

void SelectionSessionTest::cancelDropsTheFrozenImages()
{
    CaptureFixture f({primary});
    f.showOverlay();
    QCOMPARE(f.state.frozenDisplaySnapshots.size(), 1);
    f.session.closeSelectionWindows(true, false);
    QCOMPARE(f.state.frozenDisplaySnapshots.size(), 1);
    QVERIFY(!f.state.isSelecting());
    // The hidden views let go of theirs at once; only the snapshots wait for the capture.
    QVERIFY(f.view(0)->frozenBackgroundImage().isNull());
    f.showOverlay();
    f.session.cancelSelection();
    QVERIFY(f.state.frozenDisplaySnapshots.isEmpty());
    QVERIFY(!f.window(0)->isVisible);
}

void SelectionSessionTest::screenChangeDiscardsARegionOfAGoneDisplay_data()
{
    QTest::addColumn<QList<DisplayInfo>>("after");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<bool>("regionKept");
    QTest::newRow("the region's display is unplugged")
        << QList<DisplayInfo>{primary}
        << QStringList{u"screen parameters changed: [id=1 frame={{0, 0}, {1440, 900}} scale=2]"_s,
                       u"repeat region discarded: display=2 disconnected"_s}
        << false;
    QTest::newRow("the region's display is still there, moved")
        << QList<DisplayInfo>{FakeDisplayProvider::display(2, Rect(-1280, 0, 1280, 1024), 1)}
        << QStringList{u"screen parameters changed: [id=2 frame={{-1280, 0}, {1280, 1024}} scale=1]"_s} << true;
}

void SelectionSessionTest::screenChangeDiscardsARegionOfAGoneDisplay()
{
    QFETCH(QList<DisplayInfo>, after);
    QFETCH(QStringList, expected);
    QFETCH(bool, regionKept);
    CaptureFixture f({primary, secondary});
    f.captureRegion(1, Rect(10, 10, 100, 100));
    QVERIFY(f.state.lastSelectionRegion);
    f.diagnostics.clear();

    f.setDisplays(after);
    f.displays.notifyScreenParametersChanged();
    QCOMPARE(f.lines(), expected);
    QCOMPARE(bool(f.state.lastSelectionRegion), regionKept);
}

void SelectionSessionTest::noDisplaysEndsTheSession()
{
    CaptureFixture f;
    f.setDisplays({});
    f.showOverlay();
    QVERIFY(f.lines().contains(u"showSelectionWindow screens=0 layout="_s));
    QVERIFY(!f.state.isBusy());
    QVERIFY(f.keyMonitor.monitors.isEmpty());
    f.diagnostics.clear();
    f.showOverlay();
    QCOMPARE(f.lines().first(), u"startSelection accepted"_s);
}

QTEST_MAIN(SelectionSessionTest)
#include "tst_selectionsession.moc"
