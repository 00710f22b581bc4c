// Dragging on the editor canvas of a 4K picture at 100 %: what one pointer motion costs to repaint,
// and what the release that adds the drawn overlay to the document costs, for each drawing tool, over
// an empty document and over 50 annotations. The canvas is painted offscreen the way its widget paints
// an update: the picture's frame on screen, clipped to what the event asks to repaint.
#include "BenchSupport.h"
#include "FakeKeyValueStore.h"
#include "FakeSystemLog.h"
#include "editor/ImageEditorModel.h"
#include "editor/ImageEditorView.h"
#include "platform/Scheduler.h"

#include <QPainter>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

// Nothing the drag does waits on the scheduler.
class IdleScheduler final : public Scheduler
{
public:
    void postToMain(Task) override {}
    void postToMainAfter(double, Task) override {}
    void runInBackground(Task) override {}
};

// A stroke is released and a new one started after this many motions, so strokes keep a usual length.
constexpr int motionsPerDrag = 300;

// 50 of the busy document's overlays: ten of each shape kind, five mosaics and five text boxes.
QList<Overlay> annotations(QSize size, int count)
{
    const QList<Overlay> busy = benchsupport::busyDocument(size);
    QList<Overlay> chosen = busy.mid(0, count * 4 / 5);
    chosen.append(busy.mid(80, count - chosen.size()));
    return chosen;
}

// The view of the 4K picture with `count` annotations and `tool` chosen, and the screen it paints.
struct Canvas
{
    Canvas(EditorTool tool, int count)
    {
        for (const Overlay &overlay : annotations(desk.size(), count))
            model->appendOverlay(overlay);
        model->setSelectedTool(tool);
    }

    // Repaints what the view's last change asked for; the square points painted.
    qint64 repaint()
    {
        const QRegion damage = view.canvasDamage() ? view.canvasDamage()->intersected(frame.toAlignedRect())
                                                   : QRegion(frame.toAlignedRect());
        QPainter painter(&screen);
        painter.translate(-frame.topLeft());
        painter.setClipRegion(damage);
        view.paintCanvas(painter, damage);
        painter.end();
        benchmark::DoNotOptimize(screen.constBits());
        qint64 pixels = 0;
        for (const QRect &rect : damage)
            pixels += qint64(rect.width()) * rect.height();
        return pixels;
    }

    // Around an ellipse in the middle of the picture, 6 points a motion.
    QPointF along(int motion) const
    {
        constexpr double radius = 400;
        constexpr double step = 6;
        const double angle = motion * step / radius;
        return frame.center() + QPointF(radius * std::cos(angle), radius * std::sin(angle) * 0.6);
    }

    const QImage &desk = benchsupport::deskImage();
    FakeKeyValueStore store;
    IdleScheduler scheduler;
    FakeSystemLog systemLog;
    std::shared_ptr<ImageEditorModel> model = std::make_shared<ImageEditorModel>(desk, store);
    ImageEditorView view{model, {systemLog, scheduler}};
    QRectF frame = view.viewport().imageFrameInCanvas();
    QImage screen{frame.size().toSize(), QImage::Format_RGB32};
};

void paintPerMotion(benchmark::State &state)
{
    const auto tool = EditorTool(state.range(0));
    Canvas canvas(tool, int(state.range(1)));
    int motion = 0;
    qint64 paintedPixels = 0;
    canvas.view.pointerPressed(canvas.along(0));
    for (auto _ : state) {
        if (++motion % motionsPerDrag == 0) {
            state.PauseTiming();
            canvas.view.pointerCancelled();
            canvas.view.pointerPressed(canvas.along(motion));
            ++motion;
            state.ResumeTiming();
        }
        canvas.view.pointerMoved(canvas.along(motion));
        paintedPixels += canvas.repaint();
    }
    state.counters["painted_px"] = benchmark::Counter(double(paintedPixels), benchmark::Counter::kAvgIterations);
    state.SetLabel(editortool::rawValue(tool).toStdString());
}

// A drag of 40 motions, then the release that adds its overlay: only the release and its repaint
// count. The overlay is taken back by undo before the next drag, so the document keeps its size. The
// untimed drags are most of the run, hence a fixed number of releases.
void paintPerRelease(benchmark::State &state)
{
    const auto tool = EditorTool(state.range(0));
    Canvas canvas(tool, int(state.range(1)));
    constexpr int motions = 40;
    int start = 0;
    qint64 paintedPixels = 0;
    for (auto _ : state) {
        state.PauseTiming();
        canvas.view.pointerPressed(canvas.along(start));
        for (int motion = 1; motion <= motions; ++motion)
            canvas.view.pointerMoved(canvas.along(start + motion));
        state.ResumeTiming();
        // A little off the last motion, as a release event may be.
        canvas.view.pointerReleased(canvas.along(start + motions) + QPointF(4, 3));
        paintedPixels += canvas.repaint();
        state.PauseTiming();
        canvas.model->undoLastAction();
        start += motions;
        state.ResumeTiming();
    }
    state.counters["painted_px"] = benchmark::Counter(double(paintedPixels), benchmark::Counter::kAvgIterations);
    state.SetLabel(editortool::rawValue(tool).toStdString());
}

constexpr int rectangle = int(EditorTool::Rectangle);
constexpr int circle = int(EditorTool::Circle);
constexpr int arrow = int(EditorTool::Arrow);
constexpr int freehand = int(EditorTool::Freehand);

BENCHMARK(paintPerMotion)
    ->ArgsProduct({{rectangle, circle, arrow, freehand}, {0, 50}})
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK(paintPerRelease)
    ->ArgsProduct({{rectangle, circle, arrow, freehand}, {0, 50}})
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

} // namespace
