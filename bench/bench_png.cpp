// PNG encoding of a 4K desktop: our encoder at several deflate levels, on one or two threads, against
// Qt's own writer.
#include "BenchSupport.h"
#include "FastPngWriter.h"

#include <QBuffer>
#include <QImageWriter>

#include <benchmark/benchmark.h>

namespace {

void ourEncoder(benchmark::State &state)
{
    const QImage &desk = benchsupport::deskImage();
    const FastPngWriter writer(int(state.range(0)), state.range(1) != 0);
    qint64 bytes = 0;
    for (auto _ : state) {
        const QByteArray png = writer.encode(desk);
        bytes = png.size();
        benchmark::DoNotOptimize(png.constData());
    }
    state.counters["png_bytes"] = double(bytes);
}
// Arguments: the deflate level, and whether a second thread may compress part of the picture.
BENCHMARK(ourEncoder)
    ->ArgsProduct({{1, 2, 3, 4, 6, 9}, {0, 1}})
    ->ArgNames({"level", "two_threads"})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void ourEncoderWithAlpha(benchmark::State &state)
{
    const QImage desk = benchsupport::deskImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const FastPngWriter writer;
    qint64 bytes = 0;
    for (auto _ : state) {
        const QByteArray png = writer.encode(desk);
        bytes = png.size();
        benchmark::DoNotOptimize(png.constData());
    }
    state.counters["png_bytes"] = double(bytes);
}
BENCHMARK(ourEncoderWithAlpha)->Unit(benchmark::kMillisecond)->UseRealTime();

void qtWriter(benchmark::State &state)
{
    const QImage &desk = benchsupport::deskImage();
    qint64 bytes = 0;
    for (auto _ : state) {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        QImageWriter(&buffer, "png").write(desk);
        bytes = png.size();
        benchmark::DoNotOptimize(png.constData());
    }
    state.counters["png_bytes"] = double(bytes);
}
BENCHMARK(qtWriter)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
