#pragma once

#include "platform/PngWriter.h"

// Our PNG encoder: one fixed "up" filter on every row and libdeflate's fast deflate in one pass over
// the whole picture. Adaptive per-row filters with zlib, as most writers do, cost three to four times
// as long at 4K for files only a few percent smaller. Opaque images are written as 8-bit RGB, images
// with an alpha channel as 8-bit RGBA (not premultiplied). The output is a plain PNG: signature, IHDR,
// one IDAT, IEND, no metadata.
//
// Keeps no state between calls, so one instance serves any number of threads at once.
class LibdeflatePngWriter final : public PngWriter
{
public:
    // libdeflate's level 1 … 12; the default was chosen by measurement (bench/bench_png).
    static constexpr int defaultCompressionLevel = 2;

    explicit LibdeflatePngWriter(int compressionLevel = defaultCompressionLevel);

    QByteArray encode(const QImage &image) const override;
    std::optional<Failure> writeFile(const QImage &image, const QString &path) const override;

private:
    int m_compressionLevel;
};
