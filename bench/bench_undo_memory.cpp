// Memory held by the undo history: 100 snapshots of a document with 50 freehand strokes of 2,000
// points. Snapshots share unchanged overlays and point lists with the document (implicit sharing), so
// what they hold is measured by walking them and counting each heap block once.
#include "BenchSupport.h"
#include "FakeKeyValueStore.h"
#include "editor/CanvasRules.h"
#include "editor/ImageEditorModel.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <unordered_set>

namespace {

constexpr int strokeCount = 50;
constexpr int pointsPerStroke = 2000;
constexpr int actions = 100;

// Array header of a Qt container block (reference count, flags, capacity).
constexpr qsizetype blockHeader = 16;

class BlockCounter
{
public:
    qint64 add(const QList<Overlay> &overlays)
    {
        qint64 bytes = block(overlays.constData(), overlays.capacity() * qsizetype(sizeof(Overlay)));
        for (const Overlay &overlay : overlays) {
            const QList<QPointF> &points = overlay.points.list();
            bytes += block(points.constData(), points.capacity() * qsizetype(sizeof(QPointF)));
            bytes += block(overlay.text.constData(), overlay.text.capacity() * 2);
            bytes += block(overlay.fontFamily.constData(), overlay.fontFamily.capacity() * 2);
        }
        return bytes;
    }

private:
    qint64 block(const void *data, qsizetype payload)
    {
        if (payload == 0 || !m_seen.insert(data).second)
            return 0;
        return blockHeader + payload;
    }

    std::unordered_set<const void *> m_seen;
};

QList<Overlay> strokes()
{
    QList<Overlay> overlays;
    for (int i = 0; i < strokeCount; ++i)
        overlays.append(benchsupport::freehandStroke(QPointF(100 + 60 * i, 300), pointsPerStroke, quint32(i + 1)));
    return overlays;
}

void report(benchmark::State &state, const ImageEditorModel &model)
{
    BlockCounter counter;
    const qint64 document = counter.add(model.overlays());
    qint64 history = 0;
    for (const QList<Overlay> &snapshot : model.undoStack())
        history += counter.add(snapshot);
    state.counters["document_bytes"] = double(document);
    state.counters["history_bytes"] = double(history);
    state.counters["snapshots"] = double(model.undoStack().size());
    // What 100 full copies of the document would take.
    state.counters["deep_copy_bytes"] = double(document) * actions;
}

// 100 actions, each one edit and so one snapshot, as in the editor; then reports what is held.
void runActions(benchmark::State &state, const std::function<void(ImageEditorModel &, int)> &action)
{
    FakeKeyValueStore store;
    for (auto _ : state) {
        ImageEditorModel model(QImage(), store);
        {
            const ImageEditorModel::Edit load(model);
            for (const Overlay &stroke : strokes())
                model.appendOverlay(stroke);
        }
        for (int i = 0; i < actions; ++i)
            action(model, i);
        state.PauseTiming();
        report(state, model);
        state.ResumeTiming();
    }
}

// Each action moves one stroke: the usual edit.
void moveOneStrokePerAction(benchmark::State &state)
{
    runActions(state, [](ImageEditorModel &model, int i) {
        model.replaceOverlay(canvasrules::movedOverlay(model.overlays().at(i % strokeCount), 3, -2));
    });
}
BENCHMARK(moveOneStrokePerAction)->Unit(benchmark::kMillisecond)->UseRealTime();

// Each action draws a new stroke on top.
void drawOneStrokePerAction(benchmark::State &state)
{
    runActions(state, [](ImageEditorModel &model, int i) {
        model.appendOverlay(benchsupport::freehandStroke(QPointF(200, 200), pointsPerStroke, quint32(1000 + i)));
    });
}
BENCHMARK(drawOneStrokePerAction)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
