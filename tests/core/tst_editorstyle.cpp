#include "FakeKeyValueStore.h"

#include "editor/EditorStylePreferences.h"
#include "editor/ImageEditorModel.h"
#include "editor/SystemColors.h"
#include "settings/UserDefaults.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace editorstyle;

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

QColor withAlpha(QColor colour, double alpha)
{
    colour.setAlphaF(float(alpha));
    return colour;
}

} // namespace

class EditorStyleTest : public QObject
{
    Q_OBJECT

private slots:
    void emptyStoreGivesRedStrokesAndOpaqueCyanFill();
    void opacityNormalisation_data();
    void opacityNormalisation();
    void storedOpacityIsBroughtIntoRange_data();
    void storedOpacityIsBroughtIntoRange();
    void savedOpacityTintsTheDefaultFill();
    void savedColourWinsOverTheOpacity();
    void partlyStoredColourFallsBack_data();
    void partlyStoredColourFallsBack();
    void greyIsStoredAsFourComponentsAndReachesDisk();
    void colourWithoutRgbFormIsNotSaved();
    void opacityChangeStoresBothAndReachesDisk();
    void modelStartsFromTheSavedStyles();
};

void EditorStyleTest::emptyStoreGivesRedStrokesAndOpaqueCyanFill()
{
    FakeKeyValueStore store;
    const UserDefaults defaults(store);
    QCOMPARE(savedEditorStrokeColor(defaults), systemcolors::systemRed());
    QCOMPARE(savedEditorTextFillColor(defaults), systemcolors::systemCyan());
    QCOMPARE(editorTextFillColor(defaults).alphaF(), 1.0f);
    QCOMPARE(savedEditorTextFillOpacity(defaults), 1.0);
}

void EditorStyleTest::opacityNormalisation_data()
{
    QTest::addColumn<double>("input");
    QTest::addColumn<double>("expected");
    QTest::newRow("0.25 rounds half up") << 0.25 << 0.3;
    QTest::newRow("0.55 rounds half up") << 0.55 << 0.6;
    QTest::newRow("0.35 rounds half up") << 0.35 << 0.4;
    QTest::newRow("0.14 rounds down") << 0.14 << 0.1;
    QTest::newRow("0.04 is raised to the minimum") << 0.04 << 0.1;
    QTest::newRow("negative is raised to the minimum") << -3.0 << 0.1;
    QTest::newRow("1.7 is capped") << 1.7 << 1.0;
    QTest::newRow("0.96 rounds to 1") << 0.96 << 1.0;
}

void EditorStyleTest::opacityNormalisation()
{
    QFETCH(double, input);
    QFETCH(double, expected);
    QCOMPARE(normalizeEditorTextFillOpacity(input), expected);
}

void EditorStyleTest::storedOpacityIsBroughtIntoRange_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<double>("expected");
    QTest::newRow("0.04 reads as 0.1") << QVariant(0.04) << 0.1;
    QTest::newRow("1.7 reads as 1") << QVariant(1.7) << 1.0;
    QTest::newRow("0.55 reads as 0.6") << QVariant(0.55) << 0.6;
    QTest::newRow("stored 0 is present and raised") << QVariant(0.0) << 0.1;
    QTest::newRow("unreadable text counts as 0") << QVariant(u"half"_s) << 0.1;
}

void EditorStyleTest::storedOpacityIsBroughtIntoRange()
{
    QFETCH(QVariant, stored);
    QFETCH(double, expected);
    FakeKeyValueStore store;
    store.values.insert(opacityKey, stored);
    QCOMPARE(savedEditorTextFillOpacity(UserDefaults(store)), expected);
}

void EditorStyleTest::savedOpacityTintsTheDefaultFill()
{
    FakeKeyValueStore store;
    store.values.insert(opacityKey, 0.45);
    QCOMPARE(savedEditorTextFillColor(UserDefaults(store)), withAlpha(systemcolors::systemCyan(), 0.5));
}

void EditorStyleTest::savedColourWinsOverTheOpacity()
{
    FakeKeyValueStore store;
    store.values.insert(opacityKey, 0.3);
    storeColour(store, fillKey, 1, 1, 0, 0.8);
    QCOMPARE(savedEditorTextFillColor(UserDefaults(store)), QColor::fromRgbF(1, 1, 0, 0.8f));
}

void EditorStyleTest::partlyStoredColourFallsBack_data()
{
    QTest::addColumn<QString>("missing");
    QTest::newRow("no red") << u".red"_s;
    QTest::newRow("no blue") << u".blue"_s;
    QTest::newRow("no alpha") << u".alpha"_s;
}

void EditorStyleTest::partlyStoredColourFallsBack()
{
    QFETCH(QString, missing);
    FakeKeyValueStore store;
    storeColour(store, strokeKey, 0, 0, 0, 0);
    const UserDefaults defaults(store);
    QCOMPARE(savedEditorStrokeColor(defaults), QColor::fromRgbF(0, 0, 0, 0));
    store.values.remove(strokeKey + missing);
    QCOMPARE(savedEditorStrokeColor(defaults), systemcolors::systemRed());
}

void EditorStyleTest::greyIsStoredAsFourComponentsAndReachesDisk()
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
}

void EditorStyleTest::colourWithoutRgbFormIsNotSaved()
{
    FakeKeyValueStore store;
    storeColour(store, strokeKey, 0, 0, 1, 1);
    UserDefaults defaults(store);
    saveEditorColor(defaults, QColor(), strokeKey);
    QCOMPARE(savedEditorStrokeColor(defaults), QColor(Qt::blue));
    QCOMPARE(store.syncCount, 0);
}

void EditorStyleTest::opacityChangeStoresBothAndReachesDisk()
{
    FakeKeyValueStore store;
    UserDefaults defaults(store);
    const QColor fill = saveEditorTextFillOpacity(defaults, 0.25, QColor(255, 0, 0, 40));
    QCOMPARE(fill, QColor::fromRgbF(1, 0, 0, 0.3f));
    QCOMPARE(store.synced.value(opacityKey).toDouble(), 0.3);
    QVERIFY(qAbs(store.synced.value(fillKey + u".alpha"_s).toDouble() - 0.3) < 1e-4);
    QCOMPARE(store.synced.value(fillKey + u".red"_s).toDouble(), 1.0);
    QCOMPARE(savedEditorTextFillColor(defaults), fill);
}

void EditorStyleTest::modelStartsFromTheSavedStyles()
{
    FakeKeyValueStore store;
    storeColour(store, strokeKey, 0, 1, 0, 1);
    store.values.insert(opacityKey, 0.5);
    QImage image(4, 4, QImage::Format_RGB32);
    const ImageEditorModel model(image, store);
    QCOMPARE(model.selectedColor(), QColor(Qt::green));
    QCOMPARE(model.selectedTextFillColor(), withAlpha(systemcolors::systemCyan(), 0.5));
    QCOMPARE(model.selectedTool(), EditorTool::Rectangle);
    QCOMPARE(model.selectedTextFontFamily(), u"Helvetica"_s);
    QCOMPARE(model.selectedTextFontSize(), 20.0);
}

QTEST_GUILESS_MAIN(EditorStyleTest)
#include "tst_editorstyle.moc"
