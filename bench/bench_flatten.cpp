// Saving an edited 4K capture: flattening a busy document, then encoding it as PNG.
#include "BenchSupport.h"
#include "FastPngWriter.h"
#include "editor/EditorRenderer.h"

#include <benchmark/benchmark.h>

namespace {

void flatten(benchmark::State &state)
{
    const QImage &desk = benchsupport::deskImage();
    const QList<Overlay> overlays = benchsupport::busyDocument(desk.size());
    for (auto _ : state) {
        QImage flattened = editorrender::renderEditedImage(desk, overlays);
        benchmark::DoNotOptimize(flattened.constBits());
    }
}
BENCHMARK(flatten)->Unit(benchmark::kMillisecond)->UseRealTime();

void flattenAndEncode(benchmark::State &state)
{
    const QImage &desk = benchsupport::deskImage();
    const QList<Overlay> overlays = benchsupport::busyDocument(desk.size());
    const FastPngWriter writer;
    benchsupport::measureEncoding(state, [&] { return writer.encode(editorrender::renderEditedImage(desk, overlays)); });
}
BENCHMARK(flattenAndEncode)->Unit(benchmark::kMillisecond)->UseRealTime();

// The encoding part alone, of the same flattened picture.
void encodeFlattened(benchmark::State &state)
{
    const QImage &desk = benchsupport::deskImage();
    const QImage flattened = editorrender::renderEditedImage(desk, benchsupport::busyDocument(desk.size()));
    const FastPngWriter writer;
    benchsupport::measureEncoding(state, [&] { return writer.encode(flattened); });
}
BENCHMARK(encodeFlattened)->Unit(benchmark::kMillisecond)->UseRealTime();

// Each kind on its own, 100 of it, to see where the time goes.
void flattenOneKind(benchmark::State &state)
{
    const QImage &desk = benchsupport::deskImage();
    const auto kind = EditorTool(state.range(0));
    QList<Overlay> overlays;
    for (const Overlay &overlay : benchsupport::busyDocument(desk.size()))
        if (overlay.type == kind)
            overlays.append(overlay);
    while (overlays.size() < 100)
        overlays.append(overlays.at(overlays.size() % 10));
    for (auto _ : state) {
        QImage flattened = editorrender::renderEditedImage(desk, overlays);
        benchmark::DoNotOptimize(flattened.constBits());
    }
    state.SetLabel(editortool::rawValue(kind).toStdString());
}
BENCHMARK(flattenOneKind)->DenseRange(0, 5)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
