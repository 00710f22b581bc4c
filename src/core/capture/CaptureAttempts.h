#pragma once

#include "geometry/Rect.h"

#include <QImage>
#include <QString>

#include <functional>
#include <optional>

struct CaptureServices;

// Live capture of a display region, with its fallback: first the display capture at the display's
// pixel scale, then a capture of the same rectangle of the whole desktop. Used by the interactive
// capture, the repeat capture and the freezing of displays.
//
// Called on the main thread; every completion runs on the main thread, whatever thread the capture
// service answered on.
class CaptureAttempts final
{
public:
    using ImageCompletion = std::function<void(QImage image, std::optional<QString> error)>;

    explicit CaptureAttempts(const CaptureServices &services) : m_services(services) {}

    // The display capture, then the desktop rectangle; a null image when both failed. Each failure is
    // logged under `logPrefix` ("capture", "repeat capture").
    void performCaptureAttempts(std::optional<quint32> targetDisplayID, const Rect &localRect,
                                const Rect &screenFrame, double scale, const QString &logPrefix,
                                std::function<void(QImage image)> completion);
    // `localRect` is display-local; the image has the display's pixel scale.
    void captureUsingDisplayFilter(quint32 targetID, const Rect &localRect, const Rect &screenFrame,
                                   double scale, ImageCompletion completion);
    // `globalRect` is in the top-left global space.
    void captureRect(const Rect &globalRect, ImageCompletion completion);

    // The desktop's top edge now, for flipping between the two global spaces.
    double desktopTopY() const;

private:
    void captureUsingGlobalRect(const Rect &globalRect, const QString &logPrefix,
                                std::function<void(QImage image)> completion);
    // Wraps a completion so that it runs on the main thread.
    ImageCompletion onMain(ImageCompletion completion) const;

    const CaptureServices &m_services;
};
