#include "capture/CaptureGeometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace capturegeometry {

namespace {

// Whole pixel counts from rounded-up doubles; out-of-range values (huge or not finite) saturate
// instead of overflowing.
template<typename Int>
Int saturatedCount(double value)
{
    if (!(value >= 1))
        return 1;
    if (value >= double(std::numeric_limits<Int>::max()))
        return std::numeric_limits<Int>::max();
    return Int(value);
}

} // namespace

double desktopTopY(const QList<DisplayInfo> &screens, const std::optional<DisplayInfo> &mainScreen)
{
    for (const DisplayInfo &screen : screens) {
        if (screen.frame.x() == 0 && screen.frame.y() == 0)
            return screen.frame.maxY();
    }
    if (mainScreen)
        return mainScreen->frame.maxY();
    if (screens.isEmpty())
        return 0;
    double top = screens.first().frame.maxY();
    for (const DisplayInfo &screen : screens)
        top = std::max(top, screen.frame.maxY());
    return top;
}

Rect cgGlobalRect(const Rect &appKitRect, double desktopTopY)
{
    return Rect(appKitRect.minX(), desktopTopY - appKitRect.maxY(), std::abs(appKitRect.width()),
                std::abs(appKitRect.height()));
}

Rect pixelAlignedRect(const Rect &rect, double scale)
{
    if (rect.isNull())
        return rect;
    const double s = std::max(scale, 1.0);
    const double left = std::floor(rect.minX() * s) / s;
    const double bottom = std::floor(rect.minY() * s) / s;
    const double right = std::ceil(rect.maxX() * s) / s;
    const double top = std::ceil(rect.maxY() * s) / s;
    return Rect(left, bottom, std::max(1 / s, right - left), std::max(1 / s, top - bottom));
}

Rect localBounds(const Rect &screenFrame)
{
    return Rect(0, 0, std::abs(screenFrame.width()), std::abs(screenFrame.height()));
}

Rect displayFilterSourceRect(const Rect &localRect, const Rect &screenFrame)
{
    return Rect(localRect.minX(), screenFrame.height() - (localRect.minY() + localRect.height()),
                localRect.width(), localRect.height());
}

QSize displayFilterOutputSize(const Rect &localRect, const Rect &screenFrame, double scale,
                              int displayWidth, int displayHeight)
{
    const double scaleX = displayWidth / std::max(screenFrame.width(), 1.0);
    const double scaleY = displayHeight / std::max(screenFrame.height(), 1.0);
    const double effectiveX = std::max(scale, scaleX);
    const double effectiveY = std::max(scale, scaleY);
    return QSize(saturatedCount<int>(std::ceil(localRect.width() * effectiveX)),
                 saturatedCount<int>(std::ceil(localRect.height() * effectiveY)));
}

std::optional<QRect> frozenCropPixelRect(const Rect &localRect, QSize imagePixels, const Rect &logicalFrame)
{
    if (!(localRect.width() > 0) || !(localRect.height() > 0) || !localRect.isFinite())
        return std::nullopt;
    if (!(logicalFrame.width() > 0) || !(logicalFrame.height() > 0))
        return std::nullopt;
    const double sx = imagePixels.width() / logicalFrame.width();
    const double sy = imagePixels.height() / logicalFrame.height();
    const double width = localRect.width() * sx;
    const double height = localRect.height() * sy;
    const double y = imagePixels.height() - (localRect.minY() * sy + height);
    const Rect pixels = Rect(localRect.minX() * sx, y, width, height)
                            .integral()
                            .intersected(Rect(0, 0, imagePixels.width(), imagePixels.height()));
    if (pixels.isEmpty())
        return std::nullopt;
    return QRect(int(pixels.x()), int(pixels.y()), int(pixels.width()), int(pixels.height()));
}

QImage cropFrozenImage(const Rect &localRect, const FrozenDisplaySnapshot &snapshot)
{
    if (snapshot.image.isNull())
        return {};
    const std::optional<QRect> pixels = frozenCropPixelRect(localRect, snapshot.image.size(), snapshot.logicalFrame);
    if (!pixels)
        return {};
    return snapshot.image.copy(*pixels);
}

PixelSize selectionPixelSize(const Rect &rect, double scale)
{
    const double s = std::max(scale, 1.0);
    const double left = std::floor(rect.minX() * s);
    const double bottom = std::floor(rect.minY() * s);
    const double right = std::ceil(rect.maxX() * s);
    const double top = std::ceil(rect.maxY() * s);
    return {saturatedCount<qint64>(right - left), saturatedCount<qint64>(top - bottom)};
}

QPointF clampedToBounds(QPointF point, const Rect &bounds)
{
    return QPointF(std::min(std::max(point.x(), bounds.minX()), bounds.maxX()),
                   std::min(std::max(point.y(), bounds.minY()), bounds.maxY()));
}

Rect sizeLabelRect(const Rect &near, QSizeF labelSize, double gap, const Rect &bounds)
{
    double x = near.maxX() + gap;
    double y = near.minY() - labelSize.height() - gap;
    if (x + labelSize.width() > bounds.maxX() - gap)
        x = near.maxX() - labelSize.width() - gap;
    if (y < bounds.minY() + gap)
        y = near.minY() + gap;
    const double maxX = std::max(bounds.minX() + gap, bounds.maxX() - labelSize.width() - gap);
    const double maxY = std::max(bounds.minY() + gap, bounds.maxY() - labelSize.height() - gap);
    x = std::min(std::max(x, bounds.minX() + gap), maxX);
    y = std::min(std::max(y, bounds.minY() + gap), maxY);
    return Rect(x, y, labelSize.width(), labelSize.height());
}

} // namespace capturegeometry
