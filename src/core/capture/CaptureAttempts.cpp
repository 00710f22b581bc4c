#include "capture/CaptureAttempts.h"

#include "platform/DiagnosticsLog.h"
#include "capture/CaptureGeometry.h"
#include "capture/CaptureServices.h"
#include "geometry/TraceFormat.h"
#include "platform/DisplayProvider.h"
#include "platform/Scheduler.h"
#include "platform/ScreenCapturer.h"

using namespace Qt::StringLiterals;

namespace {

QString describe(const std::optional<QString> &error)
{
    return error ? *error : u"nil"_s;
}

} // namespace

void CaptureAttempts::performCaptureAttempts(std::optional<quint32> targetDisplayID, const Rect &localRect,
                                             const Rect &screenFrame, double scale, const QString &logPrefix,
                                             std::function<void(QImage image)> completion)
{
    const Rect appKitRect(screenFrame.minX() + localRect.minX(), screenFrame.minY() + localRect.minY(),
                          localRect.width(), localRect.height());
    const Rect globalRect = capturegeometry::cgGlobalRect(appKitRect, desktopTopY());

    if (!targetDisplayID) {
        m_services.diagnostics.write(logPrefix % u" displayID unavailable, falling back to global rect="_s
                                     % trace::rect(globalRect));
        captureUsingGlobalRect(globalRect, logPrefix, std::move(completion));
        return;
    }
    const quint32 id = *targetDisplayID;
    captureUsingDisplayFilter(
        id, localRect, screenFrame, scale,
        [this, id, localRect, globalRect, logPrefix, completion = std::move(completion)](
            QImage image, std::optional<QString> error) mutable {
            if (!image.isNull()) {
                completion(std::move(image));
                return;
            }
            m_services.diagnostics.write(logPrefix % u" display-filter capture failed display="_s
                                         % QString::number(id) % u" localRect="_s % trace::rect(localRect)
                                         % u" error="_s % describe(error));
            captureUsingGlobalRect(globalRect, logPrefix, std::move(completion));
        });
}

void CaptureAttempts::captureUsingGlobalRect(const Rect &globalRect, const QString &logPrefix,
                                             std::function<void(QImage image)> completion)
{
    captureRect(globalRect, [this, globalRect, logPrefix, completion = std::move(completion)](
                                QImage image, std::optional<QString> error) {
        if (image.isNull())
            m_services.diagnostics.write(logPrefix % u" global-rect capture failed rect="_s
                                         % trace::rect(globalRect) % u" error="_s % describe(error));
        completion(std::move(image));
    });
}

void CaptureAttempts::captureUsingDisplayFilter(quint32 targetID, const Rect &localRect, const Rect &screenFrame,
                                                double scale, ImageCompletion completion)
{
    ScreenCapturer &capturer = m_services.capturer;
    Scheduler &scheduler = m_services.scheduler;
    auto withDisplays = [this, &capturer, targetID, localRect, screenFrame, scale,
                         completion = std::move(completion)](
                            std::optional<QList<ScreenCapturer::ShareableDisplay>> displays,
                            std::optional<QString> error) {
        if (error || !displays) {
            completion({}, error);
            return;
        }
        for (const ScreenCapturer::ShareableDisplay &display : *displays) {
            if (display.displayID != targetID)
                continue;
            const Rect sourceRect = capturegeometry::displayFilterSourceRect(localRect, screenFrame);
            const QSize outputSize = capturegeometry::displayFilterOutputSize(localRect, screenFrame, scale,
                                                                              display.width, display.height);
            capturer.captureDisplay(targetID, sourceRect, outputSize, onMain(completion));
            return;
        }
        completion({}, std::nullopt);
    };
    capturer.shareableDisplays([&scheduler, withDisplays = std::move(withDisplays)](
                                   std::optional<QList<ScreenCapturer::ShareableDisplay>> displays,
                                   std::optional<QString> error) {
        scheduler.postToMain([withDisplays, displays = std::move(displays), error = std::move(error)] {
            withDisplays(displays, error);
        });
    });
}

void CaptureAttempts::captureRect(const Rect &globalRect, ImageCompletion completion)
{
    m_services.capturer.captureRect(globalRect, onMain(std::move(completion)));
}

double CaptureAttempts::desktopTopY() const
{
    return capturegeometry::desktopTopY(m_services.displays.screens(), m_services.displays.mainScreen());
}

CaptureAttempts::ImageCompletion CaptureAttempts::onMain(ImageCompletion completion) const
{
    Scheduler &scheduler = m_services.scheduler;
    return [&scheduler, completion = std::move(completion)](QImage image, std::optional<QString> error) {
        scheduler.postToMain([completion, image = std::move(image), error]() mutable {
            completion(std::move(image), std::move(error));
        });
    };
}
