#include "PixelDifference.h"
#include "TestPrinters.h"
#include "helpers/EditorViewFixture.h"

#include "editor/SystemColors.h"

#include <QPainter>
#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(EditorTool)

namespace {

// The canvas as the widget paints it on a screen of `ratio` device pixels per point.
QImage paintedCanvas(const ImageEditorView &view, double ratio = 1)
{
    const QSize size = (view.viewport().zoomedCanvasSize() * ratio).toSize();
    QImage canvas(size, QImage::Format_RGB32);
    canvas.setDevicePixelRatio(ratio);
    canvas.fill(Qt::black);
    QPainter painter(&canvas);
    view.paintCanvas(painter);
    return canvas;
}

} // namespace

class CanvasDrawingTest : public QObject
{
    Q_OBJECT

private slots:
    void dragDrawsOneOverlayOfTheTool_data();
    void dragDrawsOneOverlayOfTheTool();
    void overlayBeingDrawnIsNotInTheDocumentUntilReleased();
    void textToolMakesABoxWhoseTextIsLeftToTheField();
    void freehandTakesPointsFarEnoughApart();
    void canvasShowsWhatIsSaved_data();
    void canvasShowsWhatIsSaved();
    void handlesOfTheSelectionArePainted();
};

void CanvasDrawingTest::dragDrawsOneOverlayOfTheTool_data()
{
    QTest::addColumn<EditorTool>("tool");
    QTest::addColumn<QList<QPointF>>("path");
    QTest::addColumn<QPointF>("end");
    QTest::addColumn<QList<QPointF>>("points");
    const QList<QPointF> drag{{10, 250}, {60, 200}, {110, 170}};
    // As drawn, not normalised: an arrow points from the press to the release.
    for (EditorTool tool : {EditorTool::Rectangle, EditorTool::Circle, EditorTool::Arrow, EditorTool::Mosaic})
        QTest::newRow(qPrintable(editortool::rawValue(tool))) << tool << drag << QPointF(110, 170) << QList<QPointF>();
    const QList<QPointF> click{{10, 250}};
    QTest::newRow("click: rectangle of no size") << EditorTool::Rectangle << click << click.first() << QList<QPointF>();
    QTest::newRow("click: freehand dot of two points") << EditorTool::Freehand << click << click.first()
                                                       << QList<QPointF>{click.first(), click.first()};
}

void CanvasDrawingTest::dragDrawsOneOverlayOfTheTool()
{
    QFETCH(EditorTool, tool);
    QFETCH(QList<QPointF>, path);
    QFETCH(QPointF, end);
    QFETCH(QList<QPointF>, points);
    EditorViewFixture f;
    f.model->setSelectedTool(tool);
    QList<QPointF> inView;
    for (QPointF point : path)
        inView.append(f.at(point.x(), point.y()));
    f.drag(inView);

    QCOMPARE(f.model->overlays().size(), 1);
    const Overlay overlay = f.model->overlays().first();
    QCOMPARE(overlay.type, tool);
    QCOMPARE(overlay.startPoint, QPointF(10, 250));
    QCOMPARE(overlay.endPoint, end);
    QCOMPARE(overlay.points.list(), points);
    QCOMPARE(f.model->undoStack(), QList<QList<Overlay>>(1)); // one step, back to nothing
    QVERIFY(!f.interaction().activeOverlay());
    QVERIFY(f.interaction().isDrawMode());
    QVERIFY(!f.interaction().selectedOverlayID());
}

void CanvasDrawingTest::overlayBeingDrawnIsNotInTheDocumentUntilReleased()
{
    EditorViewFixture f;
    f.view.pointerPressed(f.at(10, 10));
    f.view.pointerMoved(f.at(50, 50));
    QVERIFY(f.interaction().activeOverlay());
    QCOMPARE(f.interaction().activeOverlay()->endPoint, QPointF(50, 50));
    QVERIFY(f.model->overlays().isEmpty());
    QVERIFY(!f.model->canUndo());
    // Its styles are read at the first move, the saved fill among them, and kept for the drag.
    const QColor fill = f.interaction().activeOverlay()->textFillColor;
    for (const QString &component : {u"red"_s, u"green"_s, u"blue"_s, u"alpha"_s})
        f.store.values.insert(u"VistrelEditorTextFillColor."_s + component, 0.5);
    f.view.pointerMoved(f.at(60, 40));
    QCOMPARE(f.interaction().activeOverlay()->endPoint, QPointF(60, 40));
    QCOMPARE(f.interaction().activeOverlay()->textFillColor, fill);
    // A cancel drops it.
    f.view.pointerCancelled();
    QVERIFY(!f.interaction().activeOverlay());
}

void CanvasDrawingTest::textToolMakesABoxWhoseTextIsLeftToTheField()
{
    EditorViewFixture f;
    f.model->setImage(EditorViewFixture::pattern());
    f.model->setSelectedColor(Qt::green);
    f.model->setSelectedTextFillColor(QColor(255, 255, 255));
    f.model->setSelectedTextFontFamily(u"Serif"_s);
    f.model->setSelectedTextFontSize(30);
    f.model->setSelectedTool(EditorTool::Text);
    // The movement of the drag does not matter.
    f.drag({f.at(10, 10), f.at(90, -70)});

    const Overlay box = f.model->overlays().first();
    QCOMPARE(box.type, EditorTool::Text);
    QCOMPARE(box.text, u"テキスト"_s);
    QCOMPARE(box.rect(), Rect(10, 10, 260, 72));
    // The model's styles, the text ones included.
    QCOMPARE(box.color, QColor(Qt::green));
    QCOMPARE(box.fontFamily, u"Serif"_s);
    QCOMPARE(box.fontSize, 30.0);
    QCOMPARE(f.interaction().selectedOverlayID(), std::optional(box.id));
    QVERIFY(!f.interaction().isDrawMode());
    QVERIFY(!f.interaction().focusedTextOverlayID()); // once its field exists

    f.view.viewport().setZoomScale(2);
    const QImage canvas = paintedCanvas(f.view);
    const QRectF inView = f.view.viewport().overlayRectInView(box);
    QCOMPARE(inView, QRectF(1020, 1000 + 2 * (120 - 82), 520, 144));
    // Inside the border the box is plain fill: the text is the field's.
    const QRect inside = inView.adjusted(12, 12, -12, -12).toRect();
    for (int y = inside.top(); y <= inside.bottom(); y += 3)
        for (int x = inside.left(); x <= inside.right(); x += 3)
            QCOMPARE(canvas.pixel(x, y), qRgb(255, 255, 255));
    QCOMPARE(f.view.textFields().size(), 1);
    const ImageEditorView::TextField field = f.view.textFields().first();
    QCOMPARE(field.frame, inView.adjusted(8, 4, -8, -4));
    QCOMPARE(field.font.pixelSize(), 60);
    QCOMPARE(field.text, u"テキスト"_s);
    QCOMPARE(field.textColor, box.color);

    f.scheduler.runUntilIdle();
    QCOMPARE(f.interaction().focusedTextOverlayID(), std::optional(box.id));
    QVERIFY(f.view.textFields().first().isFocused);
    QVERIFY(f.view.textFields().first().acceptsPointer);
    f.interaction().setDrawMode(true);
    QVERIFY(!f.view.textFields().first().acceptsPointer);
}

void CanvasDrawingTest::freehandTakesPointsFarEnoughApart()
{
    EditorViewFixture f;
    f.model->setSelectedTool(EditorTool::Freehand);
    f.view.pointerPressed(f.at(0, 0));
    f.view.pointerMoved(f.at(1, 0)); // the stroke starts with the press and this point
    f.view.pointerMoved(f.at(2, 0)); // 1.0 from the last point
    f.view.pointerMoved(f.at(2.4, 0)); // 1.4
    f.view.pointerMoved(f.at(2.5, 0)); // 1.5
    f.view.pointerMoved(f.at(3.5, 0)); // 1.0
    QCOMPARE(f.interaction().activeOverlay()->points.list(), (QList<QPointF>{{0, 0}, {1, 0}, {2.5, 0}}));
    QCOMPARE(f.interaction().activeOverlay()->endPoint, QPointF(3.5, 0));
    // At the end 1.0 is enough.
    f.view.pointerReleased(f.at(3.5, 0));
    QCOMPARE(f.model->overlays().first().points.list(), (QList<QPointF>{{0, 0}, {1, 0}, {2.5, 0}, {3.5, 0}}));

    f.drag({f.at(50, 50), f.at(60, 50), f.at(60.9, 50)});
    QCOMPARE(f.model->overlays().last().points.list(), (QList<QPointF>{{50, 50}, {60, 50}}));
}

void CanvasDrawingTest::canvasShowsWhatIsSaved_data()
{
    QTest::addColumn<double>("ratio");
    QTest::newRow("one pixel per point") << 1.0;
    QTest::newRow("HiDPI capture on a HiDPI screen") << 2.0;
}

void CanvasDrawingTest::canvasShowsWhatIsSaved()
{
    QFETCH(double, ratio);
    EditorViewFixture f;
    f.model->setImage(EditorViewFixture::pattern(ratio));
    f.place(EditorTool::Rectangle, {20, 20}, {90, 70});
    f.place(EditorTool::Arrow, {100, 10}, {180, 90});
    f.place(EditorTool::Mosaic, {120, 60}, {190, 110});
    Overlay stroke = f.place(EditorTool::Freehand, {10, 100}, {60, 110});
    stroke.points = {{10, 100}, {30, 110}, {60, 104}};
    f.model->replaceOverlay(stroke);

    const QImage canvas = paintedCanvas(f.view, ratio);
    // At 100 % the picture takes the points it took on screen, each of its pixels one device pixel.
    const QRectF frame = f.view.viewport().imageFrameInCanvas();
    QCOMPARE(frame.size(), QSizeF(EditorViewFixture::pattern().size()) / ratio);
    const QImage shown = canvas.copy(QRectF(frame.topLeft() * ratio, frame.size() * ratio).toRect());
    const QImage saved = f.model->renderEditedImage().convertToFormat(QImage::Format_RGB32);
    QCOMPARE(saved.size(), EditorViewFixture::pattern().size());
    QCOMPARE(shown.size(), saved.size());
    QVERIFY2(testsupport::largestChannelDifference(shown, saved) <= 2, "the canvas differs from the saved picture");
    QCOMPARE(canvas.pixelColor(5, 5), ImageEditorView::canvasBackground);
}

void CanvasDrawingTest::handlesOfTheSelectionArePainted()
{
    EditorViewFixture f;
    const Overlay frame = f.add(EditorTool::Rectangle, {10, 20}, {50, 40});
    QVERIFY(f.view.handles().isEmpty());
    f.interaction().setSelectedOverlayID(frame.id);
    const QImage canvas = paintedCanvas(f.view);
    QList<QPointF> centres;
    for (const ImageEditorView::Handle &handle : f.view.handles()) {
        centres.append(handle.center);
        const QPoint centre = handle.center.toPoint();
        QCOMPARE(canvas.pixelColor(centre), QColor(Qt::white));
        QCOMPARE(canvas.pixelColor(centre + QPoint(5, 0)), systemcolors::systemRed()); // wholly on the ring
    }
    // Bottom-left, bottom-right, top-right, top-left on screen; the same size at any zoom.
    QCOMPARE(centres, (QList<QPointF>{{510, 780}, {550, 780}, {550, 760}, {510, 760}}));
    const double diameter = f.view.handles().first().diameter;
    f.view.viewport().setZoomScale(2);
    QCOMPARE(f.view.handles().first().diameter, diameter);

    f.model->setSelectedTool(EditorTool::Freehand);
    f.drag({f.at(0, 0), f.at(10, 10)});
    f.interaction().setSelectedOverlayID(f.model->overlays().last().id);
    QVERIFY(f.view.handles().isEmpty());
}

QTEST_MAIN(CanvasDrawingTest)
#include "tst_canvasdrawing.moc"
