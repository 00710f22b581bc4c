#include "TestPrinters.h"
#include "helpers/EditorViewFixture.h"

#include <QPainter>
#include <QTest>

#include <optional>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(EditorTool)

namespace {

// The image's frame as a widget scrolled to it shows it on a screen of `ratio`, repainted only inside
// `damage` (canvas view points) when that is given.
void paintFrame(QImage &screen, const ImageEditorView &view, double ratio, const std::optional<QRegion> &damage)
{
    const QRectF frame = view.viewport().imageFrameInCanvas();
    if (screen.isNull()) {
        screen = QImage((frame.size() * ratio).toSize(), QImage::Format_RGB32);
        screen.setDevicePixelRatio(ratio);
        screen.fill(Qt::black);
    }
    const QRegion exposed = damage ? *damage : QRegion(frame.toAlignedRect());
    QPainter painter(&screen);
    painter.translate(-frame.topLeft());
    painter.setClipRegion(exposed);
    view.paintCanvas(painter, exposed);
}

} // namespace

// The canvas repaints only what a change touched: what it shows after such repaints is what a whole
// repaint shows, and the area stays near what the change touched.
class CanvasRepaintTest : public QObject
{
    Q_OBJECT

private slots:
    void partialRepaintsShowWhatAFullRepaintShows_data();
    void partialRepaintsShowWhatAFullRepaintShows();
    void motionRepaintsAboutWhatItTouched_data();
    void motionRepaintsAboutWhatItTouched();
};

void CanvasRepaintTest::partialRepaintsShowWhatAFullRepaintShows_data()
{
    QTest::addColumn<EditorTool>("tool");
    QTest::addColumn<QString>("gesture"); // draw a new overlay, or move or resize one of the tool
    QTest::addColumn<double>("zoom");
    QTest::addColumn<double>("ratio");
    QTest::addColumn<bool>("annotated");
    for (EditorTool tool : editortool::allCases())
        for (const QString &gesture : {u"draw"_s, u"move"_s, u"resize"_s})
            for (double zoom : {1.0, 0.5, 2.0})
                for (double ratio : {1.0, 2.0})
                    for (bool annotated : {false, true}) {
                        if (gesture == u"resize"_s && tool == EditorTool::Freehand)
                            continue; // strokes only move
                        QTest::addRow("%s: %s at %g on a %gx screen%s", qPrintable(gesture),
                                      qPrintable(editortool::rawValue(tool)), zoom, ratio,
                                      annotated ? " over annotations" : "")
                            << tool << gesture << zoom << ratio << annotated;
                    }
}

void CanvasRepaintTest::partialRepaintsShowWhatAFullRepaintShows()
{
    QFETCH(EditorTool, tool);
    QFETCH(QString, gesture);
    QFETCH(double, zoom);
    QFETCH(double, ratio);
    QFETCH(bool, annotated);
    EditorViewFixture f;
    f.model->setImage(EditorViewFixture::pattern());
    if (annotated) {
        f.place(EditorTool::Rectangle, {20, 20}, {90, 70});
        f.place(EditorTool::Arrow, {100, 10}, {60, 60});
        f.place(EditorTool::Mosaic, {40, 30}, {110, 95});
        f.place(EditorTool::Text, {70, 50}, {150, 80});
        Overlay stroke = f.place(EditorTool::Freehand, {10, 100}, {60, 110});
        stroke.points = {{10, 100}, {50, 40}, {80, 90}};
        f.model->replaceOverlay(stroke);
    }
    f.view.viewport().setZoomScale(zoom);
    f.model->setSelectedTool(tool);
    // It grows, shrinks and turns back, so that places it left must be repainted too.
    QList<QPointF> path{{30, 30}, {35, 33}, {80, 60}, {120, 90}, {70, 75}, {50, 40}, {52, 41}, {90, 20}};
    if (gesture != u"draw"_s) {
        Overlay edited = f.place(tool, {40, 30}, {110, 90});
        if (tool == EditorTool::Freehand) {
            edited.points = {{40, 30}, {75, 60}, {110, 90}};
            f.model->replaceOverlay(edited);
        }
        f.editMode();
        f.interaction().setSelectedOverlayID(edited.id);
        // Moved by a point on its outline, resized by its end corner.
        const bool onLine = tool == EditorTool::Arrow || tool == EditorTool::Freehand;
        const QPointF grip = gesture == u"resize"_s ? QPointF(110, 90) : onLine ? QPointF(75, 60) : QPointF(40, 60);
        for (QPointF &point : path)
            point += grip - path.first();
    }

    QImage screen;
    paintFrame(screen, f.view, ratio, std::nullopt);
    f.view.pointerPressed(f.at(path.first().x(), path.first().y()));
    int repaints = 0;
    bool isDragging = true;
    // Connected for this scope only, however the test leaves it.
    QObject repainting;
    connect(&f.view, &ImageEditorView::changed, &repainting, [&](ImageEditorView::Parts parts) {
        if (!(parts & (ImageEditorView::Part::CanvasPaint | ImageEditorView::Part::CanvasContent)))
            return;
        // The text fields are laid out again only while a text box moves under them.
        if (isDragging)
            QCOMPARE(bool(parts & ImageEditorView::Part::CanvasContent),
                     tool == EditorTool::Text && gesture != u"draw"_s);
        QVERIFY(!(parts & ImageEditorView::Part::CanvasGeometry));
        QVERIFY(f.view.canvasDamage());
        paintFrame(screen, f.view, ratio, f.view.canvasDamage());
        ++repaints;
    });
    auto showsAsFresh = [&] {
        QImage fresh;
        paintFrame(fresh, f.view, ratio, std::nullopt);
        return screen == fresh;
    };
    for (QPointF point : path.mid(1)) {
        f.view.pointerMoved(f.at(point.x(), point.y()));
        QVERIFY(showsAsFresh());
    }
    QCOMPARE(repaints, path.size() - 1);
    isDragging = false;
    // The release adds the drawing or closes the edit; undo and redo take it back and forth.
    // A little off the last motion, as a release event may be.
    f.view.pointerReleased(f.at(path.last().x() + 4, path.last().y() - 3));
    QVERIFY2(showsAsFresh(), "after the release");
    f.model->undoLastAction();
    QVERIFY2(showsAsFresh(), "after undo");
    f.model->redoLastAction();
    QVERIFY2(showsAsFresh(), "after redo");
    f.editMode();
    if (annotated) {
        // Another overlay selected by a tap: the handles go from one to the other.
        f.click(f.at(100, 90));
        QVERIFY(f.interaction().selectedOverlayID());
        QVERIFY2(showsAsFresh(), "after a tap selected another overlay");
    }
    f.interaction().setSelectedOverlayID(f.model->overlays().last().id);
    f.interaction().deleteSelectedOverlay();
    QVERIFY2(showsAsFresh(), "after deleting the selected overlay");
}

void CanvasRepaintTest::motionRepaintsAboutWhatItTouched_data()
{
    QTest::addColumn<EditorTool>("tool");
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<int>("most"); // the largest repaint the last motion may ask for, in square view points
    // 10 points on, at the end of a long stroke: the new segment, its width and edge smoothing.
    QTest::newRow("freehand") << EditorTool::Freehand << QPointF(100, 100) << QPointF(3000, 1800) << 20 * 20;
    // The lines of the old and the new rectangle, not the canvas nor the 330 × 230 box around them.
    QTest::newRow("rectangle") << EditorTool::Rectangle << QPointF(1000, 1000) << QPointF(1300, 1200) << 16000;
    // The old and the new box, line and smoothing included (about 312 × 212 each, mostly overlapping).
    QTest::newRow("ellipse") << EditorTool::Circle << QPointF(1000, 1000) << QPointF(1300, 1200) << 70000;
    // The boxes of the old and the new outline, whose head reaches past the drag's box.
    QTest::newRow("arrow") << EditorTool::Arrow << QPointF(1000, 1000) << QPointF(1300, 1200) << 67000;
}

void CanvasRepaintTest::motionRepaintsAboutWhatItTouched()
{
    QFETCH(EditorTool, tool);
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(int, most);
    EditorViewFixture f;
    f.model->setImage(EditorViewFixture::picture(3840, 2160));
    for (int i = 0; i < 50; ++i)
        f.place(EditorTool::Rectangle, {40.0 + i * 70, 40.0 + i * 40}, {300.0 + i * 70, 200.0 + i * 40});
    f.model->setSelectedTool(tool);
    f.view.pointerPressed(f.at(from.x(), from.y()));
    for (int step = 1; step <= 100; ++step) {
        const QPointF point = from + (to - from) * step / 100;
        f.view.pointerMoved(f.at(point.x(), point.y()));
    }
    const QPoint last = (f.at(to.x(), to.y()) + QPointF(8, 6)).toPoint();
    f.view.pointerMoved(last);

    const std::optional<QRegion> damage = f.view.canvasDamage();
    QVERIFY(damage);
    qint64 area = 0;
    for (const QRect &rect : *damage)
        area += qint64(rect.width()) * rect.height();
    QVERIFY2(area <= most, qPrintable(u"repaints %1 square points"_s.arg(area)));
    QVERIFY(damage->contains(last));
}

QTEST_MAIN(CanvasRepaintTest)
#include "tst_canvasrepaint.moc"
