#pragma once

#include "capture/CaptureRecords.h"

#include <QList>
#include <QMap>

#include <functional>
#include <memory>

class CaptureAttempts;
struct CaptureServices;

// Takes a still image of every display when a selection starts, so the overlay can show the screen as
// it was and the capture can be cut from it. Displays are taken one after another; a display that
// cannot be taken is left out (it is captured live, and its overlay shows the live pixels read just
// before it appears). Main thread.
class DisplayFreezer final
{
public:
    using Snapshots = QMap<quint32, FrozenDisplaySnapshot>;

    DisplayFreezer(const CaptureServices &services, CaptureAttempts &attempts)
        : m_services(services), m_attempts(attempts)
    {
    }

    // Completes on the main thread with a snapshot per display that could be taken.
    void captureFrozenDisplayImages(std::function<void(Snapshots)> completion);
    // Completes on the main thread with what each of the displays shows now, read as a rectangle of the
    // desktop; a display that cannot be read is left out.
    void captureLiveImages(QList<FrozenCaptureTarget> targets, std::function<void(Snapshots)> completion);

private:
    struct Run
    {
        QList<FrozenCaptureTarget> targets;
        int next = 0;
        Snapshots results;
        std::function<void(Snapshots)> completion;
    };
    void captureNext(std::shared_ptr<Run> run);
    void readNext(std::shared_ptr<Run> run);

    const CaptureServices &m_services;
    CaptureAttempts &m_attempts;
};
