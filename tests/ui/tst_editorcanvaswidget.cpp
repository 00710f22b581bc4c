#include "helpers/EditorWidgetFixture.h"

#include "EditorToolbarWidget.h"
#include "EditorZoomControls.h"
#include "OverlayTextField.h"

#include "editor/EditorViewport.h"

#include <QApplication>
#include <QInputMethodEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

// Keeps the region of every paint event its widget gets.
class PaintRecorder final : public QObject
{
public:
    QList<QRegion> regions;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            regions.append(static_cast<QPaintEvent *>(event)->region());
        return false;
    }
};

} // namespace

class EditorCanvasWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void dragsLandAtImagePoints_data();
    void dragsLandAtImagePoints();
    void opensCentredOnTheImage();
    void drawingRepaintsOnlyWhatItTouches();
    void releaseIsOneRedraw_data();
    void releaseIsOneRedraw();
    void textBoxTakesTypingAndFollowsZoom();
    void japaneseComposesThroughTheInputMethod();
};

void EditorCanvasWidgetTest::dragsLandAtImagePoints_data()
{
    QTest::addColumn<int>("presetIndex"); // -1: none
    QTest::addColumn<int>("sliderValue"); // 0: left alone
    QTest::addColumn<bool>("reset");
    QTest::addColumn<double>("zoom");
    QTest::newRow("at 100%") << 1 << 0 << false << 1.0;
    QTest::newRow("at 200%") << 3 << 0 << false << 2.0;
    QTest::newRow("at 50%") << 0 << 0 << false << 0.5;
    QTest::newRow("slider at 150%") << -1 << 15 << false << 1.5;
    QTest::newRow("reset from 200%") << 3 << 0 << true << 1.0;
}

void EditorCanvasWidgetTest::dragsLandAtImagePoints()
{
    QFETCH(int, presetIndex);
    QFETCH(int, sliderValue);
    QFETCH(bool, reset);
    QFETCH(double, zoom);
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    EditorZoomControls *controls = f.widget.toolbar()->zoomControls();
    if (presetIndex >= 0)
        controls->presetButtons().at(presetIndex)->click();
    if (sliderValue > 0)
        controls->slider()->setValue(sliderValue);
    if (reset)
        controls->resetButton()->click();
    QCOMPARE(f.view->viewport().zoomScale(), zoom);
    QCOMPARE(controls->resetButton()->isEnabled(), zoom != 1.0);
    // 400 × 300 with a margin of 500 on every side, scaled.
    QCOMPARE(f.canvas()->size(), QSize(1400, 1300) * zoom);

    // Image points on the canvas, y up: a box from (40, 260) down to (160, 180).
    f.drag({{40, 260}, {100, 220}, {160, 180}});
    QCOMPARE(f.model->overlays().size(), 1);
    const Overlay box = f.model->overlays().first();
    QCOMPARE(box.type, EditorTool::Rectangle);
    QCOMPARE(box.startPoint, QPointF(40, 260));
    QCOMPARE(box.endPoint, QPointF(160, 180));
}

void EditorCanvasWidgetTest::opensCentredOnTheImage()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    f.scheduler.advance(1);
    QScrollArea *area = f.widget.scrollArea();
    const QPointF anchor = f.view->viewport().imageCenterAnchor();
    const QSize visible = area->viewport()->size();
    QCOMPARE(area->horizontalScrollBar()->value(), qRound(anchor.x() - visible.width() / 2.0));
    QCOMPARE(area->verticalScrollBar()->value(), qRound(anchor.y() - visible.height() / 2.0));
}

void EditorCanvasWidgetTest::drawingRepaintsOnlyWhatItTouches()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    f.scheduler.advance(1);
    f.drag({{40, 260}, {160, 180}});
    f.widget.toolbar()->toolButton(EditorTool::Mosaic)->click();
    f.drag({{200, 250}, {350, 150}});
    f.widget.toolbar()->toolButton(EditorTool::Freehand)->click();
    QApplication::processEvents();
    PaintRecorder recorder;
    f.canvas()->installEventFilter(&recorder);
    QTest::mousePress(f.canvas(), Qt::LeftButton, {}, f.at({60, 100}));
    for (QPointF point : {QPointF(70, 110), QPointF(80, 120), QPointF(90, 125), QPointF(95, 180), QPointF(150, 200)}) {
        QTest::mouseMove(f.canvas(), f.at(point));
        QApplication::processEvents();
    }
    // Each motion of 10 points repaints about its segment; the canvas is 1400 × 1300.
    QVERIFY(recorder.regions.size() >= 3);
    for (const QRegion &region : std::as_const(recorder.regions).first(3))
        QVERIFY2(region.boundingRect().width() <= 30 && region.boundingRect().height() <= 30,
                 qPrintable(u"repainted %1 × %2"_s.arg(region.boundingRect().width()).arg(region.boundingRect().height())));

    // What the window shows after those partial repaints, scrolled to the image, against the view painted
    // whole on a picture of its own.
    QImage expected(f.canvas()->size(), QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&expected);
    f.view->paintCanvas(painter);
    painter.end();
    const QImage window = f.widget.screen()->grabWindow(f.widget.winId()).toImage().convertToFormat(
        QImage::Format_ARGB32_Premultiplied);
    QWidget *viewport = f.widget.scrollArea()->viewport();
    const QRect visible(viewport->mapTo(&f.widget, QPoint(0, 0)), viewport->size());
    const QPoint canvasOrigin = f.canvas()->mapTo(&f.widget, QPoint(0, 0));
    QVERIFY(canvasOrigin.x() < 0 && canvasOrigin.y() < visible.top());
    QCOMPARE(window.copy(visible), expected.copy(visible.translated(-canvasOrigin)));
    QTest::mouseRelease(f.canvas(), Qt::LeftButton, {}, f.at({150, 200}));
}

void EditorCanvasWidgetTest::releaseIsOneRedraw_data()
{
    QTest::addColumn<bool>("drawMode");
    QTest::addColumn<QList<QPointF>>("path"); // image points, over a box from (100, 50) to (300, 250)
    QTest::addColumn<QRectF>("box"); // the box after the release
    QTest::addColumn<int>("steps");
    QTest::addColumn<int>("canvasSyncs"); // of size, text fields and painting
    QTest::addColumn<int>("toolbarRefreshes");
    const QRectF box(100, 50, 200, 200);
    QTest::newRow("end of a rectangle drag") << true << QList<QPointF>{{20, 20}, {40, 30}, {60, 40}} << box << 1 << 1 << 1;
    // Grabbed by its left edge, far from the corners: 30 right and 20 up.
    QTest::newRow("end of a move") << false << QList<QPointF>{{100, 150}, {115, 160}, {130, 170}} << box.translated(30, 20)
                                   << 1 << 1 << 1;
    QTest::newRow("end of a resize") << false << QList<QPointF>{{300, 250}, {320, 260}, {340, 270}}
                                     << box.adjusted(0, 0, 40, 20) << 1 << 1 << 1;
    // Only the handles are painted anew, and delete is enabled.
    QTest::newRow("a tap that selects") << false << QList<QPointF>{{200, 150}} << box << 0 << 0 << 1;
}

void EditorCanvasWidgetTest::releaseIsOneRedraw()
{
    QFETCH(bool, drawMode);
    QFETCH(QList<QPointF>, path);
    QFETCH(QRectF, box);
    QFETCH(int, steps);
    QFETCH(int, canvasSyncs);
    QFETCH(int, toolbarRefreshes);
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    f.drag({{100, 50}, {300, 250}});
    if (!drawMode)
        f.widget.toolbar()->editModeButton()->click();
    const qsizetype history = f.model->undoStack().size();
    QTest::mousePress(f.canvas(), Qt::LeftButton, {}, f.at(path.first()));
    for (qsizetype i = 1; i < path.size(); ++i)
        QTest::mouseMove(f.canvas(), f.at(path.at(i)));
    QSignalSpy announced(f.model.get(), &ImageEditorModel::changed);
    QSignalSpy redrawn(f.view.get(), &ImageEditorView::changed);

    QTest::mouseRelease(f.canvas(), Qt::LeftButton, {}, f.at(path.last()));
    QCOMPARE(f.model->overlays().first().rect().toQRectF(), box);
    QCOMPARE(f.model->undoStack().size() - history, steps);
    QCOMPARE(announced.count(), steps);
    QVERIFY(redrawn.count() <= 1);
    using Part = ImageEditorView::Part;
    const ImageEditorView::Parts parts = redrawn.isEmpty() ? ImageEditorView::Parts() : redrawn.first().first().value<ImageEditorView::Parts>();
    QCOMPARE(int(parts.testAnyFlags(Part::CanvasContent | Part::CanvasGeometry)), canvasSyncs);
    QCOMPARE(int(parts.testFlag(Part::Toolbar)), toolbarRefreshes);
}

void EditorCanvasWidgetTest::textBoxTakesTypingAndFollowsZoom()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    OverlayTextField *field = f.addTextBox({50, 250});
    QCOMPARE(f.model->overlays().size(), 1);
    const QUuid id = f.model->overlays().first().id;
    QVERIFY(field);
    QTRY_VERIFY(field->hasFocus());
    QCOMPARE(field->toPlainText(), u"テキスト"_s);
    QCOMPARE(field->geometry(), f.view->textFields().first().frame.toAlignedRect());

    // The placeholder is selected, so typing replaces it.
    QTest::keyClicks(field, u"Hi there"_s);
    QCOMPARE(f.model->overlays().first().text, u"Hi there"_s);
    // Ctrl+Z in the field is the document's undo, one typed character at a time; Backspace stays with the text.
    QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(f.model->overlays().first().text, u"Hi ther"_s);
    QCOMPARE(field->toPlainText(), u"Hi ther"_s);
    QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
    QCOMPARE(field->toPlainText(), u"Hi there"_s);
    QTest::keyClick(field, Qt::Key_Backspace);
    QCOMPARE(f.model->overlays().size(), 1);
    QCOMPARE(f.model->overlays().first().text, u"Hi ther"_s);
    QTest::keyClicks(field, u"e"_s);

    f.widget.toolbar()->zoomControls()->presetButtons().at(3)->click();
    QCOMPARE(field->geometry(), f.view->textFields().first().frame.toAlignedRect());
    QCOMPARE(field->font().pixelSize(), f.view->textFields().first().font.pixelSize());
    QCOMPARE(field->toPlainText(), u"Hi there"_s);

    // Deleting the box takes its field away.
    f.widget.toolbar()->deleteButton()->click();
    QVERIFY(!f.canvas()->textField(id));
}

void EditorCanvasWidgetTest::japaneseComposesThroughTheInputMethod()
{
    EditorWidgetFixture f;
    QVERIFY(f.isReady());
    OverlayTextField *field = f.addTextBox({50, 250});
    QVERIFY(field);
    QTRY_VERIFY(field->hasFocus());
    QVERIFY(field->testAttribute(Qt::WA_InputMethodEnabled));
    QVERIFY(field->inputMethodQuery(Qt::ImEnabled).toBool());
    QTest::keyClicks(field, u"Vistrel "_s);
    const qsizetype steps = f.model->undoStack().size();

    // Composing: the reading shows in the field, the document waits for the conversion.
    QInputMethodEvent composing(u"にほんご"_s, {});
    QApplication::sendEvent(field, &composing);
    QCOMPARE(field->inputMethodQuery(Qt::ImSurroundingText).toString(), u"Vistrel "_s);
    QCOMPARE(f.model->overlays().first().text, u"Vistrel "_s);
    QCOMPARE(f.model->undoStack().size(), steps);

    QInputMethodEvent committed;
    committed.setCommitString(u"日本語"_s);
    QApplication::sendEvent(field, &committed);
    QCOMPARE(field->toPlainText(), u"Vistrel 日本語"_s);
    QCOMPARE(f.model->overlays().first().text, u"Vistrel 日本語"_s);
    QCOMPARE(f.model->undoStack().size(), steps + 1);

    QInputMethodEvent more(u"てすと"_s, {});
    QApplication::sendEvent(field, &more);
    QInputMethodEvent done;
    done.setCommitString(u"テスト"_s);
    QApplication::sendEvent(field, &done);
    QCOMPARE(f.model->overlays().first().text, u"Vistrel 日本語テスト"_s);
}

QTEST_MAIN(EditorCanvasWidgetTest)
#include "tst_editorcanvaswidget.moc"
