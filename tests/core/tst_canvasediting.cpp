#include "TestPrinters.h"
#include "helpers/EditorViewFixture.h"

#include "editor/SystemColors.h"

#include <QSignalSpy>
#include <QTest>

#include <functional>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(EditorTool)
using Gesture = std::function<void(EditorViewFixture &f)>;
Q_DECLARE_METATYPE(Gesture)

namespace {

// A drag in edit mode, through image points.
Gesture dragging(const QList<QPointF> &path)
{
    return [path](EditorViewFixture &f) {
        QList<QPointF> inView;
        for (QPointF point : path)
            inView.append(f.at(point.x(), point.y()));
        f.drag(inView);
    };
}

// A drag of the tool in draw mode, through image points.
Gesture drawing(EditorTool tool, const QList<QPointF> &path)
{
    return [tool, path](EditorViewFixture &f) {
        f.model->setSelectedTool(tool);
        f.interaction().setDrawMode(true);
        dragging(path)(f);
    };
}

Gesture restyling(const std::function<void(EditorToolbar &toolbar, const Overlay &selected)> &control)
{
    return [control](EditorViewFixture &f) { control(f.view.toolbar(), *f.interaction().selectedOverlay()); };
}

} // namespace

class CanvasEditingTest : public QObject
{
    Q_OBJECT

private slots:
    void everyEditIsOneUndoStep_data();
    void everyEditIsOneUndoStep();
    void pressNearAnUnselectedOverlay_data();
    void pressNearAnUnselectedOverlay();
    void moveFollowsZoomAndPixelRatio();
    void cornerSearchIsLoggedAndTheFirstNearCornerWins();
    void freehandNeverResizes();
    void topmostOverlayTakesThePress();
    void handlesOfTheSelectedOverlayReachBeyondIt();
    void overlayUndoneDuringTheDragIsLeftAlone();
    void resize_data();
    void resize();
    void tapFocusesTextBoxesAndDeletingOrDrawingEndsTheFocus();
};

void CanvasEditingTest::everyEditIsOneUndoStep_data()
{
    QTest::addColumn<Gesture>("edit");
    QTest::addColumn<int>("steps");
    // The document: a rectangle from (100, 100) to (300, 200), and a text box of size 160 at (100, 220),
    // selected, in edit mode.
    QTest::newRow("drawing a rectangle") << drawing(EditorTool::Rectangle, {{10, 10}, {30, 20}, {50, 40}}) << 1;
    QTest::newRow("drawing a freehand stroke") << drawing(EditorTool::Freehand, {{10, 10}, {30, 20}, {50, 40}}) << 1;
    QTest::newRow("a click of the text tool") << drawing(EditorTool::Text, {{10, 10}}) << 1;
    QTest::newRow("moving, over several moves") << dragging({{200, 150}, {210, 140}, {230, 130}}) << 1;
    QTest::newRow("resizing, over several moves") << dragging({{300, 200}, {320, 210}, {340, 220}}) << 1;
    QTest::newRow("a drag back to its press") << dragging({{200, 150}, {230, 160}, {200, 150}}) << 1;
    QTest::newRow("moving the selected box") << dragging({{230, 256}, {240, 250}, {250, 245}}) << 1;
    QTest::newRow("deleting the selection") << Gesture([](EditorViewFixture &f) { f.view.toolbar().deleteSelected(); }) << 1;
    QTest::newRow("another colour") << restyling([](EditorToolbar &t, const Overlay &) { t.setSelectedColor(systemcolors::systemBlue()); }) << 1;
    QTest::newRow("another fill") << restyling([](EditorToolbar &t, const Overlay &) { t.setSelectedTextFillColor(systemcolors::systemYellow()); }) << 1;
    QTest::newRow("another opacity") << restyling([](EditorToolbar &t, const Overlay &) { t.setSelectedTextFillOpacity(0.4); }) << 1;
    QTest::newRow("another font") << restyling([](EditorToolbar &t, const Overlay &) { t.setSelectedFontFamily(u"Serif"_s); }) << 1;
    QTest::newRow("another size") << restyling([](EditorToolbar &t, const Overlay &) { t.setSelectedFontSize(24); }) << 1;
    QTest::newRow("typing in the box") << restyling([](EditorToolbar &t, const Overlay &o) { t.setText(o.id, u"注意"_s); }) << 1;

    QTest::newRow("a tap") << dragging({{200, 150}}) << 0;
    QTest::newRow("a cancelled drawing") << Gesture([](EditorViewFixture &f) {
        f.interaction().setDrawMode(true);
        f.view.pointerPressed(f.at(10, 10));
        f.view.pointerMoved(f.at(50, 50));
        f.view.pointerCancelled();
        f.view.pointerReleased(f.at(50, 50));
    }) << 0;
    QTest::newRow("the colour in use") << restyling([](EditorToolbar &t, const Overlay &o) { t.setSelectedColor(o.color); }) << 0;
    QTest::newRow("the fill in use") << restyling([](EditorToolbar &t, const Overlay &o) { t.setSelectedTextFillColor(o.textFillColor); }) << 0;
    QTest::newRow("the opacity in use") << restyling([](EditorToolbar &t, const Overlay &) { t.setSelectedTextFillOpacity(1.04); }) << 0;
    QTest::newRow("the font in use") << restyling([](EditorToolbar &t, const Overlay &o) { t.setSelectedFontFamily(o.fontFamily); }) << 0;
    QTest::newRow("a size clamped to the one in use") << restyling([](EditorToolbar &t, const Overlay &) { t.setSelectedFontSize(400); }) << 0;
    QTest::newRow("the text it has") << restyling([](EditorToolbar &t, const Overlay &o) { t.setText(o.id, o.text); }) << 0;
    QTest::newRow("text of a box that is gone") << restyling([](EditorToolbar &t, const Overlay &) { t.setText(QUuid::createUuid(), u"lost"_s); }) << 0;
}

void CanvasEditingTest::everyEditIsOneUndoStep()
{
    QFETCH(Gesture, edit);
    QFETCH(int, steps);
    EditorViewFixture f;
    f.model->setSelectedTextFontSize(160);
    f.add(EditorTool::Rectangle, {100, 100}, {300, 200});
    f.add(EditorTool::Text, {100, 220}, {100, 220});
    f.scheduler.runUntilIdle();
    const QList<Overlay> before = f.model->overlays();
    const qsizetype history = f.undoSteps();
    QSignalSpy announced(f.model.get(), &ImageEditorModel::changed);

    edit(f);
    QCOMPARE(f.undoSteps() - history, steps);
    // The document is announced once per edit, not per pointer move.
    const auto changesOfTheDocument = std::count_if(announced.cbegin(), announced.cend(), [](const QList<QVariant> &args) {
        return args.first().value<ImageEditorModel::Changes>().testFlag(ImageEditorModel::Change::Overlays);
    });
    QCOMPARE(changesOfTheDocument, steps);
    if (steps == 0) {
        QCOMPARE(f.model->overlays(), before);
        return;
    }
    const QList<Overlay> after = f.model->overlays();
    f.view.toolbar().undo();
    QCOMPARE(f.model->overlays(), before);
    f.view.toolbar().redo();
    QCOMPARE(f.model->overlays(), after);
}

void CanvasEditingTest::pressNearAnUnselectedOverlay_data()
{
    QTest::addColumn<EditorTool>("tool");
    QTest::addColumn<bool>("moves");
    QTest::newRow("rectangle edge, 8 outside") << EditorTool::Rectangle << true;
    QTest::newRow("circle, 8 outside") << EditorTool::Circle << true;
    QTest::newRow("arrow, outside its box") << EditorTool::Arrow << false;
    QTest::newRow("text box, outside") << EditorTool::Text << false;
    QTest::newRow("mosaic, outside") << EditorTool::Mosaic << false;
}

void CanvasEditingTest::pressNearAnUnselectedOverlay()
{
    QFETCH(EditorTool, tool);
    QFETCH(bool, moves);
    EditorViewFixture f;
    const Overlay overlay = f.place(tool, {100, 100}, {300, 250});
    f.editMode();
    // 8 image points left of the left edge, more than 50 from every corner.
    f.drag({f.at(92, 160), f.at(102, 150)});

    const Overlay after = f.model->overlays().first();
    QCOMPARE(after.startPoint, overlay.startPoint + (moves ? QPointF(10, -10) : QPointF()));
    QCOMPARE(after.endPoint, overlay.endPoint + (moves ? QPointF(10, -10) : QPointF()));
    QCOMPARE(f.interaction().selectedOverlayID(), moves ? std::optional(overlay.id) : std::nullopt);
    QCOMPARE(f.undoSteps(), moves ? 2 : 1);
}

void CanvasEditingTest::moveFollowsZoomAndPixelRatio()
{
    EditorViewFixture f;
    const Overlay overlay = f.add(EditorTool::Rectangle, {100, 100}, {300, 200});
    f.editMode();
    f.view.viewport().setZoomScale(2);
    const QPointF press = f.at(200, 150);
    // 100 view points right and down at zoom 2: 50 image points right, 50 down (y up).
    f.drag({press, press + QPointF(30, 70), press + QPointF(60, 80), press + QPointF(100, 100)});
    const Overlay moved = f.model->overlays().first();
    QCOMPARE(moved.startPoint, QPointF(150, 50));
    QCOMPARE(moved.endPoint, QPointF(350, 150));
    QCOMPARE(moved.id, overlay.id);
    f.model->undoLastAction();

    // The same pixels from a HiDPI display: 100 view points at zoom 2 are 50 points, 100 pixels.
    QImage hiDpi = EditorViewFixture::picture();
    hiDpi.setDevicePixelRatio(2);
    f.model->setImage(hiDpi);
    const QPointF hiDpiPress = f.at(200, 150);
    f.drag({hiDpiPress, hiDpiPress + QPointF(100, 100)});
    QCOMPARE(f.model->overlays().first().startPoint, QPointF(200, 0));
    QCOMPARE(f.model->overlays().first().endPoint, QPointF(400, 100));
}

void CanvasEditingTest::cornerSearchIsLoggedAndTheFirstNearCornerWins()
{
    EditorViewFixture f;
    // 20 × 20 image points: from its centre every corner is within 50 view points.
    f.add(EditorTool::Rectangle, {100, 100}, {120, 120});
    f.editMode();
    f.systemLog.clear();
    f.drag({f.at(110, 110), f.at(100, 130)});

    // On screen the box spans x 600…620 and y 680…700; the press is at (610, 690).
    QCOMPARE(f.systemLog.messages(), (QStringList{
        u"Vistrel: rect=(600.0,680.0,20.0,20.0), touch=(610.0,690.0)"_s,
        u"Vistrel: corner 0 at (600.0,680.0) distance=14.1"_s,
        u"Vistrel: dragStart foundCorner=0"_s,
        u"Vistrel: resizing corner=0"_s,
        u"Vistrel: resizeOverlay called corner=0 point=(100.0,130.0)"_s,
    }));
    // The top-left corner followed the pointer; the bottom-right stayed.
    QCOMPARE(f.model->overlays().first().rect(), Rect(100, 100, 20, 30));
    QCOMPARE(f.undoSteps(), 2);

    f.systemLog.clear();
    f.drag({f.at(60, 60), f.at(61, 60)});
    QCOMPARE(f.systemLog.messages().size(), 0); // nothing there
    f.drag({f.at(115, 105), f.at(116, 105)});
    QCOMPARE(f.systemLog.messages().at(2), u"Vistrel: dragStart (already selected) foundCorner=0"_s);
}

void CanvasEditingTest::freehandNeverResizes()
{
    EditorViewFixture f;
    f.model->setSelectedTool(EditorTool::Freehand);
    f.drag({f.at(100, 100), f.at(150, 100), f.at(200, 150)});
    f.editMode();
    const Overlay stroke = f.model->overlays().first();
    f.systemLog.clear();
    f.drag({f.at(100, 100), f.at(110, 90)});
    const Overlay moved = f.model->overlays().first();
    QCOMPARE(moved.points.list(), (QList<QPointF>{{110, 90}, {160, 90}, {210, 140}}));
    QCOMPARE(moved.startPoint, stroke.startPoint + QPointF(10, -10));
    QVERIFY(f.systemLog.messages().contains(u"Vistrel: dragStart foundCorner=0"_s));
    QVERIFY(f.systemLog.messages().contains(u"Vistrel: moving (no corner detected)"_s));
}

void CanvasEditingTest::topmostOverlayTakesThePress()
{
    EditorViewFixture f;
    const Overlay lower = f.add(EditorTool::Rectangle, {0, 0}, {200, 200});
    const Overlay upper = f.add(EditorTool::Mosaic, {100, 100}, {300, 250});
    f.editMode();
    f.click(f.at(150, 150));
    QCOMPARE(f.interaction().selectedOverlayID(), std::optional(upper.id));
    f.click(f.at(50, 50));
    QCOMPARE(f.interaction().selectedOverlayID(), std::optional(lower.id));
    f.click(f.at(350, 280)); // nothing there
    QCOMPARE(f.interaction().selectedOverlayID(), std::optional(lower.id));
    // The selected overlay lies beneath another: the upper one still takes the press.
    f.click(f.at(150, 150));
    QCOMPARE(f.interaction().selectedOverlayID(), std::optional(upper.id));
}

void CanvasEditingTest::handlesOfTheSelectedOverlayReachBeyondIt()
{
    EditorViewFixture f;
    const Overlay arrow = f.add(EditorTool::Arrow, {100, 100}, {200, 150});
    f.editMode();
    const QPointF outside = f.at(200, 150) + QPointF(5, -3);
    f.click(outside);
    QVERIFY(!f.interaction().selectedOverlayID());
    f.click(f.at(150, 120));
    QCOMPARE(f.interaction().selectedOverlayID(), std::optional(arrow.id));
    // Dragging the handle moves the nearer end of the arrow.
    f.drag({outside, outside + QPointF(20, 0)});
    QCOMPARE(f.model->overlays().first().endPoint, QPointF(225, 153));
    QCOMPARE(f.model->overlays().first().startPoint, QPointF(100, 100));
}

void CanvasEditingTest::overlayUndoneDuringTheDragIsLeftAlone()
{
    EditorViewFixture f;
    f.add(EditorTool::Rectangle, {100, 100}, {300, 200});
    f.editMode();
    f.view.pointerPressed(f.at(200, 150));
    f.view.pointerMoved(f.at(210, 150));
    f.model->undoLastAction();
    f.model->undoLastAction();
    QVERIFY(f.model->overlays().isEmpty());
    f.view.pointerMoved(f.at(220, 150));
    f.view.pointerReleased(f.at(220, 150));
    QVERIFY(f.model->overlays().isEmpty());
    f.model->redoLastAction();
    f.model->redoLastAction();
    QCOMPARE(f.model->overlays().size(), 1);
    QVERIFY(!f.model->canRedo());
}

void CanvasEditingTest::resize_data()
{
    QTest::addColumn<EditorTool>("tool");
    QTest::addColumn<int>("corner");
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<QPointF>("start");
    QTest::addColumn<QPointF>("end");
    // The overlay was drawn from (50, 40) to (10, 20): not normalised.
    QTest::newRow("top-left keeps bottom-right") << EditorTool::Rectangle << 0 << QPointF(0, 60) << QPointF(0, 20) << QPointF(50, 60);
    QTest::newRow("top-right keeps bottom-left") << EditorTool::Circle << 1 << QPointF(70, 50) << QPointF(10, 20) << QPointF(70, 50);
    QTest::newRow("bottom-right keeps top-left") << EditorTool::Mosaic << 2 << QPointF(70, 0) << QPointF(10, 0) << QPointF(70, 40);
    QTest::newRow("bottom-left keeps top-right") << EditorTool::Text << 3 << QPointF(0, 0) << QPointF(0, 0) << QPointF(50, 40);
    QTest::newRow("across the fixed corner") << EditorTool::Rectangle << 0 << QPointF(80, 0) << QPointF(50, 0) << QPointF(80, 20);
    QTest::newRow("unknown corner keeps bottom-right") << EditorTool::Rectangle << 7 << QPointF(0, 60) << QPointF(0, 20) << QPointF(50, 60);
    QTest::newRow("arrow end is nearer") << EditorTool::Arrow << 0 << QPointF(5, 25) << QPointF(50, 40) << QPointF(5, 25);
    QTest::newRow("arrow start is nearer") << EditorTool::Arrow << 0 << QPointF(60, 45) << QPointF(60, 45) << QPointF(10, 20);
    QTest::newRow("arrow tie moves the end") << EditorTool::Arrow << 0 << QPointF(30, 30) << QPointF(50, 40) << QPointF(30, 30);
}

void CanvasEditingTest::resize()
{
    QFETCH(EditorTool, tool);
    QFETCH(int, corner);
    QFETCH(QPointF, point);
    QFETCH(QPointF, start);
    QFETCH(QPointF, end);
    EditorViewFixture f;
    const Overlay overlay = f.place(tool, {50, 40}, {10, 20});
    f.interaction().resizeOverlay(overlay, corner, point);
    QCOMPARE(f.model->overlays().first().startPoint, start);
    QCOMPARE(f.model->overlays().first().endPoint, end);
    QCOMPARE(f.systemLog.messages(), QStringList{QString::asprintf("Vistrel: resizeOverlay called corner=%d point=(%.1f,%.1f)", corner, point.x(), point.y())});
}

void CanvasEditingTest::tapFocusesTextBoxesAndDeletingOrDrawingEndsTheFocus()
{
    EditorViewFixture f;
    const Overlay box = f.add(EditorTool::Text, {100, 100}, {100, 100});
    const Overlay frame = f.add(EditorTool::Rectangle, {0, 0}, {50, 50});
    f.editMode();
    f.click(f.at(200, 130));
    f.scheduler.runUntilIdle();
    QCOMPARE(f.interaction().focusedTextOverlayID(), std::optional(box.id));
    f.interaction().setDrawMode(true);
    QVERIFY(!f.interaction().focusedTextOverlayID());

    f.editMode();
    f.click(f.at(25, 25));
    QCOMPARE(f.interaction().selectedOverlayID(), std::optional(frame.id));
    f.scheduler.runUntilIdle();
    QVERIFY(!f.interaction().focusedTextOverlayID());

    f.click(f.at(200, 130));
    f.scheduler.runUntilIdle();
    f.interaction().deleteSelectedOverlay();
    QCOMPARE(f.model->overlays(), QList{frame});
    QVERIFY(!f.interaction().selectedOverlayID());
    QVERIFY(!f.interaction().focusedTextOverlayID());
}

QTEST_MAIN(CanvasEditingTest)
#include "tst_canvasediting.moc"
