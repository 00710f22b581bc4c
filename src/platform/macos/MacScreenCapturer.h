#pragma once

#include "platform/ScreenCapturer.h"

#include <memory>

// Live screen images through ScreenCaptureKit: the shareable displays (SCShareableContent), a display
// filter with a source rectangle and an output size (SCScreenshotManager, macOS 14), and a rectangle of
// the whole desktop (captureImageInRect, macOS 15.2; on older systems it reports itself unavailable and
// the core falls back). Completions run on the main queue; the pixels are converted to sRGB before.
//
// Called on the main thread. The displays of the last shareableDisplays() are kept for the display
// captures that follow it.
class MacScreenCapturer final : public ScreenCapturer
{
public:
    MacScreenCapturer();
    ~MacScreenCapturer() override;

    void shareableDisplays(ContentCompletion completion) override;
    void captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                        ImageCompletion completion) override;
    void captureRect(const Rect &globalRect, ImageCompletion completion) override;

private:
    struct Content;
    // Shared with completions still under way when the capturer goes.
    std::shared_ptr<Content> m_content;
};
