#pragma once

#include "geometry/Rect.h"

#include <QImage>
#include <QList>
#include <QSize>
#include <QString>

#include <functional>
#include <optional>

// Live screen images (ScreenCaptureKit on macOS; xcb-shm, then GetImage, on X11).
//
// Every completion may run on any thread, once; callers post back to the main thread before touching
// state. An image completion carries a non-null image on success, or a null image and, when the system
// gave one, an error description.
class ScreenCapturer
{
public:
    // A display as the capture service sees it, with its size as the service reports it (on macOS
    // SCDisplay.width/height; on X11 the monitor's size in device pixels).
    struct ShareableDisplay
    {
        quint32 displayID = 0;
        int width = 0;
        int height = 0;
    };

    // The display list, or no list; the error is set when the service reported one.
    using ContentCompletion =
        std::function<void(std::optional<QList<ShareableDisplay>> displays, std::optional<QString> error)>;
    using ImageCompletion = std::function<void(QImage image, std::optional<QString> error)>;

    virtual ~ScreenCapturer() = default;

    // The displays that can be captured (SCShareableContent.getShareableContent).
    virtual void shareableDisplays(ContentCompletion completion) = 0;
    // One still image of part of a display, excluding no window (SCScreenshotManager
    // captureImageWithFilter:configuration:). `sourceRect` is in points, relative to the display's
    // top-left corner, y downwards; the image is scaled to exactly `outputSize` pixels.
    virtual void captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                                ImageCompletion completion) = 0;
    // One still image of a rectangle of the whole desktop (SCScreenshotManager captureImageInRect:), in
    // points of the global space whose origin is the primary display's top-left corner, y downwards.
    // Where the system lacks the call, complete with a null image and a description saying so.
    virtual void captureRect(const Rect &globalRect, ImageCompletion completion) = 0;
};
