#include "helpers/EditorViewFixture.h"

#include "editor/EditorStylePreferences.h"
#include "editor/EditorToolbarTexts.h"
#include "editor/SystemColors.h"

#include <QTest>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

const QString strokeKey = u"VistrelEditorStrokeColor"_s;
const QString fillKey = u"VistrelEditorTextFillColor"_s;
const QString opacityKey = u"VistrelEditorTextFillOpacity"_s;

} // namespace

class EditorToolbarTest : public QObject
{
    Q_OBJECT

private slots:
    void palettesInOrder();
    void sameColor_data();
    void sameColor();
    void styleChangesOnTheSelectedOverlay_data();
    void styleChangesOnTheSelectedOverlay();
    void styleChangesWithoutSelectionOnlySetNewStyles();
    void opacityIsNormalised_data();
    void opacityIsNormalised();
    void fillSwatchesCarryTheOpacity();
    void fontBindingsFollowTheSelection();
    void textIsOneUndoStepPerChange();
    void labelsAndStates();
};

void EditorToolbarTest::palettesInOrder()
{
    using namespace systemcolors;
    QCOMPARE(EditorToolbar::presetColors(),
             (QList<QColor>{systemRed(), systemOrange(), systemYellow(), systemGreen(), systemTeal(), systemBlue(),
                            systemIndigo(), systemPurple(), systemPink(), black()}));
    QCOMPARE(EditorToolbar::presetTextFillColors(),
             (QList<QColor>{systemCyan(), systemTeal(), systemBlue(), systemGreen(), systemYellow(), systemOrange(),
                            systemPink(), systemPurple(), white(), black()}));
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

void EditorToolbarTest::styleChangesOnTheSelectedOverlay_data()
{
    QTest::addColumn<QString>("control");
    QTest::addColumn<bool>("changes");
    QTest::newRow("another colour") << u"color"_s << true;
    QTest::newRow("the colour in use") << u"sameColor"_s << false;
    QTest::newRow("another fill") << u"fill"_s << true;
    QTest::newRow("the fill in use") << u"sameFill"_s << false;
    QTest::newRow("another opacity") << u"opacity"_s << true;
    QTest::newRow("the opacity in use") << u"sameOpacity"_s << false;
    QTest::newRow("another font") << u"font"_s << true;
    QTest::newRow("the font in use") << u"sameFont"_s << false;
    QTest::newRow("another size") << u"size"_s << true;
    QTest::newRow("a size clamped to the one in use") << u"sameSize"_s << false;
}

void EditorToolbarTest::styleChangesOnTheSelectedOverlay()
{
    QFETCH(QString, control);
    QFETCH(bool, changes);
    EditorViewFixture f;
    f.model->setSelectedTextFontSize(160);
    const Overlay box = f.add(EditorTool::Text, {10, 10}, {10, 10});
    EditorToolbar &toolbar = f.view.toolbar();
    const qsizetype stepsBefore = f.undoSteps();

    if (control == u"color")
        toolbar.setSelectedColor(systemcolors::systemBlue());
    else if (control == u"sameColor")
        toolbar.setSelectedColor(box.color);
    else if (control == u"fill")
        toolbar.setSelectedTextFillColor(systemcolors::systemYellow());
    else if (control == u"sameFill")
        toolbar.setSelectedTextFillColor(box.textFillColor);
    else if (control == u"opacity")
        toolbar.setSelectedTextFillOpacity(0.4);
    else if (control == u"sameOpacity")
        toolbar.setSelectedTextFillOpacity(1.04);
    else if (control == u"font")
        toolbar.setSelectedFontFamily(u"Serif"_s);
    else if (control == u"sameFont")
        toolbar.setSelectedFontFamily(box.fontFamily);
    else if (control == u"size")
        toolbar.setSelectedFontSize(24);
    else if (control == u"sameSize")
        toolbar.setSelectedFontSize(400);

    QCOMPARE(f.undoSteps(), stepsBefore + (changes ? 1 : 0));
    QCOMPARE(f.model->overlays().first() != box, changes);
    if (changes) {
        f.model->undoLastAction();
        QCOMPARE(f.model->overlays().first(), box);
    }
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
    QVERIFY(std::abs(f.store.values.value(strokeKey + u".red"_s).toDouble() - 0.2) < 1e-6);
    QVERIFY(std::abs(f.store.values.value(fillKey + u".alpha"_s).toDouble() - 0.5) < 1e-4);
    QCOMPARE(f.store.values.value(opacityKey).toDouble(), 0.5);
    ImageEditorModel next(EditorViewFixture::picture(), f.store);
    QVERIFY(EditorToolbar::sameColor(next.selectedColor(), QColor::fromRgbF(0.2f, 0.2f, 0.2f)));
}

void EditorToolbarTest::opacityIsNormalised_data()
{
    QTest::addColumn<double>("given");
    QTest::addColumn<double>("stored");
    QTest::newRow("below the range") << 0.05 << 0.1;
    QTest::newRow("half rounds up") << 0.25 << 0.3;
    QTest::newRow("rounded down") << 0.14 << 0.1;
    QTest::newRow("above the range") << 1.7 << 1.0;
}

void EditorToolbarTest::opacityIsNormalised()
{
    QFETCH(double, given);
    QFETCH(double, stored);
    EditorViewFixture f;
    const Overlay box = f.add(EditorTool::Text, {10, 10}, {10, 10});
    f.view.toolbar().setSelectedTextFillOpacity(given);
    QCOMPARE(f.store.values.value(opacityKey).toDouble(), stored);
    QCOMPARE(f.view.toolbar().opacitySlider().value, stored);
    // Colours keep 16 bits a component.
    QVERIFY(std::abs(f.model->selectedTextFillColor().alphaF() - stored) < 1e-4);
    QVERIFY(std::abs(f.model->overlays().first().textFillColor.alphaF() - stored) < 1e-4);
    QCOMPARE(f.model->overlays().first().textFillColor.rgb(), box.textFillColor.rgb());
}

void EditorToolbarTest::fillSwatchesCarryTheOpacity()
{
    EditorViewFixture f;
    EditorToolbar &toolbar = f.view.toolbar();
    toolbar.setSelectedTextFillOpacity(0.6);
    toolbar.setSelectedTextFillColor(systemcolors::systemGreen());
    QList<bool> chosen;
    for (const EditorToolbar::Swatch &swatch : toolbar.textFillSwatches()) {
        chosen.append(swatch.isSelected);
        QVERIFY(std::abs(swatch.color.alphaF() - 0.6) < 1e-4);
    }
    QCOMPARE(chosen.indexOf(true), 3);
    QCOMPARE(chosen.count(true), 1);
    QVERIFY(std::abs(f.store.values.value(fillKey + u".alpha"_s).toDouble() - 0.6) < 1e-4);
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
    const EditorToolbar::Range stepper = toolbar.fontSizeStepper();
    QCOMPARE(stepper.minimum, 8.0);
    QCOMPARE(stepper.maximum, 160.0);
    QCOMPARE(stepper.step, 1.0);
    QCOMPARE(f.model->overlays().first(), box);
}

void EditorToolbarTest::textIsOneUndoStepPerChange()
{
    EditorViewFixture f;
    const Overlay box = f.add(EditorTool::Text, {10, 10}, {10, 10});
    EditorToolbar &toolbar = f.view.toolbar();
    QCOMPARE(toolbar.text(box.id), u"テキスト"_s);
    toolbar.setText(box.id, u"テキスト"_s);
    QCOMPARE(f.undoSteps(), 1);
    toolbar.setText(box.id, u"注意"_s);
    toolbar.setText(box.id, u"注意!"_s);
    QCOMPARE(f.undoSteps(), 3);
    QCOMPARE(f.view.textFields().first().text, u"注意!"_s);
    f.model->undoLastAction();
    QCOMPARE(toolbar.text(box.id), u"注意"_s);
    toolbar.setText(QUuid::createUuid(), u"lost"_s);
    QCOMPARE(f.undoSteps(), 2);
}

void EditorToolbarTest::labelsAndStates()
{
    EditorViewFixture f;
    EditorToolbar &toolbar = f.view.toolbar();
    QStringList titles;
    for (const EditorToolbar::ToolButton &button : toolbar.toolButtons())
        titles.append(button.title + (button.isSelected ? u"*"_s : QString()));
    QCOMPARE(titles, (QStringList{u"四角枠*"_s, u"丸枠"_s, u"矢印"_s, u"フリーハンド"_s, u"モザイク"_s, u"文字入力"_s}));
    toolbar.selectTool(EditorTool::Mosaic);
    QCOMPARE(f.model->selectedTool(), EditorTool::Mosaic);

    namespace texts = editortoolbartexts;
    QCOMPARE((QStringList{texts::color, texts::fill, texts::opacity, texts::font, texts::size}),
             (QStringList{u"色"_s, u"塗り"_s, u"透過"_s, u"フォント"_s, u"サイズ"_s}));
    QCOMPARE(toolbar.modeToggle().drawTitle, u"描画モード"_s);
    QCOMPARE(toolbar.modeToggle().editTitle, u"編集モード"_s);
    QVERIFY(toolbar.modeToggle().isDrawMode);
    toolbar.setDrawMode(false);
    QVERIFY(!f.interaction().isDrawMode());
    const QList<EditorToolbar::BottomButton> bottom = EditorToolbar::bottomButtons();
    QCOMPARE(bottom.size(), 2);
    QCOMPARE(bottom.at(0).title, u"キャンセル"_s);
    QVERIFY(!bottom.at(0).isDefault);
    QCOMPARE(bottom.at(1).title, u"決定"_s);
    QVERIFY(bottom.at(1).isDefault);
    QCOMPARE(toolbar.undoButton().helpText, u"元に戻す (⌘Z)"_s);
    QCOMPARE(toolbar.redoButton().helpText, u"やり直し (⌘⇧Z)"_s);
    QCOMPARE(toolbar.deleteButton().helpText, u"選択したオーバーレイを削除"_s);
    QCOMPARE(toolbar.undoButton().shortcuts, QList<QKeySequence>{QKeySequence(Qt::CTRL | Qt::Key_Z)});
    QCOMPARE(toolbar.redoButton().shortcuts, QList<QKeySequence>{QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Z)});
    QCOMPARE(toolbar.deleteButton().shortcuts,
             (QList<QKeySequence>{QKeySequence(Qt::Key_Delete), QKeySequence(Qt::CTRL | Qt::Key_Delete),
                                  QKeySequence(Qt::CTRL | Qt::Key_Backspace)}));

    auto states = [&toolbar] {
        return QList<bool>{toolbar.undoButton().isEnabled, toolbar.redoButton().isEnabled,
                           toolbar.deleteButton().isEnabled};
    };
    QCOMPARE(states(), (QList<bool>{false, false, false}));
    const Overlay box = f.add(EditorTool::Text, {10, 10}, {10, 10});
    QCOMPARE(states(), (QList<bool>{true, false, true}));
    toolbar.undo();
    // The selection names an overlay that is gone: nothing to delete.
    QCOMPARE(states(), (QList<bool>{false, true, false}));
    toolbar.redo();
    QCOMPARE(states(), (QList<bool>{true, false, true}));
    toolbar.deleteSelected();
    QCOMPARE(states(), (QList<bool>{true, false, false}));
    QVERIFY(f.model->indexOfOverlay(box.id) == std::nullopt);
}

QTEST_MAIN(EditorToolbarTest)
#include "tst_editortoolbar.moc"
