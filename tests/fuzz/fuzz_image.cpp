// Feeds arbitrary bytes to the editor's picture decoder, as pasted or dropped data would reach it.
// Nothing may crash, a failure must say why, and a picture that comes back must fit the decode limit
// and be in sRGB. Oversized allocations inside the decoders are caught by libFuzzer's -malloc_limit_mb.
#include "editor/ImageLoading.h"

#include <QColorSpace>
#include <QCoreApplication>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

// The decoders are not instrumented, so libFuzzer cannot see which of their paths an input took. Their
// warnings and our error texts stand in: each distinct text marks a counter libFuzzer treats as coverage.
__attribute__((used, section("__libfuzzer_extra_counters"))) uint8_t outcomes[4096];

void markOutcome(const QString &text)
{
    outcomes[qHash(text) % sizeof outcomes] = 1;
}

void markMessage(QtMsgType, const QMessageLogContext &, const QString &message)
{
    markOutcome(message);
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // The image plugins are found through the application's library paths.
    static QCoreApplication application(*argc, *argv);
    qInstallMessageHandler(markMessage);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    QString error;
    const QImage image = imageloading::decodeImageData(bytes, &error);
    // The leading bytes choose the decoder; the pixel format and the error say how it ended.
    markOutcome(QString::fromLatin1(bytes.left(4).toHex()) + QString::number(image.format()) + error);
    const bool isWithinLimit = image.sizeInBytes() <= qsizetype(imageloading::allocationLimitMegabytes) << 20;
    const bool isSrgb = !image.colorSpace().isValid() || image.colorSpace() == QColorSpace(QColorSpace::SRgb);
    if (image.isNull() == error.isEmpty() || !isWithinLimit || !isSrgb) {
        std::fprintf(stderr, "null %d, error '%s', %lld bytes, sRGB %d\n", image.isNull(), qPrintable(error),
                     qint64(image.sizeInBytes()), isSrgb);
        std::abort();
    }
    return 0;
}
