#include "helpers/EditorViewFixture.h"

#include "editor/SystemColors.h"

#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// The canvas as the widget paints it.
QImage paintedCanvas(const ImageEditorView &view)
{
    const QSize size = view.viewport().zoomedCanvasSize().toSize();
    QImage canvas(size, QImage::Format_RGB32);
    canvas.fill(Qt::black);
    QPainter painter(&canvas);
    view.paintCanvas(painter);
    return canvas;
}

// A picture with some structure, so that mosaics and misplaced drawing show.
QImage pattern()
{
    QImage image(200, 120, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, qRgb((x * 5) % 256, (y * 7) % 256, ((x + y) * 3) % 256));
    return image;
}

int largestChannelDifference(const QImage &a, const QImage &b)
{
    int largest = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            largest = std::max({largest, std::abs(qRed(p) - qRed(q)), std::abs(qGreen(p) - qGreen(q)),
                                std::abs(qBlue(p) - qBlue(q))});
        }
    return largest;
}

} // namespace

class EditorCanvasTest : public QObject
{
    Q_OBJECT

private slots:
    void canvasShowsWhatIsSaved();
    void textIsLeftToTheFields();
    void handlesArePainted();
    void saveDeliversTheFlattenedPicture();
};

void EditorCanvasTest::canvasShowsWhatIsSaved()
{
    EditorViewFixture f;
    f.model->setImage(pattern());
    f.place(EditorTool::Rectangle, {20, 20}, {90, 70});
    f.place(EditorTool::Arrow, {100, 10}, {180, 90});
    f.place(EditorTool::Mosaic, {120, 60}, {190, 110});
    Overlay stroke = f.place(EditorTool::Freehand, {10, 100}, {60, 110});
    stroke.points = {{10, 100}, {30, 110}, {60, 104}};
    f.model->replaceOverlay(stroke);

    const QImage canvas = paintedCanvas(f.view);
    const QImage shown = canvas.copy(f.view.viewport().imageFrameInCanvas().toRect());
    const QImage saved = f.model->renderEditedImage().convertToFormat(QImage::Format_RGB32);
    QCOMPARE(shown.size(), saved.size());
    QVERIFY2(largestChannelDifference(shown, saved) <= 2, "the canvas differs from the saved picture");
    QCOMPARE(canvas.pixelColor(5, 5), ImageEditorView::canvasBackground);
}

void EditorCanvasTest::textIsLeftToTheFields()
{
    EditorViewFixture f;
    f.model->setImage(pattern());
    f.model->setSelectedTextFillColor(QColor(255, 255, 255));
    f.model->setSelectedTextFontSize(30);
    const Overlay box = f.add(EditorTool::Text, {10, 10}, {10, 10});
    f.view.viewport().setZoomScale(2);

    const QImage canvas = paintedCanvas(f.view);
    const QRectF inView = f.view.viewport().overlayRectInView(box);
    QCOMPARE(inView, QRectF(1020, 1000 + 2 * (120 - 82), 520, 144));
    // Inside the border the box is plain fill: the text is the field's.
    const QRect inside = inView.adjusted(12, 12, -12, -12).toRect();
    for (int y = inside.top(); y <= inside.bottom(); y += 3)
        for (int x = inside.left(); x <= inside.right(); x += 3)
            QCOMPARE(canvas.pixel(x, y), qRgb(255, 255, 255));

    const ImageEditorView::TextField field = f.view.textFields().first();
    QCOMPARE(field.frame, inView.adjusted(8, 4, -8, -4));
    QCOMPARE(field.font.pixelSize(), 60);
    QCOMPARE(field.text, u"テキスト"_s);
    QCOMPARE(field.textColor, box.color);
    f.scheduler.runUntilIdle();
    QVERIFY(f.view.textFields().first().acceptsPointer);
    f.interaction().setDrawMode(true);
    QVERIFY(!f.view.textFields().first().acceptsPointer);
}

void EditorCanvasTest::handlesArePainted()
{
    EditorViewFixture f;
    const Overlay frame = f.add(EditorTool::Rectangle, {50, 50}, {150, 100});
    f.interaction().setSelectedOverlayID(frame.id);
    const QImage canvas = paintedCanvas(f.view);
    for (const ImageEditorView::Handle &handle : f.view.handles()) {
        const QPoint centre = handle.center.toPoint();
        QCOMPARE(canvas.pixelColor(centre), QColor(Qt::white));
        QCOMPARE(canvas.pixelColor(centre + QPoint(5, 0)), systemcolors::systemRed()); // wholly on the ring
    }
    QCOMPARE(f.view.handles().size(), 4);
}

void EditorCanvasTest::saveDeliversTheFlattenedPicture()
{
    EditorViewFixture f;
    f.add(EditorTool::Rectangle, {-20, 10}, {40, 40});
    QList<QImage> saved;
    f.view.onSave = [&saved](const QImage &image) { saved.append(image); };
    f.view.save();
    QCOMPARE(saved, QList<QImage>{f.model->renderEditedImage()});
    QCOMPARE(saved.first().width(), 400 + 22); // grown to the left by the overlay and its stroke

    f.model->setImage(QImage());
    f.view.save();
    QVERIFY(saved.last().isNull()); // nothing to flatten: the picture as it is
}

QTEST_MAIN(EditorCanvasTest)
#include "tst_editorcanvas.moc"
