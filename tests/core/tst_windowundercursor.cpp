#include "TestPrinters.h"
#include "helpers/CaptureFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

using Entry = WindowList::Entry;
Q_DECLARE_METATYPE(QList<WindowList::Entry>)

namespace {

// Two displays side by side; the desktop's top edge is at y = 900.
const DisplayInfo primary = FakeDisplayProvider::display(1, Rect(0, 0, 1440, 900), 2);
const DisplayInfo secondary = FakeDisplayProvider::display(2, Rect(1440, 0, 1920, 1080), 1);

Entry window(Rect topLeftBounds, const QString &owner, qint64 number)
{
    return FakeWindowList::window(topLeftBounds, owner, number);
}

} // namespace

class WindowUnderCursorTest : public QObject
{
    Q_OBJECT

private slots:
    void frontmostSuitableWindow_data();
    void frontmostSuitableWindow();
    void spaceCapturesTheWindowCutToThePointersDisplay();
    void spaceOverNothingBeepsAndKeepsTheSelection();
    void spaceOutsideASelectionDoesNothing();
};

void WindowUnderCursorTest::frontmostSuitableWindow_data()
{
    QTest::addColumn<QList<Entry>>("windows");
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<qint64>("expected"); // window number, -1 for none

    // Behind everything: a large ordinary window under the point (400, 500).
    const Entry behind = window(Rect(0, 0, 1000, 800), u"Finder"_s, 99);
    const QPointF point(400, 500); // 400 down from the desktop's top edge
    QTest::newRow("the frontmost window containing the point")
        << QList<Entry>{window(Rect(300, 300, 200, 200), u"Safari"_s, 7), behind} << point << qint64(7);
    QTest::newRow("windows not under the point are passed over")
        << QList<Entry>{window(Rect(600, 300, 200, 200), u"Safari"_s, 7), behind} << point << qint64(99);
    QTest::newRow("bounds missing")
        << QList<Entry>{Entry{std::nullopt, u"Safari"_s, 0, 1.0, 7}, behind} << point << qint64(99);
    QTest::newRow("a window 1 point high yields to the one behind")
        << QList<Entry>{window(Rect(300, 399.5, 200, 1), u"Safari"_s, 7), behind} << point << qint64(99);
    QTest::newRow("a window 1 point wide yields to the one behind")
        << QList<Entry>{window(Rect(399.5, 300, 1, 200), u"Safari"_s, 7), behind} << point << qint64(99);
    QTest::newRow("our own windows, by owner name")
        << QList<Entry>{window(Rect(300, 300, 200, 200), u"Vistrel"_s, 7), behind} << point << qint64(99);
    QTest::newRow("menus, panels and status items above layer 0")
        << QList<Entry>{Entry{Rect(300, 300, 200, 200), u"SystemUIServer"_s, 25, 1.0, 7}, behind} << point << qint64(99);
    QTest::newRow("fully transparent windows")
        << QList<Entry>{Entry{Rect(300, 300, 200, 200), u"Safari"_s, 0, 0.0, 7}, behind} << point << qint64(99);
    QTest::newRow("missing owner, layer and alpha count as ordinary")
        << QList<Entry>{Entry{Rect(300, 300, 200, 200), std::nullopt, std::nullopt, std::nullopt, 7}, behind} << point
        << qint64(7);
    // Containment is judged in the y-up space: the lower edge is inside, the upper edge outside.
    QTest::newRow("a point on the window's lower edge is inside")
        << QList<Entry>{window(Rect(300, 300, 200, 100), u"Safari"_s, 7), behind} << point << qint64(7);
    QTest::newRow("a point on the window's upper edge is outside")
        << QList<Entry>{window(Rect(300, 400, 200, 100), u"Safari"_s, 7), behind} << point << qint64(99);
    QTest::newRow("nothing suitable") << QList<Entry>{window(Rect(300, 300, 200, 200), u"Vistrel"_s, 7)} << point
                                      << qint64(-1);
}

void WindowUnderCursorTest::frontmostSuitableWindow()
{
    QFETCH(QList<Entry>, windows);
    QFETCH(QPointF, point);
    QFETCH(qint64, expected);
    CaptureFixture f({primary, secondary});
    f.windowList.windows = windows;
    const std::optional<WindowUnderCursor::WindowInfo> found = f.parts.windowUnderCursor.windowInfoUnderCursor(point);
    QCOMPARE(found ? found->id : -1, expected);
}

void WindowUnderCursorTest::spaceCapturesTheWindowCutToThePointersDisplay()
{
    CaptureFixture f({primary, secondary});
    // A window from x 1240 to 1640 (across both displays), y 100 to 400 from the top.
    f.windowList.windows = QList<Entry>{window(Rect(1240, 100, 400, 300), u"Safari"_s, 42)};
    f.showOverlay();
    f.cursor.position = QPointF(1500, 600);
    f.view(1)->keyDown(49);
    QCOMPARE(f.linesStartingWith(u"window selection"_s),
             QStringList{u"window selection resolved owner=Safari id=42 localRect={{0, 500}, {200, 300}}"_s});
    QCOMPARE(f.linesStartingWith(u"capture begin"_s), QStringList{u"capture begin rect={{0, 500}, {200, 300}}"_s});
    f.scheduler.runUntilIdle();
    // Cut from the frozen image of the second display, as it looked when the selection began.
    QCOMPARE(f.pasteboard.contents.size(), 1);
    QCOMPARE(f.pasteboard.contents.first().size(), QSize(200, 300));
    QCOMPARE(f.state.lastSelectionRegion->displayID, 2u);
}

void WindowUnderCursorTest::spaceOverNothingBeepsAndKeepsTheSelection()
{
    CaptureFixture f({primary});
    f.windowList.windows = QList<Entry>{window(Rect(0, 0, 100, 100), u"Safari"_s, 42)};
    f.showOverlay();
    f.diagnostics.clear();
    f.cursor.position = QPointF(700, 300);
    f.view(0)->keyDown(49);
    QCOMPARE(f.lines(), QStringList{u"window selection skipped: no target window under cursor"_s});
    QCOMPARE(f.sounds.played, QStringList{u"beep"_s});
    QVERIFY(f.state.isSelecting());
    QVERIFY(f.window(0)->isVisible);

    // The pointer on no overlay window at all.
    f.cursor.position = QPointF(-50, -50);
    f.windowList.windows = QList<Entry>{window(Rect(-100, 900, 100, 100), u"Safari"_s, 43)};
    f.view(0)->keyDown(49);
    QCOMPARE(f.sounds.beepCount(), 2);
}

void WindowUnderCursorTest::spaceOutsideASelectionDoesNothing()
{
    CaptureFixture f({primary});
    f.windowList.windows = QList<Entry>{window(Rect(0, 0, 1000, 800), u"Safari"_s, 42)};
    f.cursor.position = QPointF(100, 400);
    f.execution.captureWindowUnderCursor();
    QVERIFY(f.lines().isEmpty());
    QVERIFY(f.sounds.played.isEmpty());
    // An unreadable window list finds nothing.
    f.windowList.windows.reset();
    QVERIFY(!f.parts.windowUnderCursor.windowInfoUnderCursor(QPointF(100, 400)));
    f.windowList.windows = QList<Entry>{window(Rect(0, 0, 1000, 800), u"Safari"_s, 42)};

    f.state.useFrozenBackground = false;
    f.showOverlay();
    f.view(0)->keyDown(49);
    QVERIFY(f.state.isCapturing());
    f.diagnostics.clear();
    f.execution.captureWindowUnderCursor();
    QVERIFY(f.lines().isEmpty());
}

QTEST_MAIN(WindowUnderCursorTest)
#include "tst_windowundercursor.moc"
