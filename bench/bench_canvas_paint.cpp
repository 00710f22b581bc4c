// Dragging on the editor canvas of a 4K picture at 100 %: what one pointer motion costs to repaint,
// for a rectangle and a freehand stroke, over an empty document and over 50 annotations. The canvas
// is painted offscreen the way its widget paints an update: the picture's frame on screen, clipped to
// what the motion asks to repaint.
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

void paintPerMotion(benchmark::State &state)
{
    const QImage &desk = benchsupport::deskImage();
    const auto tool = EditorTool(state.range(0));
    FakeKeyValueStore store;
    IdleScheduler scheduler;
    FakeSystemLog systemLog;
    auto model = std::make_shared<ImageEditorModel>(desk, store);
    for (const Overlay &overlay : annotations(desk.size(), int(state.range(1))))
        model->appendOverlay(overlay);
    model->setSelectedTool(tool);
    ImageEditorView view(model, {systemLog, scheduler});

    const QRectF frame = view.viewport().imageFrameInCanvas();
    QImage screen(frame.size().toSize(), QImage::Format_RGB32);
    const QPointF centre = frame.center();
    constexpr double radius = 400;
    constexpr double step = 6;
    auto along = [&](int motion) {
        const double angle = motion * step / radius;
        return centre + QPointF(radius * std::cos(angle), radius * std::sin(angle) * 0.6);
    };

    int motion = 0;
    qint64 paintedPixels = 0;
    view.pointerPressed(along(0));
    for (auto _ : state) {
        if (++motion % motionsPerDrag == 0) {
            state.PauseTiming();
            view.pointerCancelled();
            view.pointerPressed(along(motion));
            ++motion;
            state.ResumeTiming();
        }
        view.pointerMoved(along(motion));
        const QRegion damage = view.canvasDamage() ? view.canvasDamage()->intersected(frame.toAlignedRect())
                                                   : QRegion(frame.toAlignedRect());
        QPainter painter(&screen);
        painter.translate(-frame.topLeft());
        painter.setClipRegion(damage);
        view.paintCanvas(painter, damage);
        painter.end();
        for (const QRect &rect : damage)
            paintedPixels += qint64(rect.width()) * rect.height();
        benchmark::DoNotOptimize(screen.constBits());
    }
    state.counters["painted_px"] = benchmark::Counter(double(paintedPixels), benchmark::Counter::kAvgIterations);
    state.SetLabel(editortool::rawValue(tool).toStdString());
}
BENCHMARK(paintPerMotion)
    ->ArgsProduct({{int(EditorTool::Rectangle), int(EditorTool::Freehand)}, {0, 50}})
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();

} // namespace
