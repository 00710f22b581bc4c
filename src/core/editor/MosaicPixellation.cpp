#include "editor/MosaicPixellation.h"

#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

namespace mosaic {

namespace {

// Whole pixels whose centres lie in [low, high): from ceil(low − ½) up to, not including, ceil(high − ½).
std::pair<qint64, qint64> pixelSpan(double low, double high)
{
    return {qint64(std::ceil(low - 0.5)), qint64(std::ceil(high - 0.5))};
}

qint64 blockOf(qint64 pixel, double edge)
{
    return qint64(std::floor((double(pixel) + 0.5) / edge));
}

// The pixels [first, end) narrowed to the whole blocks that reach into [low, high].
std::pair<qint64, qint64> blocksReaching(qint64 first, qint64 end, qint64 low, qint64 high, double edge)
{
    // The first pixel of a block, as blockOf() assigns pixels whatever the rounding.
    const auto blockStart = [edge](qint64 block) {
        qint64 pixel = qint64(std::ceil(double(block) * edge - 0.5));
        while (blockOf(pixel - 1, edge) >= block)
            --pixel;
        while (blockOf(pixel, edge) < block)
            ++pixel;
        return pixel;
    };
    return {std::max(first, blockStart(blockOf(low, edge))), std::min(end, blockStart(blockOf(high, edge) + 1))};
}

// The block index of each pixel in [first, end), relative to the block of `first`.
std::vector<qsizetype> blockIndices(qint64 first, qint64 end, double edge)
{
    std::vector<qsizetype> indices(size_t(end - first));
    const qint64 firstBlock = blockOf(first, edge);
    for (qint64 p = first; p < end; ++p)
        indices[size_t(p - first)] = qsizetype(blockOf(p, edge) - firstBlock);
    return indices;
}

} // namespace

double blockEdge(const Rect &rect)
{
    return std::max(5.0, std::min(std::abs(rect.width()), std::abs(rect.height())) / 24);
}

std::optional<Patch> pixellate(const QImage &source, const Rect &rect, const QRect &within)
{
    if (source.isNull() || !rect.isFinite() || rect.isEmpty())
        return std::nullopt;
    const Rect box = rect.standardized();
    constexpr double farthest = 1 << 30;
    if (box.minX() < -farthest || box.minY() < -farthest || box.maxX() > farthest || box.maxY() > farthest)
        return std::nullopt;
    auto [left, right] = pixelSpan(box.minX(), box.maxX());
    auto [bottom, top] = pixelSpan(box.minY(), box.maxY());
    if (right <= left || top <= bottom || right - left > 65535 || top - bottom > 65535)
        return std::nullopt;
    const double edge = blockEdge(box);
    if (!within.isNull()) {
        std::tie(left, right) = blocksReaching(left, right, within.left(), within.right(), edge);
        std::tie(bottom, top) = blocksReaching(bottom, top, within.top(), within.bottom(), edge);
        if (right <= left || top <= bottom)
            return Patch{};
    }

    // The source pixels under the patch (y up).
    const qint64 srcLeft = std::max<qint64>(left, 0);
    const qint64 srcRight = std::min<qint64>(right, source.width());
    const qint64 srcBottom = std::max<qint64>(bottom, 0);
    const qint64 srcTop = std::min<qint64>(top, source.height());
    if (srcRight <= srcLeft || srcTop <= srcBottom) {
        if (within.isNull())
            return std::nullopt;
        // A part of a larger mosaic lying off the image: its blocks are transparent.
        Patch clear{QImage(int(right - left), int(top - bottom), QImage::Format_ARGB32_Premultiplied),
                    QRect(int(left), int(bottom), int(right - left), int(top - bottom))};
        if (clear.image.isNull())
            return std::nullopt;
        clear.image.fill(Qt::transparent);
        return clear;
    }
    const QImage under = source
                             .copy(int(srcLeft), int(source.height() - srcTop), int(srcRight - srcLeft),
                                   int(srcTop - srcBottom))
                             .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (under.isNull())
        return std::nullopt;

    const std::vector<qsizetype> columnBlocks = blockIndices(left, right, edge);
    const std::vector<qsizetype> rowBlocks = blockIndices(bottom, top, edge);
    const qsizetype blockColumns = columnBlocks.back() + 1;
    const qsizetype blockCount = blockColumns * (rowBlocks.back() + 1);

    struct Sum
    {
        quint64 a = 0, r = 0, g = 0, b = 0, count = 0;
    };
    std::vector<Sum> sums(static_cast<size_t>(blockCount));
    for (qint64 y = srcBottom; y < srcTop; ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(under.constScanLine(int(srcTop - 1 - y)));
        Sum *rowSums = sums.data() + rowBlocks[size_t(y - bottom)] * blockColumns;
        for (qint64 x = srcLeft; x < srcRight; ++x) {
            const QRgb pixel = line[x - srcLeft];
            Sum &sum = rowSums[columnBlocks[size_t(x - left)]];
            sum.a += qAlpha(pixel);
            sum.r += qRed(pixel);
            sum.g += qGreen(pixel);
            sum.b += qBlue(pixel);
            ++sum.count;
        }
    }
    std::vector<QRgb> colours(size_t(blockCount), 0);
    for (size_t i = 0; i < sums.size(); ++i) {
        const Sum &s = sums[i];
        if (s.count == 0)
            continue;
        const quint64 half = s.count / 2;
        colours[i] = qRgba(int((s.r + half) / s.count), int((s.g + half) / s.count), int((s.b + half) / s.count),
                           int((s.a + half) / s.count));
    }

    Patch patch{QImage(int(right - left), int(top - bottom), QImage::Format_ARGB32_Premultiplied),
                QRect(int(left), int(bottom), int(right - left), int(top - bottom))};
    if (patch.image.isNull())
        return std::nullopt;
    for (qint64 y = bottom; y < top; ++y) {
        auto *line = reinterpret_cast<QRgb *>(patch.image.scanLine(int(top - 1 - y)));
        const QRgb *rowColours = colours.data() + rowBlocks[size_t(y - bottom)] * blockColumns;
        for (qint64 x = left; x < right; ++x)
            line[x - left] = rowColours[columnBlocks[size_t(x - left)]];
    }
    return patch;
}

} // namespace mosaic
