#include "FakeKeyValueStore.h"

#include "editor/EditorTool.h"
#include "editor/ImageEditorModel.h"
#include "editor/Overlay.h"

#include <QSignalSpy>
#include <QTest>

#include <functional>

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

using Changes = ImageEditorModel::Changes;
using Change = ImageEditorModel::Change;
using EditAction = std::function<void(ImageEditorModel &model, const Overlay &first, const Overlay &second)>;
Q_DECLARE_METATYPE(EditAction)

class EditorModelTest : public QObject
{
    Q_OBJECT

private slots:
    void toolLabelsRoundTripAndNothingElseIsATool();
    void containsUsesPaddedHalfOpenBox_data();
    void containsUsesPaddedHalfOpenBox();
    void editIsOneStepAndOneNotification_data();
    void editIsOneStepAndOneNotification();
    void undoAndRedo();
    void undoInsideAnOpenEditTakesBackWhatItChanged();
    void historyIsBoundedAndTrimmedFromTheFront();
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
    // The overlay spans (10, 20) to (30, 40), drawn from its top-right corner. Without padding these are the
    // rectangle's own half-open bounds.
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

void EditorModelTest::editIsOneStepAndOneNotification_data()
{
    QTest::addColumn<EditAction>("edit");
    QTest::addColumn<int>("steps");
    QTest::addColumn<Changes>("announced"); // none: no notification at all
    // Single appends, replacements and removals are the editor's gestures, tested with the canvas.
    const Changes document = Change::Overlays | Change::History;
    QTest::newRow("several changes in one edit") << EditAction([](ImageEditorModel &m, const Overlay &a, const Overlay &) {
        const ImageEditorModel::Edit edit(m);
        m.appendOverlay(rectangleAt(9));
        m.removeOverlay(a.id);
        m.appendOverlay(rectangleAt(11));
    }) << 1 << document;
    QTest::newRow("nested edits commit once") << EditAction([](ImageEditorModel &m, const Overlay &a, const Overlay &) {
        m.beginEdit();
        m.beginEdit();
        m.appendOverlay(rectangleAt(9));
        m.commitEdit();
        m.removeOverlay(a.id);
        m.commitEdit();
        m.commitEdit(); // unmatched: ignored
    }) << 1 << document;
    QTest::newRow("style and overlay in one edit") << EditAction([](ImageEditorModel &m, const Overlay &, const Overlay &b) {
        const ImageEditorModel::Edit edit(m);
        m.setSelectedColor(Qt::green);
        Overlay recoloured = b;
        recoloured.color = Qt::green;
        m.replaceOverlay(recoloured);
    }) << 1 << (document | Change::Style);
    QTest::newRow("style alone") << EditAction([](ImageEditorModel &m, const Overlay &, const Overlay &) {
        const ImageEditorModel::Edit edit(m);
        m.setSelectedTool(EditorTool::Arrow);
        m.setSelectedTextFontSize(40);
    }) << 0 << Changes(Change::Style);
    QTest::newRow("picture") << EditAction([](ImageEditorModel &m, const Overlay &, const Overlay &) {
        m.setImage(QImage(4, 4, QImage::Format_RGB32));
    }) << 0 << Changes(Change::Image);
    QTest::newRow("equal overlay") << EditAction([](ImageEditorModel &m, const Overlay &a, const Overlay &) {
        m.replaceOverlay(a);
    }) << 0 << Changes();
    QTest::newRow("changes that cancel out") << EditAction([](ImageEditorModel &m, const Overlay &a, const Overlay &) {
        const ImageEditorModel::Edit edit(m);
        Overlay moved = a;
        moved.endPoint = {70, 70};
        m.replaceOverlay(moved);
        m.replaceOverlay(a);
    }) << 0 << Changes();
    QTest::newRow("unknown id") << EditAction([](ImageEditorModel &m, const Overlay &, const Overlay &) {
        m.replaceOverlay(rectangleAt(9));
        m.removeOverlay(QUuid::createUuid());
    }) << 0 << Changes();
    QTest::newRow("style already in use") << EditAction([](ImageEditorModel &m, const Overlay &, const Overlay &) {
        m.setSelectedTool(m.selectedTool());
        m.setSelectedColor(m.selectedColor());
    }) << 0 << Changes();
}

void EditorModelTest::editIsOneStepAndOneNotification()
{
    QFETCH(EditAction, edit);
    QFETCH(int, steps);
    QFETCH(Changes, announced);
    ModelFixture f;
    ImageEditorModel &model = f.model;
    const Overlay a = rectangleAt(1);
    const Overlay b = rectangleAt(3);
    model.appendOverlay(a);
    model.appendOverlay(b);
    const QList<Overlay> before = model.overlays();
    const qsizetype history = model.undoStack().size();
    QSignalSpy spy(&model, &ImageEditorModel::changed);

    edit(model, a, b);
    QCOMPARE(model.undoStack().size() - history, steps);
    QCOMPARE(spy.count(), announced ? 1 : 0);
    if (announced)
        QCOMPARE(spy.first().first().value<Changes>(), announced);
    if (steps == 0) {
        QCOMPARE(model.overlays(), before);
        return;
    }
    const QList<Overlay> after = model.overlays();
    model.undoLastAction();
    QCOMPARE(model.overlays(), before);
    model.redoLastAction();
    QCOMPARE(model.overlays(), after);
}

void EditorModelTest::undoAndRedo()
{
    ModelFixture f;
    ImageEditorModel &model = f.model;
    QSignalSpy spy(&model, &ImageEditorModel::changed);
    // An empty history is left alone, unannounced.
    model.undoLastAction();
    model.redoLastAction();
    QVERIFY(!model.canUndo() && !model.canRedo());
    QCOMPARE(spy.count(), 0);

    model.appendOverlay(rectangleAt(1));
    model.appendOverlay(rectangleAt(5));
    model.setSelectedTool(EditorTool::Mosaic);
    model.setSelectedColor(Qt::green);
    spy.clear();
    model.undoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{1});
    QVERIFY(model.canUndo() && model.canRedo());
    // The styles are not part of the history.
    QCOMPARE(model.selectedTool(), EditorTool::Mosaic);
    QCOMPARE(model.selectedColor(), QColor(Qt::green));
    model.redoLastAction();
    QCOMPARE(starts(model.overlays()), (QList<double>{1, 5}));
    QVERIFY(model.canUndo() && !model.canRedo());
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.last().first().value<Changes>(), Change::Overlays | Change::History);
}

void EditorModelTest::undoInsideAnOpenEditTakesBackWhatItChanged()
{
    ModelFixture f;
    ImageEditorModel &model = f.model;
    model.appendOverlay(rectangleAt(1));
    model.beginEdit();
    model.appendOverlay(rectangleAt(5));
    // The edit so far becomes the step undo takes back; the edit goes on from there.
    model.undoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{1});
    QCOMPARE(model.undoStack().size(), 1);
    model.redoLastAction();
    QCOMPARE(starts(model.overlays()), (QList<double>{1, 5}));
    model.commitEdit();
    QCOMPARE(model.undoStack().size(), 2);
    QVERIFY(!model.canRedo());
}

void EditorModelTest::historyIsBoundedAndTrimmedFromTheFront()
{
    ModelFixture f;
    ImageEditorModel &model = f.model;
    // 101 edits: the snapshot of the empty document falls off the front.
    for (int i = 0; i < 101; ++i)
        model.appendOverlay(rectangleAt(i));
    QCOMPARE(model.undoStack().size(), 100);
    QCOMPARE(model.undoStack().first().size(), 1);

    for (int i = 0; i < 101; ++i)
        model.undoLastAction();
    QCOMPARE(starts(model.overlays()), QList<double>{0});
    QVERIFY(!model.canUndo());
    for (int i = 0; i < 100; ++i)
        model.redoLastAction();
    QCOMPARE(model.overlays().size(), 101);
    QVERIFY(!model.canRedo());
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
}

QTEST_GUILESS_MAIN(EditorModelTest)
#include "tst_editormodel.moc"
