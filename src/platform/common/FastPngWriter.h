#pragma once

#include "platform/PngWriter.h"

// Our PNG encoder, for Qt's images (the format itself is in pngencoder): the "up" filter on every row
// and a fast deflate (pngimagedata: zlib and libdeflate on two threads). The usual way, a filter
// chosen per row and zlib at its default level, takes three to four times as long at 4K for files
// under a tenth smaller. Opaque images (screen captures) are written as 8-bit RGB, images with an alpha
// channel (flattened edits) as 8-bit RGBA, not premultiplied. The output is a plain PNG: signature,
// IHDR, one IDAT, IEND, no metadata.
//
// Keeps no state between calls, so one instance serves any number of threads at once.
class FastPngWriter final : public PngWriter
{
public:
    // The deflate level (1 fastest); 1 was chosen by measurement (bench/bench_png).
    static constexpr int defaultCompressionLevel = 1;

    explicit FastPngWriter(int compressionLevel = defaultCompressionLevel, bool mayUseSecondThread = true);

    QByteArray encode(const QImage &image) const override;
    std::optional<Failure> writeFile(const QImage &image, const QString &path) const override;

private:
    int m_compressionLevel;
    bool m_mayUseSecondThread;
};
