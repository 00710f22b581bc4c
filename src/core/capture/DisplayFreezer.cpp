#include "capture/DisplayFreezer.h"

#include "platform/DiagnosticsLog.h"
#include "capture/CaptureAttempts.h"
#include "capture/CaptureGeometry.h"
#include "capture/CaptureServices.h"
#include "geometry/TraceFormat.h"
#include "platform/DisplayProvider.h"

using namespace Qt::StringLiterals;

void DisplayFreezer::captureFrozenDisplayImages(std::function<void(Snapshots)> completion)
{
    auto run = std::make_shared<Run>();
    run->completion = std::move(completion);
    for (const DisplayInfo &screen : m_services.displays.screens()) {
        if (screen.id)
            run->targets.append({*screen.id, screen.frame, screen.backingScale});
    }
    // Nothing to take: no count is traced, as none was taken.
    if (run->targets.isEmpty()) {
        run->completion({});
        return;
    }
    captureNext(run);
}

void DisplayFreezer::captureLiveImages(QList<FrozenCaptureTarget> targets, std::function<void(Snapshots)> completion)
{
    auto run = std::make_shared<Run>();
    run->targets = std::move(targets);
    run->completion = std::move(completion);
    readNext(run);
}

void DisplayFreezer::readNext(std::shared_ptr<Run> run)
{
    if (run->next >= run->targets.size()) {
        run->completion(std::move(run->results));
        return;
    }
    const FrozenCaptureTarget target = run->targets.at(run->next++);
    const Rect globalRect = capturegeometry::cgGlobalRect(target.frame, m_attempts.desktopTopY());
    m_attempts.captureRect(globalRect, [this, run, target](QImage image, std::optional<QString>) {
        if (!image.isNull())
            run->results.insert(target.id, FrozenDisplaySnapshot{std::move(image), target.frame});
        readNext(run);
    });
}

void DisplayFreezer::captureNext(std::shared_ptr<Run> run)
{
    if (run->next >= run->targets.size()) {
        m_services.diagnostics.write(u"frozen displays captured count="_s % QString::number(run->results.size())
                                     % u" via ScreenCaptureKit"_s);
        run->completion(std::move(run->results));
        return;
    }
    const FrozenCaptureTarget target = run->targets.at(run->next++);
    auto keep = [run, target](QImage image) {
        run->results.insert(target.id, FrozenDisplaySnapshot{std::move(image), target.frame});
    };
    m_attempts.captureUsingDisplayFilter(
        target.id, capturegeometry::localBounds(target.frame), target.frame, target.scale,
        [this, run, target, keep](QImage image, std::optional<QString>) {
            if (!image.isNull()) {
                keep(std::move(image));
                captureNext(run);
                return;
            }
            // The frame is handed over as it is, without the flip to the top-left space; the two spaces
            // agree for the primary display, which is the one this fallback is meant for.
            m_attempts.captureRect(target.frame, [this, run, target, keep](QImage image,
                                                                          std::optional<QString> error) {
                if (!image.isNull()) {
                    keep(std::move(image));
                } else {
                    m_services.diagnostics.write(u"frozen capture failed display="_s % QString::number(target.id)
                                                 % u" frame="_s % trace::rect(target.frame) % u" error="_s
                                                 % error.value_or(u"unknown"_s));
                }
                captureNext(run);
            });
        });
}
