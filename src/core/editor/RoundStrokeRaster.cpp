#include "editor/RoundStrokeRaster.h"

#include "editor/OverlayGeometry.h"

#include <QRect>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace roundstroke {

namespace {

struct Coverage
{
    QRect box;
    std::vector<uchar> values;

    uchar *row(int y) { return values.data() + size_t(y - box.top()) * size_t(box.width()); }
};

// Raises the coverage of every pixel near the capsule around segment a–b.
void addCapsule(Coverage &coverage, QPointF a, QPointF b, double radius)
{
    const double reach = radius + 0.5;
    const QRect near = QRect(QPoint(int(std::floor(std::min(a.x(), b.x()) - reach)),
                                    int(std::floor(std::min(a.y(), b.y()) - reach))),
                             QPoint(int(std::ceil(std::max(a.x(), b.x()) + reach)),
                                    int(std::ceil(std::max(a.y(), b.y()) + reach))))
                           .intersected(coverage.box);
    const double dx = b.x() - a.x();
    const double dy = b.y() - a.y();
    const double lengthSquared = dx * dx + dy * dy;
    for (int y = near.top(); y <= near.bottom(); ++y) {
        const double py = y + 0.5 - a.y();
        uchar *row = coverage.row(y);
        for (int x = near.left(); x <= near.right(); ++x) {
            uchar &value = row[x - coverage.box.left()];
            // Already inside an earlier capsule: consecutive segments overlap a great deal.
            if (value == 255)
                continue;
            const double px = x + 0.5 - a.x();
            const double t = lengthSquared > 0 ? std::clamp((px * dx + py * dy) / lengthSquared, 0.0, 1.0) : 0.0;
            const double ex = px - t * dx;
            const double ey = py - t * dy;
            const double inside = std::clamp(reach - std::sqrt(ex * ex + ey * ey), 0.0, 1.0);
            value = std::max(value, uchar(inside * 255 + 0.5));
        }
    }
}

} // namespace

std::optional<Patch> rasterize(const QList<QPointF> &points, double width, const QColor &colour, const QRect &within,
                               qint64 maximumPixels)
{
    if (points.isEmpty() || !(width > 0) || !std::isfinite(width))
        return std::nullopt;
    const double radius = width / 2;
    const Rect extent = overlaygeometry::boundsOfPoints({points.constData(), size_t(points.size())});
    const double reach = radius + 1;
    double left = std::floor(extent.minX() - reach);
    double top = std::floor(extent.minY() - reach);
    double right = std::ceil(extent.maxX() + reach);
    double bottom = std::ceil(extent.maxY() + reach);
    if (!within.isNull()) {
        left = std::max(left, double(within.left()));
        top = std::max(top, double(within.top()));
        right = std::min(right, double(within.right()) + 1);
        bottom = std::min(bottom, double(within.bottom()) + 1);
    }
    const double columns = right - left;
    const double rows = bottom - top;
    if (!std::isfinite(columns) || !std::isfinite(rows) || std::abs(left) > 1e9 || std::abs(top) > 1e9
        || !(columns > 0) || !(rows > 0) || columns * rows > double(maximumPixels))
        return std::nullopt;

    Coverage coverage{QRect(int(left), int(top), int(columns), int(rows)), {}};
    coverage.values.assign(size_t(columns * rows), 0);
    if (points.size() == 1)
        addCapsule(coverage, points.first(), points.first(), radius);
    for (qsizetype i = 1; i < points.size(); ++i)
        addCapsule(coverage, points.at(i - 1), points.at(i), radius);

    // The colour at each coverage level, premultiplied.
    std::array<QRgb, 256> shades{};
    const QRgb premultiplied = qPremultiply(colour.rgba());
    for (int level = 0; level < 256; ++level)
        shades[size_t(level)] = qRgba(qRed(premultiplied) * level / 255, qGreen(premultiplied) * level / 255,
                                      qBlue(premultiplied) * level / 255, qAlpha(premultiplied) * level / 255);
    Patch patch{QImage(coverage.box.size(), QImage::Format_ARGB32_Premultiplied), coverage.box.topLeft()};
    if (patch.image.isNull())
        return std::nullopt;
    const int patchWidth = coverage.box.width();
    for (int y = 0; y < coverage.box.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(patch.image.scanLine(y));
        const uchar *values = coverage.values.data() + size_t(y) * size_t(patchWidth);
        for (int x = 0; x < patchWidth; ++x)
            line[x] = shades[values[x]];
    }
    return patch;
}

} // namespace roundstroke
