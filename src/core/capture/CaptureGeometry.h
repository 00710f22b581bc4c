#pragma once

#include "capture/CaptureRecords.h"
#include "geometry/Rect.h"
#include "platform/DisplayProvider.h"

#include <QImage>
#include <QList>
#include <QPointF>
#include <QSize>
#include <QSizeF>

#include <optional>

// The conversions and rounding rules between the coordinate spaces of capture:
// - global (bottom-left of the primary display, y up, points): display frames, window frames;
// - top-left global (top-left of the primary display, y down, points): rectangle capture, window list;
// - window-local and display-local (bottom-left of the window or display, y up, points);
// - display top-left (top-left of the display, y down, points): the display capture's source rectangle;
// - pixel (top-left of an image, y down).
// Every per-display value comes from that display's own frame and scale; nothing is shared.
namespace capturegeometry {

// The y of the primary display's top edge in global points: the first display at origin (0, 0), else
// the main display, else the highest top edge of all, else 0.
double desktopTopY(const QList<DisplayInfo> &screens, const std::optional<DisplayInfo> &mainScreen);

// Between the global and the top-left global space; the flip is its own inverse.
Rect cgGlobalRect(const Rect &appKitRect, double desktopTopY);

// Grown outward to whole device pixels and at least one device pixel wide and high; scales below 1
// count as 1. The null rectangle stays null.
Rect pixelAlignedRect(const Rect &rect, double scale);

// A display's own rectangle: (0, 0, its width, its height).
Rect localBounds(const Rect &screenFrame);

// Display-local (y up) to the display's top-left space (y down).
Rect displayFilterSourceRect(const Rect &localRect, const Rect &screenFrame);

// The capture's pixel size: the logical size times the larger of the backing scale and the pixels per
// point the capture service reports for the display, rounded up, at least 1.
QSize displayFilterOutputSize(const Rect &localRect, const Rect &screenFrame, double scale,
                              int displayWidth, int displayHeight);

// The pixels of a frozen image under a display-local rectangle, in the proportions of the moment of
// freezing (horizontal and vertical factors apart). Nothing when no pixel remains.
std::optional<QRect> frozenCropPixelRect(const Rect &localRect, QSize imagePixels, const Rect &logicalFrame);
// Those pixels as a new image (only they are copied); a null image when there are none.
QImage cropFrozenImage(const Rect &localRect, const FrozenDisplaySnapshot &snapshot);

struct PixelSize
{
    qint64 width = 1;
    qint64 height = 1;
    bool operator==(const PixelSize &) const = default;
};
// The pixel size pixelAlignedRect gives the selection on a display of this scale.
PixelSize selectionPixelSize(const Rect &rect, double scale);

QPointF clampedToBounds(QPointF point, const Rect &bounds);

// Where the selection's size label goes: below-right of the selection, moved inside its right or bottom
// edge where it would leave the bounds, and finally kept `gap` inside the bounds.
Rect sizeLabelRect(const Rect &near, QSizeF labelSize, double gap, const Rect &bounds);

} // namespace capturegeometry
