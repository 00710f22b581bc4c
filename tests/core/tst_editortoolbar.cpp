#include "helpers/EditorViewFixture.h"

#include "editor/EditorStylePreferences.h"
#include "editor/SystemColors.h"
#include "settings/UserDefaults.h"

#include <QTest>

#include <cmath>
#include <functional>

using namespace Qt::StringLiterals;
using namespace editorstyle;

using Setup = std::function<void(EditorViewFixture &f)>;
Q_DECLARE_METATYPE(Setup)
enum class Action { Undo, Redo, Delete };
Q_DECLARE_METATYPE(Action)

namespace {

const QString strokeKey = u"VistrelEditorStrokeColor"_s;
const QString fillKey = u"VistrelEditorTextFillColor"_s;
const QString opacityKey = u"VistrelEditorTextFillOpacity"_s;

void storeColour(FakeKeyValueStore &store, const QString &baseKey, double r, double g, double b, double a)
{
    store.values.insert(baseKey + u".red"_s, r);
    store.values.insert(baseKey + u".green"_s, g);
    store.values.insert(baseKey + u".blue"_s, b);
    store.values.insert(baseKey + u".alpha"_s, a);
}

} // namespace

// The styles of new and selected overlays: how they are kept in the preferences, and how the toolbar
// applies them.
class EditorToolbarTest : public QObject
{
    Q_OBJECT

private slots:
    void opacityIsRoundedIntoRange_data();
    void opacityIsRoundedIntoRange();
    void savedFill_data();
    void savedFill();
    void colourIsStoredAsFourComponentsAndReachesDisk();
    void sameColor_data();
    void sameColor();
    void styleChangesWithoutSelectionOnlySetNewStyles();
    void opacityReachesTheSelectionAndTheSlider();
    void fontBindingsFollowTheSelection();
    void disabledActionsChangeNothing_data();
    void disabledActionsChangeNothing();
};

void EditorToolbarTest::opacityIsRoundedIntoRange_data()
{
    QTest::addColumn<QVariant>("input"); // given to the normalisation, and read back from the store
    QTest::addColumn<double>("expected");
    QTest::newRow("0.25 rounds half up") << QVariant(0.25) << 0.3;
    QTest::newRow("0.55 rounds half up") << QVariant(0.55) << 0.6;
    QTest::newRow("0.35 rounds half up") << QVariant(0.35) << 0.4;
    QTest::newRow("0.14 rounds down") << QVariant(0.14) << 0.1;
    QTest::newRow("0.04 is raised to the minimum") << QVariant(0.04) << 0.1;
    QTest::newRow("negative is raised to the minimum") << QVariant(-3.0) << 0.1;
    QTest::newRow("1.7 is capped") << QVariant(1.7) << 1.0;
    QTest::newRow("0.96 rounds to 1") << QVariant(0.96) << 1.0;
    QTest::newRow("not a number is opaque") << QVariant(qQNaN()) << 1.0;
    QTest::newRow("unreadable stored text counts as 0") << QVariant(u"half"_s) << 0.1;
}

void EditorToolbarTest::opacityIsRoundedIntoRange()
{
    QFETCH(QVariant, input);
    QFETCH(double, expected);
    if (input.typeId() == QMetaType::Double)
        QCOMPARE(normalizeEditorTextFillOpacity(input.toDouble()), expected);
    FakeKeyValueStore store;
    store.values.insert(opacityKey, input);
    QCOMPARE(savedEditorTextFillOpacity(UserDefaults(store)), expected);
}

void EditorToolbarTest::savedFill_data()
{
    QTest::addColumn<QVariant>("opacity"); // invalid: none stored
    QTest::addColumn<QColor>("colour"); // invalid: none stored
    QTest::addColumn<QString>("missing"); // a component taken out again after the colour was stored
    QTest::addColumn<QColor>("expected");
    QColor halfCyan = systemcolors::systemCyan();
    halfCyan.setAlphaF(0.5f);
    const QColor yellow = QColor::fromRgbF(1, 1, 0, 0.8f);
    QTest::newRow("nothing stored: opaque cyan") << QVariant() << QColor() << QString() << systemcolors::systemCyan();
    QTest::newRow("the opacity tints the default") << QVariant(0.45) << QColor() << QString() << halfCyan;
    QTest::newRow("a stored colour wins over the opacity") << QVariant(0.3) << yellow << QString() << yellow;
    QTest::newRow("all zeros are a colour") << QVariant() << QColor::fromRgbF(0, 0, 0, 0) << QString()
                                            << QColor::fromRgbF(0, 0, 0, 0);
    QTest::newRow("without red: the default") << QVariant() << yellow << u".red"_s << systemcolors::systemCyan();
    QTest::newRow("without alpha: the default") << QVariant(0.45) << yellow << u".alpha"_s << halfCyan;
}

void EditorToolbarTest::savedFill()
{
    QFETCH(QVariant, opacity);
    QFETCH(QColor, colour);
    QFETCH(QString, missing);
    QFETCH(QColor, expected);
    FakeKeyValueStore store;
    if (opacity.isValid())
        store.values.insert(opacityKey, opacity);
    if (colour.isValid())
        storeColour(store, fillKey, colour.redF(), colour.greenF(), colour.blueF(), colour.alphaF());
    if (!missing.isEmpty())
        store.values.remove(fillKey + missing);
    QCOMPARE(savedEditorTextFillColor(UserDefaults(store)), expected);
}

void EditorToolbarTest::colourIsStoredAsFourComponentsAndReachesDisk()
{
    FakeKeyValueStore store;
    UserDefaults defaults(store);
    saveEditorColor(defaults, QColor::fromHsv(0, 0, 128), strokeKey);
    QCOMPARE(store.syncCount, 1);
    const double red = store.synced.value(strokeKey + u".red"_s).toDouble();
    QVERIFY(qAbs(red - 128 / 255.0) < 1e-6);
    QCOMPARE(store.synced.value(strokeKey + u".green"_s).toDouble(), red);
    QCOMPARE(store.synced.value(strokeKey + u".blue"_s).toDouble(), red);
    QCOMPARE(store.synced.value(strokeKey + u".alpha"_s).toDouble(), 1.0);
    QCOMPARE(savedEditorStrokeColor(defaults), QColor(128, 128, 128));
    // A colour without an RGB form is not saved.
    saveEditorColor(defaults, QColor(), strokeKey);
    QCOMPARE(savedEditorStrokeColor(defaults), QColor(128, 128, 128));
    QCOMPARE(store.syncCount, 1);
}

void EditorToolbarTest::sameColor_data()
{
    QTest::addColumn<QColor>("a");
    QTest::addColumn<QColor>("b");
    QTest::addColumn<bool>("same");
    QTest::newRow("identical") << QColor(255, 59, 48) << QColor(255, 59, 48) << true;
    QTest::newRow("within 0.01") << QColor::fromRgbF(0.5f, 0.5f, 0.5f) << QColor::fromRgbF(0.509f, 0.5f, 0.491f) << true;
    QTest::newRow("0.012 apart") << QColor::fromRgbF(0.5f, 0.5f, 0.5f) << QColor::fromRgbF(0.5f, 0.512f, 0.5f) << false;
    QTest::newRow("alpha counts") << QColor(0, 0, 0, 255) << QColor(0, 0, 0, 128) << false;
    QTest::newRow("other colour models are converted") << QColor::fromHsvF(0, 1, 1) << QColor(255, 0, 0) << true;
}

void EditorToolbarTest::sameColor()
{
    QFETCH(QColor, a);
    QFETCH(QColor, b);
    QFETCH(bool, same);
    QCOMPARE(EditorToolbar::sameColor(a, b), same);
    QCOMPARE(EditorToolbar::sameColor(b, a), same);
}

void EditorToolbarTest::styleChangesWithoutSelectionOnlySetNewStyles()
{
    EditorViewFixture f;
    f.add(EditorTool::Rectangle, {10, 10}, {50, 50});
    const QList<Overlay> overlays = f.model->overlays();
    EditorToolbar &toolbar = f.view.toolbar();
    toolbar.setSelectedColor(QColor::fromRgbF(0.2f, 0.2f, 0.2f));
    toolbar.setSelectedTextFillColor(systemcolors::white());
    toolbar.setSelectedTextFillOpacity(0.5);
    toolbar.setSelectedFontFamily(u"Mono"_s);
    toolbar.setSelectedFontSize(3);

    QCOMPARE(f.undoSteps(), 1);
    QCOMPARE(f.model->overlays(), overlays);
    QVERIFY(toolbar.isColorSelected(QColor::fromRgbF(0.2f, 0.2f, 0.2f)));
    QCOMPARE(f.model->selectedTextFillColor(), QColor::fromRgbF(1, 1, 1, 0.5f));
    QCOMPARE(f.model->selectedTextFontFamily(), u"Mono"_s);
    QCOMPARE(f.model->selectedTextFontSize(), 8.0);
    // Remembered for the next editor.
    ImageEditorModel next(EditorViewFixture::picture(), f.store);
    QVERIFY(EditorToolbar::sameColor(next.selectedColor(), QColor::fromRgbF(0.2f, 0.2f, 0.2f)));
    QVERIFY(EditorToolbar::sameColor(next.selectedTextFillColor(), QColor::fromRgbF(1, 1, 1, 0.5f)));
}

void EditorToolbarTest::opacityReachesTheSelectionAndTheSlider()
{
    EditorViewFixture f;
    const Overlay box = f.add(EditorTool::Text, {10, 10}, {10, 10});
    EditorToolbar &toolbar = f.view.toolbar();
    toolbar.setSelectedTextFillOpacity(0.25); // rounded to 0.3
    // Both the opacity and the fill colour with it reach the disk.
    QCOMPARE(f.store.synced.value(opacityKey).toDouble(), 0.3);
    QVERIFY(std::abs(f.store.synced.value(fillKey + u".alpha"_s).toDouble() - 0.3) < 1e-4);
    QCOMPARE(toolbar.opacitySlider().value, 0.3);
    // Colours keep 16 bits a component.
    QVERIFY(std::abs(f.model->selectedTextFillColor().alphaF() - 0.3) < 1e-4);
    QVERIFY(std::abs(f.model->overlays().first().textFillColor.alphaF() - 0.3) < 1e-4);
    QCOMPARE(f.model->overlays().first().textFillColor.rgb(), box.textFillColor.rgb());
}

void EditorToolbarTest::fontBindingsFollowTheSelection()
{
    EditorViewFixture f;
    f.model->setSelectedTextFontSize(30);
    const Overlay box = f.add(EditorTool::Text, {10, 10}, {10, 10});
    EditorToolbar &toolbar = f.view.toolbar();
    f.model->setSelectedTextFontSize(12);
    f.model->setSelectedTextFontFamily(u"Mono"_s);
    QCOMPARE(toolbar.selectedFontSize(), 30.0);
    QCOMPARE(toolbar.selectedFontFamily(), u"Helvetica"_s);
    QCOMPARE(toolbar.fontFamilies().first(), u"Helvetica"_s); // shown even where it is not installed
    f.interaction().setSelectedOverlayID(std::nullopt);
    QCOMPARE(toolbar.selectedFontSize(), 12.0);
    QCOMPARE(toolbar.selectedFontFamily(), u"Mono"_s);
    QCOMPARE(f.model->overlays().first(), box);
}

void EditorToolbarTest::disabledActionsChangeNothing_data()
{
    QTest::addColumn<Setup>("setup");
    QTest::addColumn<Action>("action");
    const auto drawn = [](EditorViewFixture &f) { f.add(EditorTool::Rectangle, {10, 10}, {60, 60}); };
    QTest::newRow("undo on a fresh document") << Setup([](EditorViewFixture &) {}) << Action::Undo;
    QTest::newRow("undo with the history used up") << Setup([drawn](EditorViewFixture &f) {
        drawn(f);
        f.view.toolbar().undo();
    }) << Action::Undo;
    QTest::newRow("redo with nothing undone") << Setup(drawn) << Action::Redo;
    QTest::newRow("redo after a new change") << Setup([drawn](EditorViewFixture &f) {
        drawn(f);
        f.view.toolbar().undo();
        drawn(f);
    }) << Action::Redo;
    QTest::newRow("delete with nothing selected") << Setup(drawn) << Action::Delete;
    QTest::newRow("delete of a selection undone away") << Setup([drawn](EditorViewFixture &f) {
        drawn(f);
        f.add(EditorTool::Rectangle, {100, 100}, {200, 200});
        f.editMode();
        f.click(f.at(150, 150));
        f.view.toolbar().undo();
    }) << Action::Delete;
}

void EditorToolbarTest::disabledActionsChangeNothing()
{
    QFETCH(Setup, setup);
    QFETCH(Action, action);
    EditorViewFixture f;
    setup(f);
    EditorToolbar &toolbar = f.view.toolbar();
    const EditorToolbar::ActionButton button = action == Action::Undo   ? toolbar.undoButton()
                                               : action == Action::Redo ? toolbar.redoButton()
                                                                        : toolbar.deleteButton();
    QVERIFY(!button.isEnabled);
    const QList<Overlay> overlays = f.model->overlays();
    const QList<ImageEditorModel::Snapshot> undoStack = f.model->undoStack();
    const bool canRedo = f.model->canRedo();
    const std::optional<QUuid> selection = f.interaction().selectedOverlayID();

    // The keys reach these as the buttons do.
    (toolbar.*(action == Action::Undo ? &EditorToolbar::undo
               : action == Action::Redo ? &EditorToolbar::redo
                                        : &EditorToolbar::deleteSelected))();
    QCOMPARE(f.model->overlays(), overlays);
    QCOMPARE(f.model->undoStack(), undoStack);
    QCOMPARE(f.model->canRedo(), canRedo);
    QCOMPARE(f.interaction().selectedOverlayID(), selection);
    // What was undone can still be brought back.
    if (canRedo) {
        toolbar.redo();
        QVERIFY(f.model->overlays() != overlays);
    }
}

QTEST_MAIN(EditorToolbarTest)
#include "tst_editortoolbar.moc"
