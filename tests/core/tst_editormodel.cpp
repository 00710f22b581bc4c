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

struct ModelFixture
{
    FakeKeyValueStore store;
    ImageEditorModel model{smallImage(), store};
};

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
    void toolLabelsRoundTripAndNothingElseIsATool();
    void containsUsesPaddedHalfOpenBox_data();
    void containsUsesPaddedHalfOpenBox();
    void undoAndRedo();
    void historyIsBoundedAndTrimmedFromTheFront();
    void moveOverlayShiftsFreehandPoints();
    void overlaysAreChangedByIdentity();
    void newOverlaysTakeTheSavedFillColour();
};

void EditorModelTest::toolLabelsRoundTripAndNothingElseIsATool()
{
    for (EditorTool tool : editortool::allCases())
        QCOMPARE(editortool::fromRawValue(editortool::rawValue(tool)), std::optional(tool));
    // English case names, stray blanks, half-width katakana.
    for (const QString &text : {u"mosaic"_s, u"モザイク "_s, u"ﾓｻﾞｲｸ"_s, QString()})
        QVERIFY2(!editortool::fromRawValue(text), qPrintable(text));
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

void EditorModelTest::undoAndRedo()
{
    ModelFixture f;
    ImageEditorModel &model = f.model;
    QSignalSpy undoSpy(&model, &ImageEditorModel::canUndoChanged);
    QSignalSpy redoSpy(&model, &ImageEditorModel::canRedoChanged);
    // Changes record nothing by themselves, and an empty history is left alone.
    model.appendOverlay(rectangleAt(1));
    model.undoLastAction();
    model.redoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{1});
    QVERIFY(!model.canUndo() && !model.canRedo());
    QCOMPARE(undoSpy.count(), 0);

    model.recordUndoSnapshot();
    model.appendOverlay(rectangleAt(5));
    model.setSelectedTool(EditorTool::Mosaic);
    model.setSelectedColor(Qt::green);
    model.undoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{1});
    QVERIFY(!model.canUndo() && model.canRedo());
    // The styles are not part of the history.
    QCOMPARE(model.selectedTool(), EditorTool::Mosaic);
    QCOMPARE(model.selectedColor(), QColor(Qt::green));
    model.redoLastAction();
    QCOMPARE(starts(model.overlays()), (QList<double>{1, 5}));
    QVERIFY(model.canUndo() && !model.canRedo());
    // Every operation announces both flags.
    QCOMPARE(undoSpy.count(), 3);
    QCOMPARE(redoSpy.count(), 3);

    // A new change after an undo forfeits the redo.
    model.undoLastAction();
    model.recordUndoSnapshot();
    QVERIFY(model.redoStack().isEmpty() && !model.canRedo());
    model.redoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{1});
}

void EditorModelTest::historyIsBoundedAndTrimmedFromTheFront()
{
    ModelFixture f;
    ImageEditorModel &model = f.model;
    // 101 changes, each recorded first: the snapshot of the empty document falls off the front.
    for (int i = 0; i < 101; ++i) {
        model.recordUndoSnapshot();
        model.appendOverlay(rectangleAt(i));
    }
    QCOMPARE(model.undoStack().size(), 100);
    QCOMPARE(model.undoStack().first().size(), 1);

    for (int i = 0; i < 101; ++i)
        model.undoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{0});
    QVERIFY(!model.canUndo());
    QCOMPARE(model.redoStack().size(), 100);
}

void EditorModelTest::moveOverlayShiftsFreehandPoints()
{
    ModelFixture f;
    Overlay stroke(EditorTool::Freehand, {1, 1}, {9, 5}, Qt::red, QString(), Qt::cyan);
    stroke.points = {{1, 1}, {4, 7}, {9, 5}};
    f.model.appendOverlay(stroke);
    f.model.appendOverlay(rectangleAt(100));
    f.model.recordUndoSnapshot();
    f.model.moveOverlay(stroke.id, QSizeF(10, -2.5));

    const Overlay moved = f.model.overlays().first();
    QCOMPARE(moved.startPoint, QPointF(11, -1.5));
    QCOMPARE(moved.endPoint, QPointF(19, 2.5));
    QCOMPARE(moved.points, (QList<QPointF>{{11, -1.5}, {14, 4.5}, {19, 2.5}}));
    QCOMPARE(moved.rect(), Rect(11, -1.5, 8, 6));
    QCOMPARE(f.model.overlays().at(1).startPoint, QPointF(100, 0));
    // The snapshot taken before the move is an independent copy.
    QCOMPARE(f.model.undoStack().last().first().points, stroke.points);
}

void EditorModelTest::overlaysAreChangedByIdentity()
{
    ModelFixture f;
    const Overlay a = rectangleAt(1);
    const Overlay b = rectangleAt(1);
    f.model.setOverlays({a, b, rectangleAt(3)});
    QCOMPARE(f.model.indexOfOverlay(b.id), std::optional<qsizetype>(1));
    // Only the points given are set.
    f.model.updateOverlay(b.id, std::nullopt, QPointF(50, 60));
    QCOMPARE(f.model.overlays().at(1).startPoint, QPointF(1, 0));
    QCOMPARE(f.model.overlays().at(1).endPoint, QPointF(50, 60));
    f.model.updateOverlay(b.id, QPointF(-3, -4), std::nullopt);
    QCOMPARE(f.model.overlays().at(1).startPoint, QPointF(-3, -4));
    QCOMPARE(f.model.overlays().at(1).endPoint, QPointF(50, 60));
    QCOMPARE(f.model.overlays().first(), a);
    f.model.removeOverlay(a.id);
    QCOMPARE(f.model.overlays().size(), 2);
    QCOMPARE(f.model.indexOfOverlay(a.id), std::optional<qsizetype>());
    QCOMPARE(f.model.indexOfOverlay(b.id), std::optional<qsizetype>(0));

    // An id that names no overlay changes nothing.
    const QList<Overlay> before = f.model.overlays();
    QSignalSpy spy(&f.model, &ImageEditorModel::overlaysChanged);
    const QUuid stranger = QUuid::createUuid();
    f.model.updateOverlay(stranger, QPointF(5, 5), QPointF(6, 6));
    f.model.moveOverlay(stranger, QSizeF(5, 5));
    f.model.removeOverlay(stranger);
    QCOMPARE(f.model.indexOfOverlay(stranger), std::optional<qsizetype>());
    QCOMPARE(f.model.overlays(), before);
    QCOMPARE(spy.count(), 0);
}

void EditorModelTest::newOverlaysTakeTheSavedFillColour()
{
    ModelFixture f;
    f.store.values.insert(u"VistrelEditorTextFillColor.red"_s, 0.0);
    f.store.values.insert(u"VistrelEditorTextFillColor.green"_s, 0.5);
    f.store.values.insert(u"VistrelEditorTextFillColor.blue"_s, 1.0);
    f.store.values.insert(u"VistrelEditorTextFillColor.alpha"_s, 0.4);
    const Overlay overlay = f.model.makeOverlay(EditorTool::Text, {0, 0}, {10, 10}, Qt::red, u"テキスト"_s);
    QCOMPARE(overlay.textFillColor, QColor::fromRgbF(0, 0.5f, 1, 0.4f));
    QCOMPARE(overlay.fontFamily, u"Helvetica"_s);
    QCOMPARE(overlay.fontSize, 20.0);
    QVERIFY(overlay.points.isEmpty());
    QVERIFY(overlay.id != f.model.makeOverlay(EditorTool::Text, {0, 0}, {10, 10}, Qt::red, QString()).id);
}

QTEST_GUILESS_MAIN(EditorModelTest)
#include "tst_editormodel.moc"
