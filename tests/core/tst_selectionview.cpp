#include "TestPrinters.h"
#include "helpers/SelectionViewFixture.h"

#include "capture/SelectionPainting.h"
#include "capture/SelectionView.h"
#include "capture/SelectionViewDelegate.h"
#include "geometry/TraceFormat.h"

#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// The colour of the pixel whose bottom-left corner is at the view point (x, y).
QColor at(const QImage &canvas, double x, double y)
{
    return canvas.pixelColor(int(x), canvas.height() - 1 - int(y));
}

QColor over(QColor base, QColor paint)
{
    const double a = paint.alphaF();
    return QColor::fromRgbF(base.redF() * (1 - a) + paint.redF() * a, base.greenF() * (1 - a) + paint.greenF() * a,
                            base.blueF() * (1 - a) + paint.blueF() * a);
}

bool near(QColor actual, QColor expected)
{
    return std::abs(actual.red() - expected.red()) <= 3 && std::abs(actual.green() - expected.green()) <= 3
        && std::abs(actual.blue() - expected.blue()) <= 3;
}

QString describe(QColor actual, QColor expected)
{
    return u"got %1 expected %2"_s.arg(actual.name(), expected.name());
}

#define QCOMPARE_COLOR(actual, expected)                                                                     \
    do {                                                                                                     \
        const QColor a_ = (actual);                                                                          \
        const QColor e_ = (expected);                                                                        \
        QVERIFY2(near(a_, e_), qPrintable(describe(a_, e_)));                                                \
    } while (false)

// The overlay's paints, as the design gives them.
const QColor dimming = QColor::fromRgbF(0, 0, 0, 0.25);
const QColor selectionFill = QColor::fromRgbF(0, 122 / 255.0, 1, 0.25);
const QColor labelFill = QColor::fromRgbF(0, 0, 0, 0.78);
const QColor crosshair = QColor::fromRgbF(1, 1, 1, 0.85);

// Displays as Qt lays them out, in the global space: each keeps its pixel position and divides only its
// size by its scale, so displays of different scales leave gaps between them.
QList<DisplayInfo> twoAt1x()
{
    return {FakeDisplayProvider::display(1, Rect(0, 0, 1920, 1080)),
            FakeDisplayProvider::display(2, Rect(1920, 0, 1920, 1080))};
}

QList<DisplayInfo> at2xBeside1x()
{
    return {FakeDisplayProvider::display(1, Rect(0, 0, 960, 540), 2),
            FakeDisplayProvider::display(2, Rect(1920, -540, 1920, 1080), 1)};
}

QList<DisplayInfo> at1x15x2x()
{
    return {FakeDisplayProvider::display(1, Rect(0, 0, 1920, 1080), 1),
            FakeDisplayProvider::display(2, Rect(1920, 360, 1280, 720), 1.5),
            FakeDisplayProvider::display(3, Rect(3840, 540, 960, 540), 2)};
}

} // namespace

class SelectionViewTest : public QObject
{
    Q_OBJECT

private slots:
    void pointerRouting_data();
    void pointerRouting();
    void keys_data();
    void keys();
    void cursorIsHiddenOncePerViewAndPresentationStartsClean();
    void labelMeasuresPixelsOfTheViewsDisplay();
    void frozenImageIsDimmedAndUpright();
    void selectionFillOutlineAndLabel();
    void crosshairIsDashed();
};

void SelectionViewTest::pointerRouting_data()
{
    // Events at global points; what the views report, then where each view shows the crosshair.
    QTest::addColumn<QList<DisplayInfo>>("screens");
    QTest::addColumn<QStringList>("events");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("a drag captures its rectangle")
        << twoAt1x() << QStringList{u"press 100 100"_s, u"drag 300 250"_s, u"release 300 250"_s}
        << QStringList{u"capture {{100, 100}, {200, 150}} on 1: 200 x 150 px"_s, u"crosshair 1 {300, 250}"_s};
    QTest::newRow("a click without a drag cancels")
        << at1x15x2x() << QStringList{u"press 2500 700"_s, u"release 2500 700"_s}
        << QStringList{u"cancelSelection"_s, u"crosshair 2 {580, 340}"_s};
    QTest::newRow("a drag along one axis only cancels")
        << twoAt1x() << QStringList{u"press 100 100"_s, u"drag 300 100"_s, u"release 300 100"_s}
        << QStringList{u"cancelSelection"_s, u"crosshair 1 {300, 100}"_s};
    QTest::newRow("moves follow the pointer across displays; a drag without a press selects nothing")
        << twoAt1x() << QStringList{u"move 50 50"_s, u"move 2000 60"_s, u"drag 2100 70"_s, u"release 2100 70"_s}
        << QStringList{u"cancelSelection"_s, u"crosshair 1 {50, 50}"_s, u"crosshair 2 {80, 60}"_s};
    QTest::newRow("a drag onto the display on the right stops at the shared edge")
        << twoAt1x() << QStringList{u"press 1800 500"_s, u"drag 2100 300"_s, u"release 2100 300"_s}
        << QStringList{u"capture {{1800, 300}, {120, 200}} on 1: 120 x 200 px"_s, u"crosshair 1 {1920, 300}"_s};
    QTest::newRow("a drag from the display on the right onto the left one stays on the right")
        << twoAt1x() << QStringList{u"press 2100 300"_s, u"drag 1800 500"_s, u"release 1800 500"_s}
        << QStringList{u"capture {{0, 300}, {180, 200}} on 2: 180 x 200 px"_s, u"crosshair 2 {0, 500}"_s};
    QTest::newRow("a press on the shared edge belongs to the display that received it")
        << twoAt1x() << QStringList{u"press 1920 500"_s, u"drag 2100 300"_s, u"release 2100 300"_s}
        << QStringList{u"capture {{0, 300}, {180, 200}} on 2: 180 x 200 px"_s, u"crosshair 2 {180, 300}"_s};
    QTest::newRow("a drag from a 2x display over the gap onto a 1x one stops at the 2x display's edge")
        << at2xBeside1x() << QStringList{u"press 900 500"_s, u"drag 1500 300"_s, u"drag 2000 0"_s, u"release 2000 0"_s}
        << QStringList{u"capture {{900, 0}, {60, 500}} on 1: 120 x 1000 px"_s, u"crosshair 1 {960, 0}"_s};
    QTest::newRow("a drag from the 2x display across the others stops at its corner")
        << at1x15x2x() << QStringList{u"press 3900 600"_s, u"drag 3000 700"_s, u"drag 100 100"_s, u"release 100 100"_s}
        << QStringList{u"capture {{0, 0}, {60, 60}} on 3: 120 x 120 px"_s, u"crosshair 3 {0, 0}"_s};
    QTest::newRow("a drag from the 1.5x display past the 2x one is measured at 1.5x")
        << at1x15x2x() << QStringList{u"press 2000 400"_s, u"drag 4500 1000"_s, u"release 4500 1000"_s}
        << QStringList{u"capture {{80, 40}, {1200, 600}} on 2: 1800 x 900 px"_s, u"crosshair 2 {1280, 640}"_s};
}

void SelectionViewTest::pointerRouting()
{
    QFETCH(QList<DisplayInfo>, screens);
    QFETCH(QStringList, events);
    QFETCH(QStringList, expected);
    using Kind = SelectionPointerRouter::Kind;
    // Once as X delivers under our grab (to the overlay under the pointer), once as a window system with
    // implicit grabs does (a drag and its release to the window it began in): the routing is the same.
    for (const bool implicitGrab : {false, true}) {
        OverlayFixture f(screens);
        const SelectionView *pressed = nullptr;
        for (const QString &event : events) {
            const QStringList parts = event.split(u' ');
            const QString kind = parts.first();
            const QPointF p(parts.at(1).toDouble(), parts.at(2).toDouble());
            const SelectionView *receiver = implicitGrab && pressed && kind != u"move"_s ? pressed : &f.viewUnder(p);
            if (kind == u"press"_s)
                pressed = receiver;
            const Kind routed = kind == u"press"_s ? Kind::Press : kind == u"release"_s ? Kind::Release : Kind::Move;
            f.pool.router().route(*receiver, routed, p, kind == u"press"_s || kind == u"drag"_s);
        }
        QStringList outcome;
        for (const QString &call : f.delegate.calls) {
            if (!call.startsWith(u"capture"_s)) {
                outcome.append(call);
                continue;
            }
            int owner = 0;
            while (f.pool.at(owner).window.get() != f.delegate.lastWindow)
                ++owner;
            const capturegeometry::PixelSize size = f.viewAt(owner).selectionPixelSize(f.viewAt(owner).currentRect());
            outcome.append(call % u" on "_s % trace::displayID(f.delegate.lastWindow->screen()->id)
                           % u": %1 x %2 px"_s.arg(size.width).arg(size.height));
        }
        for (int i = 0; i < f.pool.size(); ++i) {
            if (const std::optional<QPointF> point = f.viewAt(i).currentMousePoint())
                outcome.append(u"crosshair "_s % trace::displayID(screens.at(i).id) % u' ' % trace::point(*point));
        }
        outcome.removeIf([](const QString &call) { return call.startsWith(u"cursorDid"_s); });
        QCOMPARE(outcome, expected);
        QCOMPARE(f.cursor.hiddenLevel(), 0);
    }
}

void SelectionViewTest::keys_data()
{
    QTest::addColumn<bool>("midDrag");
    QTest::addColumn<int>("keyCode");
    QTest::addColumn<bool>("handled");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("Escape cancels") << false << 53 << true << QStringList{u"cancelSelection"_s};
    QTest::newRow("Escape during a drag shows the pointer and cancels")
        << true << 53 << true << QStringList{u"cursorDidHide"_s, u"cursorDidRestore"_s, u"cancelSelection"_s};
    QTest::newRow("Space takes the window under the pointer")
        << false << 49 << true << QStringList{u"captureWindowUnderCursor"_s};
    QTest::newRow("other keys, Return among them, are left to the window even during a drag")
        << true << 36 << false << QStringList{u"cursorDidHide"_s};
}

void SelectionViewTest::keys()
{
    QFETCH(bool, midDrag);
    QFETCH(int, keyCode);
    QFETCH(bool, handled);
    QFETCH(QStringList, expected);
    ViewFixture f;
    if (midDrag) {
        f.view.mouseDown(QPointF(10, 10));
        f.view.mouseDragged(QPointF(200, 200));
    }
    QCOMPARE(f.view.keyDown(keyCode), handled);
    QCOMPARE(f.delegate.calls, expected);
    if (keyCode == SelectionView::escapeKeyCode) {
        QVERIFY(f.view.currentRect().isEmpty());
        QVERIFY(!f.view.startPoint());
        QCOMPARE(f.cursor.hiddenLevel(), 0);
    }
}

void SelectionViewTest::cursorIsHiddenOncePerViewAndPresentationStartsClean()
{
    ViewFixture f;
    f.view.mouseDown(QPointF(10, 10));
    f.view.mouseDown(QPointF(20, 20));
    f.view.mouseDragged(QPointF(200, 200));
    QCOMPARE(f.cursor.hideCount, 1);
    f.view.resetInteractionState(false);
    QCOMPARE(f.cursor.hiddenLevel(), 1);
    const int redraws = f.window.needsDisplayCount;
    f.view.resetForPresentation();
    QCOMPARE(f.cursor.hiddenLevel(), 0);
    QVERIFY(f.view.currentRect().isEmpty());
    QVERIFY(!f.view.currentMousePoint());
    QVERIFY(f.window.needsDisplayCount > redraws);

    // Leaving the window shows the pointer again.
    f.view.mouseDown(QPointF(10, 10));
    f.view.setWindow(nullptr);
    QCOMPARE(f.cursor.hiddenLevel(), 0);
    f.view.cancelOperation();
    QCOMPARE(f.cursor.hideCount, 2);
    QCOMPARE(f.cursor.unhideCount, 2);
}

void SelectionViewTest::labelMeasuresPixelsOfTheViewsDisplay()
{
    ViewFixture f;
    // A window on no display measures by the main display's scale, and by 1 without one.
    const Rect selection(0, 0, 100, 50.25);
    f.window.screenOverride = std::optional<DisplayInfo>();
    f.displays.main = FakeDisplayProvider::display(8, Rect(0, 0, 500, 500), 3);
    QCOMPARE(f.view.selectionPixelSize(selection), (capturegeometry::PixelSize{300, 151}));
    f.displays.main.reset();
    QCOMPARE(f.view.selectionPixelSize(selection), (capturegeometry::PixelSize{100, 51}));
}

void SelectionViewTest::frozenImageIsDimmedAndUpright()
{
    ViewFixture f(QSizeF(400, 300));
    // Without a frozen image the live desktop behind the window is dimmed.
    QCOMPARE_COLOR(at(render(f.view, QColor(200, 200, 200)), 200, 150), QColor(150, 150, 150));
    // A 2x screen image: red in its top half, blue in its bottom half.
    QImage frozen(800, 600, QImage::Format_RGB32);
    frozen.fill(QColor(0, 0, 200));
    QPainter(&frozen).fillRect(0, 0, 800, 300, QColor(200, 0, 0));
    f.view.setFrozenBackgroundImage(frozen);

    const QImage canvas = render(f.view, Qt::magenta);
    QCOMPARE_COLOR(at(canvas, 50, 250), over(QColor(200, 0, 0), dimming));
    QCOMPARE_COLOR(at(canvas, 350, 40), over(QColor(0, 0, 200), dimming));
    QCOMPARE_COLOR(at(canvas, 399, 299), over(QColor(200, 0, 0), dimming));
}

void SelectionViewTest::selectionFillOutlineAndLabel()
{
    ViewFixture f(QSizeF(400, 300));
    const QColor screen(200, 100, 40);
    f.showFrozenScreen(screen);
    f.view.mouseDown(QPointF(100, 150));
    f.view.mouseDragged(QPointF(250, 250));
    const Rect selection(100, 150, 150, 100);
    QCOMPARE(f.view.currentRect(), selection);

    const QImage canvas = render(f.view);
    const QColor dimmed = over(screen, dimming);
    QCOMPARE_COLOR(at(canvas, 150, 200), over(dimmed, selectionFill));
    // The white outline is two points wide, centred on the edge.
    QCOMPARE_COLOR(at(canvas, 99, 200), Qt::white);
    QCOMPARE_COLOR(at(canvas, 100, 200), Qt::white);
    QCOMPARE_COLOR(at(canvas, 97, 200), dimmed);

    // "300 x 200 px" on this 2x display, in its box below-right of the selection.
    const QString text = selectionpainting::sizeLabelText(f.view.selectionPixelSize(selection));
    QCOMPARE(text, u"300 x 200 px"_s);
    const QFont font = selectionpainting::sizeLabelFont();
    const QSizeF textSize = selectionpainting::textSize(text, font);
    const QSizeF labelSize(std::ceil(textSize.width() + 16), std::ceil(textSize.height() + 10));
    const Rect label = f.view.sizeLabelRect(selection, labelSize, 8);
    QCOMPARE(label.origin(), QPointF(258, 150 - labelSize.height() - 8));
    const QColor box = over(dimmed, labelFill);
    QCOMPARE_COLOR(at(canvas, label.minX() + 3, label.midY()), box);
    QCOMPARE_COLOR(at(canvas, label.maxX() - 3, label.minY() + 2), box);
    QCOMPARE_COLOR(at(canvas, label.minX() - 3, label.midY()), dimmed);
    QCOMPARE_COLOR(at(canvas, label.midX(), label.maxY() + 2), dimmed);
    // Some text is drawn inside the box, in white.
    bool hasText = false;
    for (int x = int(label.minX()) + 8; x < int(label.maxX()) - 8 && !hasText; ++x) {
        for (int y = int(label.minY()) + 5; y < int(label.maxY()) - 5 && !hasText; ++y)
            hasText = at(canvas, x, y).lightness() > 200;
    }
    QVERIFY(hasText);
}

void SelectionViewTest::crosshairIsDashed()
{
    ViewFixture f(QSizeF(400, 300));
    const QColor screen(200, 100, 40);
    f.showFrozenScreen(screen);
    f.view.mouseMoved(QPointF(200.5, 120.5));

    const QImage canvas = render(f.view);
    const QColor dimmed = over(screen, dimming);
    const QColor line = over(dimmed, crosshair);
    // Six points on, six off, starting at the bottom and at the left.
    QCOMPARE_COLOR(at(canvas, 200, 3), line);
    QCOMPARE_COLOR(at(canvas, 200, 9), dimmed);
    QCOMPARE_COLOR(at(canvas, 200, 15), line);
    QCOMPARE_COLOR(at(canvas, 3, 120), line);
    QCOMPARE_COLOR(at(canvas, 9, 120), dimmed);
    // One point wide.
    QCOMPARE_COLOR(at(canvas, 199, 3), dimmed);
    QCOMPARE_COLOR(at(canvas, 201, 3), dimmed);
    // No selection yet, so no label or fill anywhere off the lines.
    QCOMPARE_COLOR(at(canvas, 250, 60), dimmed);

    f.view.resetForPresentation();
    QCOMPARE_COLOR(at(render(f.view), 200, 3), dimmed);
}

QTEST_MAIN(SelectionViewTest)
#include "tst_selectionview.moc"
