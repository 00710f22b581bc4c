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
    benchsupport::measureEncoding(state, [&] { return writer.encode(desk); });
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
    benchsupport::measureEncoding(state, [&] { return writer.encode(desk); });
}
BENCHMARK(ourEncoderWithAlpha)->Unit(benchmark::kMillisecond)->UseRealTime();

void qtWriter(benchmark::State &state)
{
    const QImage &desk = benchsupport::deskImage();
    benchsupport::measureEncoding(state, [&] {
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        QImageWriter(&buffer, "png").write(desk);
        return png;
    });
}
BENCHMARK(qtWriter)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
