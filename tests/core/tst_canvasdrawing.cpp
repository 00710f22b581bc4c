#include "TestPrinters.h"
#include "helpers/EditorViewFixture.h"

#include <QTest>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(EditorTool)

class CanvasDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void dragDrawsOneOverlayOfTheTool_data();
    void dragDrawsOneOverlayOfTheTool();
    void clickWithoutMovementStillDraws_data();
    void clickWithoutMovementStillDraws();
    void overlayBeingDrawnIsNotInTheDocument();
    void textToolMakesABoxToTypeIn();
    void freehandTakesPointsFarEnoughApart();
    void newOverlaysTakeTheModelStyles();
    void cancelledDrawAddsNothing();
    void mappingStaysFrozenWhileDrawing();
};

void CanvasDrawingTest::dragDrawsOneOverlayOfTheTool_data()
{
    QTest::addColumn<EditorTool>("tool");
    for (EditorTool tool : {EditorTool::Rectangle, EditorTool::Circle, EditorTool::Arrow, EditorTool::Mosaic})
        QTest::newRow(qPrintable(editortool::rawValue(tool))) << tool;
}

void CanvasDrawingTest::dragDrawsOneOverlayOfTheTool()
{
    QFETCH(EditorTool, tool);
    EditorViewFixture f;
    f.model->setSelectedTool(tool);
    f.drag({f.at(10, 250), f.at(60, 200), f.at(110, 170)});

    QCOMPARE(f.model->overlays().size(), 1);
    const Overlay overlay = f.model->overlays().first();
    QCOMPARE(overlay.type, tool);
    // As drawn, not normalised: an arrow points from the press to the release.
    QCOMPARE(overlay.startPoint, QPointF(10, 250));
    QCOMPARE(overlay.endPoint, QPointF(110, 170));
    QCOMPARE(f.undoSteps(), 1);
    QCOMPARE(f.model->undoStack().first(), QList<Overlay>());
    QVERIFY(!f.interaction().activeOverlay());
    QVERIFY(!f.view.viewport().interactionCanvasImageRect());
    QVERIFY(f.interaction().isDrawMode());
    QVERIFY(!f.interaction().selectedOverlayID());
}

void CanvasDrawingTest::clickWithoutMovementStillDraws_data()
{
    QTest::addColumn<EditorTool>("tool");
    QTest::addColumn<QPointF>("end");
    QTest::addColumn<QList<QPointF>>("points");
    QTest::newRow("rectangle of no size") << EditorTool::Rectangle << QPointF(30, 40) << QList<QPointF>();
    QTest::newRow("arrow dot") << EditorTool::Arrow << QPointF(30, 40) << QList<QPointF>();
    QTest::newRow("freehand dot of two points") << EditorTool::Freehand << QPointF(30, 40)
                                                << QList<QPointF>{{30, 40}, {30, 40}};
    QTest::newRow("text box of full size") << EditorTool::Text << QPointF(290, 112) << QList<QPointF>();
}

void CanvasDrawingTest::clickWithoutMovementStillDraws()
{
    QFETCH(EditorTool, tool);
    QFETCH(QPointF, end);
    QFETCH(QList<QPointF>, points);
    EditorViewFixture f;
    f.model->setSelectedTool(tool);
    f.click(f.at(30, 40));
    QCOMPARE(f.model->overlays().size(), 1);
    QCOMPARE(f.model->overlays().first().startPoint, QPointF(30, 40));
    QCOMPARE(f.model->overlays().first().endPoint, end);
    QCOMPARE(f.model->overlays().first().points, points);
    QCOMPARE(f.undoSteps(), 1);
}

void CanvasDrawingTest::overlayBeingDrawnIsNotInTheDocument()
{
    EditorViewFixture f;
    f.pointer().pointerPressed(f.at(10, 10));
    f.pointer().pointerMoved(f.at(50, 50));
    QVERIFY(f.interaction().activeOverlay());
    QCOMPARE(f.interaction().activeOverlay()->endPoint, QPointF(50, 50));
    QVERIFY(f.model->overlays().isEmpty());
    QVERIFY(!f.model->canUndo());
    QVERIFY(f.view.viewport().interactionCanvasImageRect());
}

void CanvasDrawingTest::textToolMakesABoxToTypeIn()
{
    EditorViewFixture f;
    f.model->setSelectedTool(EditorTool::Text);
    // The movement of the drag does not matter.
    f.drag({f.at(100, 100), f.at(180, 20)});

    const Overlay box = f.model->overlays().first();
    QCOMPARE(box.type, EditorTool::Text);
    QCOMPARE(box.text, u"テキスト"_s);
    QCOMPARE(box.rect(), Rect(100, 100, 260, 72));
    QCOMPARE(f.interaction().selectedOverlayID(), std::optional(box.id));
    QVERIFY(!f.interaction().isDrawMode());
    QVERIFY(!f.interaction().focusedTextOverlayID()); // once its field exists
    f.scheduler.runUntilIdle();
    QCOMPARE(f.interaction().focusedTextOverlayID(), std::optional(box.id));
    QCOMPARE(f.view.textFields().size(), 1);
    QVERIFY(f.view.textFields().first().isFocused);
}

void CanvasDrawingTest::freehandTakesPointsFarEnoughApart()
{
    EditorViewFixture f;
    f.model->setSelectedTool(EditorTool::Freehand);
    f.pointer().pointerPressed(f.at(0, 0));
    f.pointer().pointerMoved(f.at(1, 0)); // the stroke starts with the press and this point
    f.pointer().pointerMoved(f.at(2, 0)); // 1.0 from the last point
    f.pointer().pointerMoved(f.at(2.4, 0)); // 1.4
    f.pointer().pointerMoved(f.at(2.5, 0)); // 1.5
    f.pointer().pointerMoved(f.at(3.5, 0)); // 1.0
    QCOMPARE(f.interaction().activeOverlay()->points, (QList<QPointF>{{0, 0}, {1, 0}, {2.5, 0}}));
    QCOMPARE(f.interaction().activeOverlay()->endPoint, QPointF(3.5, 0));
    // At the end 1.0 is enough.
    f.pointer().pointerReleased(f.at(3.5, 0));
    QCOMPARE(f.model->overlays().first().points, (QList<QPointF>{{0, 0}, {1, 0}, {2.5, 0}, {3.5, 0}}));

    f.drag({f.at(50, 50), f.at(60, 50), f.at(60.9, 50)});
    QCOMPARE(f.model->overlays().last().points, (QList<QPointF>{{50, 50}, {60, 50}}));
}

void CanvasDrawingTest::newOverlaysTakeTheModelStyles()
{
    EditorViewFixture f;
    f.model->setSelectedColor(Qt::green);
    f.model->setSelectedTextFillColor(QColor(10, 20, 30, 128));
    f.model->setSelectedTextFontFamily(u"Serif"_s);
    f.model->setSelectedTextFontSize(33);
    const Overlay box = f.add(EditorTool::Text, {0, 0}, {0, 0});
    QCOMPARE(box.color, QColor(Qt::green));
    QCOMPARE(box.textFillColor, QColor(10, 20, 30, 128));
    QCOMPARE(box.fontFamily, u"Serif"_s);
    QCOMPARE(box.fontSize, 33.0);
    const Overlay frame = f.add(EditorTool::Rectangle, {0, 0}, {5, 5});
    QCOMPARE(frame.color, QColor(Qt::green));
    QCOMPARE(frame.fontFamily, u"Helvetica"_s);
}

void CanvasDrawingTest::cancelledDrawAddsNothing()
{
    EditorViewFixture f;
    f.pointer().pointerPressed(f.at(10, 10));
    f.pointer().pointerMoved(f.at(50, 50));
    f.pointer().pointerCancelled();
    f.pointer().pointerReleased(f.at(50, 50));
    QVERIFY(f.model->overlays().isEmpty());
    QVERIFY(!f.interaction().activeOverlay());
    QVERIFY(!f.model->canUndo());
}

void CanvasDrawingTest::mappingStaysFrozenWhileDrawing()
{
    EditorViewFixture f;
    const QPointF press = f.at(0, 300);
    f.pointer().pointerPressed(press);
    f.pointer().pointerMoved(press + QPointF(10, 10));
    // A picture of another size would move the canvas; the drag keeps the mapping it began with.
    f.model->setImage(EditorViewFixture::picture(800, 600));
    f.view.viewport().setZoomScale(2);
    f.pointer().pointerReleased(press + QPointF(20, 20));
    QCOMPARE(f.model->overlays().first().startPoint, QPointF(-250, 550));
    QCOMPARE(f.model->overlays().first().endPoint, QPointF(-240, 540));
}

QTEST_MAIN(CanvasDrawingTest)
#include "tst_canvasdrawing.moc"
