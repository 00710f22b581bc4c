#include "MacScreenCapturer.h"

#include "MacConversions.h"
#include "MacImages.h"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

using namespace Qt::StringLiterals;
using namespace macconversions;

struct MacScreenCapturer::Content
{
    NSArray<SCDisplay *> *displays = nil;
};

namespace {

// The image is converted where ScreenCaptureKit delivered it (the image is only valid there), then
// handed to the main queue.
void deliver(CGImageRef image, NSError *error, ScreenCapturer::ImageCompletion completion)
{
    const QImage pixels = macimages::imageFromCGImage(image);
    std::optional<QString> failure;
    if (error)
        failure = describe(error);
    else if (pixels.isNull())
        failure = u"ScreenCaptureKit returned no image"_s;
    dispatch_async(dispatch_get_main_queue(), ^{
        completion(pixels, failure);
    });
}

} // namespace

MacScreenCapturer::MacScreenCapturer() : m_content(std::make_shared<Content>()) {}
MacScreenCapturer::~MacScreenCapturer() = default;

void MacScreenCapturer::shareableDisplays(ContentCompletion completion)
{
    const std::shared_ptr<Content> content = m_content;
    [SCShareableContent getShareableContentWithCompletionHandler:^(SCShareableContent *shareable, NSError *error) {
        NSArray<SCDisplay *> *displays = shareable.displays;
        const std::optional<QString> failure = error ? std::optional(describe(error)) : std::nullopt;
        dispatch_async(dispatch_get_main_queue(), ^{
            if (!displays) {
                completion(std::nullopt, failure);
                return;
            }
            content->displays = displays;
            QList<ShareableDisplay> list;
            for (SCDisplay *display in displays)
                list.append({quint32(display.displayID), int(display.width), int(display.height)});
            completion(list, std::nullopt);
        });
    }];
}

void MacScreenCapturer::captureDisplay(quint32 displayID, const Rect &sourceRect, QSize outputSize,
                                       ImageCompletion completion)
{
    SCDisplay *target = nil;
    for (SCDisplay *display in m_content->displays) {
        if (display.displayID == displayID)
            target = display;
    }
    if (!target) {
        const QString failure = u"display "_s % QString::number(displayID) % u" is not among the shareable displays"_s;
        dispatch_async(dispatch_get_main_queue(), ^{
            completion(QImage(), failure);
        });
        return;
    }
    SCContentFilter *filter = [[SCContentFilter alloc] initWithDisplay:target excludingWindows:@[]];
    SCStreamConfiguration *configuration = [[SCStreamConfiguration alloc] init];
    configuration.sourceRect = toCGRect(sourceRect);
    configuration.width = size_t(outputSize.width());
    configuration.height = size_t(outputSize.height());
    [SCScreenshotManager captureImageWithFilter:filter
                                  configuration:configuration
                              completionHandler:^(CGImageRef image, NSError *error) {
                                  deliver(image, error, completion);
                              }];
}

void MacScreenCapturer::captureRect(const Rect &globalRect, ImageCompletion completion)
{
    // The call exists from macOS 15.2, and only SDKs from 15.2 (Xcode 16.2) declare it. Unverified here:
    // the selector's exact spelling (+captureImageInRect:completionHandler:) and that the rectangle is
    // in points of the top-left global space; a first run on 15.2 checks both.
#if __MAC_OS_X_VERSION_MAX_ALLOWED >= 150200
    if (@available(macOS 15.2, *)) {
        [SCScreenshotManager captureImageInRect:toCGRect(globalRect)
                              completionHandler:^(CGImageRef image, NSError *error) {
                                  deliver(image, error, completion);
                              }];
        return;
    }
#endif
    dispatch_async(dispatch_get_main_queue(), ^{
        completion(QImage(), u"capturing a rectangle of the desktop needs macOS 15.2"_s);
    });
}
