#include "FakeKeyValueStore.h"

#include "editor/EditorTool.h"
#include "editor/ImageEditorModel.h"
#include "editor/Overlay.h"

#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QImage smallImage()
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::gray);
    return image;
}

Overlay rectangleAt(double x)
{
    return Overlay(EditorTool::Rectangle, {x, 0}, {x + 10, 10}, Qt::red, QString(), Qt::cyan);
}

// The x of each overlay's start point: enough to tell the states of these tests apart.
QList<double> starts(const QList<Overlay> &overlays)
{
    QList<double> xs;
    for (const Overlay &overlay : overlays)
        xs.append(overlay.startPoint.x());
    return xs;
}

} // namespace

class EditorModelTest : public QObject
{
    Q_OBJECT

private slots:
    void toolFromText_data();
    void toolFromText();
    void toolOrderAndLabels();
    void overlayDefaults();
    void containsUsesPaddedHalfOpenBox_data();
    void containsUsesPaddedHalfOpenBox();
    void freshModelHasNothingToUndo();
    void historyIsBoundedAndTrimmedFromTheFront();
    void undoRedoRoundTrip();
    void recordAfterUndoForfeitsRedo();
    void flagsAreAnnouncedOnEveryOperation();
    void undoLeavesStylesAlone();
    void updateOverlaySetsOnlyWhatIsGiven();
    void moveOverlayShiftsFreehandPoints();
    void unknownIdsChangeNothing();
    void removeOverlayRemovesByIdentity();
    void newOverlaysTakeTheSavedFillColour();
};

void EditorModelTest::toolFromText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<std::optional<EditorTool>>("expected");
    QTest::newRow("rectangle label") << u"四角枠"_s << std::optional(EditorTool::Rectangle);
    QTest::newRow("circle label") << u"丸枠"_s << std::optional(EditorTool::Circle);
    QTest::newRow("arrow label") << u"矢印"_s << std::optional(EditorTool::Arrow);
    QTest::newRow("freehand label") << u"フリーハンド"_s << std::optional(EditorTool::Freehand);
    QTest::newRow("mosaic label") << u"モザイク"_s << std::optional(EditorTool::Mosaic);
    QTest::newRow("text label") << u"文字入力"_s << std::optional(EditorTool::Text);
    QTest::newRow("english case name is refused") << u"mosaic"_s << std::optional<EditorTool>();
    QTest::newRow("label with a blank is refused") << u"モザイク "_s << std::optional<EditorTool>();
    QTest::newRow("half-width katakana is refused") << u"ﾓｻﾞｲｸ"_s << std::optional<EditorTool>();
    QTest::newRow("empty is refused") << QString() << std::optional<EditorTool>();
}

void EditorModelTest::toolFromText()
{
    QFETCH(QString, text);
    QFETCH(std::optional<EditorTool>, expected);
    QCOMPARE(editortool::fromRawValue(text), expected);
}

void EditorModelTest::toolOrderAndLabels()
{
    QStringList labels;
    for (EditorTool tool : editortool::allCases()) {
        labels.append(editortool::rawValue(tool));
        QCOMPARE(editortool::fromRawValue(editortool::rawValue(tool)), std::optional(tool));
    }
    QCOMPARE(labels, (QStringList{u"四角枠"_s, u"丸枠"_s, u"矢印"_s, u"フリーハンド"_s, u"モザイク"_s, u"文字入力"_s}));
}

void EditorModelTest::overlayDefaults()
{
    const Overlay a(EditorTool::Text, {1, 2}, {3, 4}, Qt::red, u"x"_s, Qt::cyan);
    const Overlay b(EditorTool::Text, {1, 2}, {3, 4}, Qt::red, u"x"_s, Qt::cyan);
    QCOMPARE(a.fontFamily, u"Helvetica"_s);
    QCOMPARE(a.fontSize, 20.0);
    QVERIFY(a.points.isEmpty());
    QVERIFY(!a.id.isNull());
    QVERIFY(a.id != b.id);
}

void EditorModelTest::containsUsesPaddedHalfOpenBox_data()
{
    QTest::addColumn<QPointF>("point");
    QTest::addColumn<double>("padding");
    QTest::addColumn<bool>("inside");
    // The overlay spans (10, 20) to (30, 40), drawn from its top-right corner.
    QTest::newRow("minimum corner") << QPointF(10, 20) << 0.0 << true;
    QTest::newRow("maximum x edge") << QPointF(30, 30) << 0.0 << false;
    QTest::newRow("maximum y edge") << QPointF(20, 40) << 0.0 << false;
    QTest::newRow("outside, within padding") << QPointF(7, 43) << 4.0 << true;
    QTest::newRow("padded maximum edge") << QPointF(34, 30) << 4.0 << false;
    QTest::newRow("beyond padding") << QPointF(5, 30) << 4.0 << false;
}

void EditorModelTest::containsUsesPaddedHalfOpenBox()
{
    QFETCH(QPointF, point);
    QFETCH(double, padding);
    QFETCH(bool, inside);
    const Overlay overlay(EditorTool::Rectangle, {30, 40}, {10, 20}, Qt::red, QString(), Qt::cyan);
    QCOMPARE(overlay.contains(point, padding), inside);
}

void EditorModelTest::freshModelHasNothingToUndo()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    model.appendOverlay(rectangleAt(1));
    QVERIFY(!model.canUndo());
    QVERIFY(!model.canRedo());
    QSignalSpy undoSpy(&model, &ImageEditorModel::canUndoChanged);
    model.undoLastAction();
    model.redoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{1});
    QCOMPARE(undoSpy.count(), 0);
}

void EditorModelTest::historyIsBoundedAndTrimmedFromTheFront()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    // 101 changes, each recorded first: the snapshot of the empty document falls off the front.
    for (int i = 0; i < 101; ++i) {
        model.recordUndoSnapshot();
        model.appendOverlay(rectangleAt(i));
    }
    QCOMPARE(model.undoStack().size(), 100);
    QCOMPARE(model.undoStack().first().size(), 1);

    for (int i = 0; i < 100; ++i)
        model.undoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{0});
    QVERIFY(!model.canUndo());
    model.undoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{0});
    QCOMPARE(model.redoStack().size(), 100);
}

void EditorModelTest::undoRedoRoundTrip()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    model.recordUndoSnapshot();
    model.appendOverlay(rectangleAt(5));
    model.undoLastAction();
    QVERIFY(model.overlays().isEmpty());
    QVERIFY(!model.canUndo());
    QVERIFY(model.canRedo());
    model.redoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{5});
    QVERIFY(model.canUndo());
    QVERIFY(!model.canRedo());
}

void EditorModelTest::recordAfterUndoForfeitsRedo()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    model.recordUndoSnapshot();
    model.appendOverlay(rectangleAt(5));
    model.undoLastAction();
    QVERIFY(model.canRedo());
    model.recordUndoSnapshot();
    QVERIFY(!model.canRedo());
    QVERIFY(model.redoStack().isEmpty());
    model.redoLastAction();
    QVERIFY(model.overlays().isEmpty());
}

void EditorModelTest::flagsAreAnnouncedOnEveryOperation()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    QSignalSpy undoSpy(&model, &ImageEditorModel::canUndoChanged);
    QSignalSpy redoSpy(&model, &ImageEditorModel::canRedoChanged);
    model.recordUndoSnapshot();
    model.recordUndoSnapshot();
    QCOMPARE(undoSpy.count(), 2);
    QCOMPARE(redoSpy.count(), 2);
    model.undoLastAction();
    QCOMPARE(undoSpy.count(), 3);
    QCOMPARE(redoSpy.count(), 3);
}

void EditorModelTest::undoLeavesStylesAlone()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    model.recordUndoSnapshot();
    model.appendOverlay(rectangleAt(1));
    model.setSelectedTool(EditorTool::Mosaic);
    model.setSelectedColor(Qt::green);
    model.setSelectedTextFontSize(42);
    model.undoLastAction();
    QVERIFY(model.overlays().isEmpty());
    QCOMPARE(model.selectedTool(), EditorTool::Mosaic);
    QCOMPARE(model.selectedColor(), QColor(Qt::green));
    QCOMPARE(model.selectedTextFontSize(), 42.0);
}

void EditorModelTest::updateOverlaySetsOnlyWhatIsGiven()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    const Overlay overlay = rectangleAt(1);
    model.appendOverlay(overlay);
    model.updateOverlay(overlay.id, std::nullopt, QPointF(50, 60));
    QCOMPARE(model.overlays().first().startPoint, QPointF(1, 0));
    QCOMPARE(model.overlays().first().endPoint, QPointF(50, 60));
    model.updateOverlay(overlay.id, QPointF(-3, -4), std::nullopt);
    QCOMPARE(model.overlays().first().startPoint, QPointF(-3, -4));
    QCOMPARE(model.overlays().first().endPoint, QPointF(50, 60));
}

void EditorModelTest::moveOverlayShiftsFreehandPoints()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    Overlay stroke(EditorTool::Freehand, {1, 1}, {9, 5}, Qt::red, QString(), Qt::cyan);
    stroke.points = {{1, 1}, {4, 7}, {9, 5}};
    model.appendOverlay(stroke);
    model.appendOverlay(rectangleAt(100));
    model.recordUndoSnapshot();
    model.moveOverlay(stroke.id, QSizeF(10, -2.5));

    const Overlay moved = model.overlays().first();
    QCOMPARE(moved.startPoint, QPointF(11, -1.5));
    QCOMPARE(moved.endPoint, QPointF(19, 2.5));
    QCOMPARE(moved.points, (QList<QPointF>{{11, -1.5}, {14, 4.5}, {19, 2.5}}));
    QCOMPARE(moved.rect(), Rect(11, -1.5, 8, 6));
    QCOMPARE(model.overlays().at(1).startPoint, QPointF(100, 0));
    // The snapshot taken before the move is an independent copy.
    QCOMPARE(model.undoStack().last().first().points, stroke.points);
}

void EditorModelTest::unknownIdsChangeNothing()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    model.appendOverlay(rectangleAt(1));
    const QList<Overlay> before = model.overlays();
    QSignalSpy spy(&model, &ImageEditorModel::overlaysChanged);
    const QUuid stranger = QUuid::createUuid();
    model.updateOverlay(stranger, QPointF(5, 5), QPointF(6, 6));
    model.moveOverlay(stranger, QSizeF(5, 5));
    model.removeOverlay(stranger);
    QCOMPARE(model.indexOfOverlay(stranger), std::optional<qsizetype>());
    QCOMPARE(model.overlays(), before);
    QCOMPARE(spy.count(), 0);
}

void EditorModelTest::removeOverlayRemovesByIdentity()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    const Overlay a = rectangleAt(1);
    const Overlay b = rectangleAt(1);
    model.setOverlays({a, b, rectangleAt(3)});
    QCOMPARE(model.indexOfOverlay(b.id), std::optional<qsizetype>(1));
    model.removeOverlay(a.id);
    QCOMPARE(model.overlays().size(), 2);
    QCOMPARE(model.indexOfOverlay(a.id), std::optional<qsizetype>());
    QCOMPARE(model.indexOfOverlay(b.id), std::optional<qsizetype>(0));
}

void EditorModelTest::newOverlaysTakeTheSavedFillColour()
{
    FakeKeyValueStore store;
    ImageEditorModel model(smallImage(), store);
    store.values.insert(u"VistrelEditorTextFillColor.red"_s, 0.0);
    store.values.insert(u"VistrelEditorTextFillColor.green"_s, 0.5);
    store.values.insert(u"VistrelEditorTextFillColor.blue"_s, 1.0);
    store.values.insert(u"VistrelEditorTextFillColor.alpha"_s, 0.4);
    const Overlay overlay = model.makeOverlay(EditorTool::Text, {0, 0}, {10, 10}, Qt::red, u"テキスト"_s);
    QCOMPARE(overlay.textFillColor, QColor::fromRgbF(0, 0.5f, 1, 0.4f));
    QCOMPARE(overlay.fontFamily, u"Helvetica"_s);
    QCOMPARE(overlay.fontSize, 20.0);
}

QTEST_GUILESS_MAIN(EditorModelTest)
#include "tst_editormodel.moc"
