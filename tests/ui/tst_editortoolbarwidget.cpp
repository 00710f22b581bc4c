#include "helpers/EditorWidgetFixture.h"

#include "ColorSwatchButton.h"
#include "EditorToolbarWidget.h"

#include "editor/EditorToolbar.h"

#include <QComboBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

QList<bool> chosen(const QList<ColorSwatchButton *> &swatches)
{
    QList<bool> states;
    for (const ColorSwatchButton *swatch : swatches)
        states.append(swatch->isChosen());
    return states;
}

} // namespace

class EditorToolbarWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void showsTheToolbarAsTheViewDescribesIt();
    void toolsModeAndActionsFollowTheDocument();
    void swatchesPickAndMarkTheColour();
    void styleControlsRestyleTheSelectedBox();
    void keysReachTheDocument();
};

void EditorToolbarWidgetTest::showsTheToolbarAsTheViewDescribesIt()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    EditorToolbarWidget *toolbar = f.widget.toolbar();
    QStringList titles;
    for (EditorTool tool : editortool::allCases())
        titles.append(toolbar->toolButton(tool)->text());
    QCOMPARE(titles, (QStringList{u"四角枠"_s, u"丸枠"_s, u"矢印"_s, u"フリーハンド"_s, u"モザイク"_s, u"文字入力"_s}));
    QCOMPARE(toolbar->drawModeButton()->text(), u"描画モード"_s);
    QCOMPARE(toolbar->editModeButton()->text(), u"編集モード"_s);
    QCOMPARE(toolbar->undoButton()->toolTip(), u"元に戻す (⌘Z)"_s);
    QCOMPARE(toolbar->redoButton()->toolTip(), u"やり直し (⌘⇧Z)"_s);
    QCOMPARE(toolbar->deleteButton()->toolTip(), u"選択したオーバーレイを削除"_s);
    QCOMPARE(toolbar->colorSwatches().size(), 10);
    QCOMPARE(toolbar->fillSwatches().size(), 10);
    QCOMPARE(toolbar->opacitySlider()->width(), 140);
    QCOMPARE(toolbar->fontSizeBox()->minimum(), 8);
    QCOMPARE(toolbar->fontSizeBox()->maximum(), 160);
    QVERIFY(toolbar->fontPicker()->count() >= QFontDatabase::families().size());
    QStringList labels;
    for (const QLabel *label : toolbar->findChildren<QLabel *>())
        labels.append(label->text());
    for (const QString &heading : {u"色"_s, u"塗り"_s, u"透過"_s, u"フォント"_s, u"サイズ"_s, u"ズーム"_s})
        QVERIFY2(labels.contains(heading), qPrintable(heading));
    QCOMPARE(f.widget.cancelButton()->text(), u"キャンセル"_s);
    QCOMPARE(f.widget.saveButton()->text(), u"決定"_s);
    QVERIFY(f.widget.saveButton()->isDefault());
}

void EditorToolbarWidgetTest::toolsModeAndActionsFollowTheDocument()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    EditorToolbarWidget *toolbar = f.widget.toolbar();
    QVERIFY(toolbar->toolButton(EditorTool::Rectangle)->isChecked());
    toolbar->toolButton(EditorTool::Arrow)->click();
    QCOMPARE(f.model->selectedTool(), EditorTool::Arrow);
    QVERIFY(!toolbar->toolButton(EditorTool::Rectangle)->isChecked());
    QVERIFY(toolbar->drawModeButton()->isChecked());

    QCOMPARE((QList<bool>{toolbar->undoButton()->isEnabled(), toolbar->redoButton()->isEnabled(),
                          toolbar->deleteButton()->isEnabled()}),
             (QList<bool>{false, false, false}));
    f.drag({{10, 10}, {90, 90}});
    QVERIFY(toolbar->undoButton()->isEnabled());
    toolbar->undoButton()->click();
    QVERIFY(f.model->overlays().isEmpty());
    QVERIFY(toolbar->redoButton()->isEnabled());
    toolbar->redoButton()->click();
    QCOMPARE(f.model->overlays().size(), 1);

    // Selecting in edit mode enables delete.
    toolbar->editModeButton()->click();
    QVERIFY(toolbar->editModeButton()->isChecked());
    f.drag({{50, 50}});
    QVERIFY(toolbar->deleteButton()->isEnabled());
    toolbar->deleteButton()->click();
    QVERIFY(f.model->overlays().isEmpty());
    QVERIFY(!toolbar->deleteButton()->isEnabled());
}

void EditorToolbarWidgetTest::swatchesPickAndMarkTheColour()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    EditorToolbarWidget *toolbar = f.widget.toolbar();
    toolbar->colorSwatches().at(5)->click();
    QVERIFY(EditorToolbar::sameColor(f.model->selectedColor(), EditorToolbar::presetColors().at(5)));
    QList<bool> expected(10, false);
    expected[5] = true;
    QCOMPARE(chosen(toolbar->colorSwatches()), expected);

    toolbar->opacitySlider()->setValue(5);
    toolbar->fillSwatches().at(2)->click();
    QColor fill = EditorToolbar::presetTextFillColors().at(2);
    fill.setAlphaF(0.5f);
    QVERIFY(EditorToolbar::sameColor(f.model->selectedTextFillColor(), fill));
    expected.fill(false);
    expected[2] = true;
    QCOMPARE(chosen(toolbar->fillSwatches()), expected);
    // The fill swatches show the opacity in use.
    QVERIFY(qAbs(toolbar->fillSwatches().at(0)->color().alphaF() - 0.5) < 0.01);
}

void EditorToolbarWidgetTest::styleControlsRestyleTheSelectedBox()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    EditorToolbarWidget *toolbar = f.widget.toolbar();
    toolbar->toolButton(EditorTool::Text)->click();
    f.drag({{50, 250}});

    toolbar->fontSizeBox()->setValue(48);
    QCOMPARE(f.model->overlays().first().fontSize, 48.0);
    const QString family = toolbar->fontPicker()->itemText(toolbar->fontPicker()->count() - 1);
    toolbar->fontPicker()->setCurrentIndex(toolbar->fontPicker()->count() - 1);
    emit toolbar->fontPicker()->activated(toolbar->fontPicker()->count() - 1);
    QCOMPARE(f.model->overlays().first().fontFamily, family);
    toolbar->colorSwatches().at(3)->click();
    QVERIFY(EditorToolbar::sameColor(f.model->overlays().first().color, EditorToolbar::presetColors().at(3)));
    // Undo shows the box as it was in the controls too.
    toolbar->undoButton()->click();
    toolbar->undoButton()->click();
    QCOMPARE(toolbar->fontSizeBox()->value(), 48);
    toolbar->undoButton()->click();
    QCOMPARE(toolbar->fontSizeBox()->value(), 20);
}

void EditorToolbarWidgetTest::keysReachTheDocument()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    QList<QImage> saved;
    int cancelled = 0;
    f.view->onSave = [&saved](const QImage &image) { saved.append(image); };
    f.view->onCancel = [&cancelled] { ++cancelled; };
    f.drag({{20, 20}, {120, 80}});
    f.widget.toolbar()->editModeButton()->click();
    const QList<std::pair<Qt::Key, Qt::KeyboardModifiers>> deleteKeys{
        {Qt::Key_Delete, {}}, {Qt::Key_Delete, Qt::ControlModifier}, {Qt::Key_Backspace, Qt::ControlModifier}};
    for (const auto &[key, modifiers] : deleteKeys) {
        f.drag({{120, 50}});
        QVERIFY(f.view->interaction().selectedOverlayID());
        f.key(key, modifiers);
        QVERIFY(f.model->overlays().isEmpty());
        f.key(Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(f.model->overlays().size(), 1);
    }
    // Return and keypad Enter save the flattened picture; cancel saves nothing.
    f.key(Qt::Key_Return);
    QCOMPARE(saved.size(), 1);
    QCOMPARE(saved.first().convertToFormat(QImage::Format_ARGB32),
             f.model->renderEditedImage().convertToFormat(QImage::Format_ARGB32));
    QVERIFY(saved.first() != EditorViewFixture::picture().convertToFormat(saved.first().format()));
    f.key(Qt::Key_Enter, Qt::KeypadModifier);
    QCOMPARE(saved.size(), 2);
    f.widget.cancelButton()->click();
    QCOMPARE(cancelled, 1);
    QCOMPARE(saved.size(), 2);
}

QTEST_MAIN(EditorToolbarWidgetTest)
#include "tst_editortoolbarwidget.moc"
