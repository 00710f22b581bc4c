#pragma once

#include "platform/Scheduler.h"

#include <QList>

// Runs posted work only when the test says so, on a virtual clock: timed tasks become due when the test
// advances time, so delays are checked exactly and without sleeping.
class FakeScheduler final : public Scheduler
{
public:
    void postToMain(Task task) override;
    void postToMainAfter(double seconds, Task task) override;
    void runInBackground(Task task) override;

    // Runs main-thread tasks that are due (and those they post) until none is left.
    void runUntilIdle();
    // Moves the clock forward, running every task that falls due on the way, in order of due time.
    void advance(double seconds);
    // Runs the background tasks queued so far (and then what they posted to the main thread).
    void runBackgroundTasks();

    double now() const { return m_now; }
    int pendingMainTasks() const { return int(m_mainTasks.size()); }
    int pendingBackgroundTasks() const { return int(m_backgroundTasks.size()); }
    // Delays of every postToMainAfter call so far.
    const QList<double> &requestedDelays() const { return m_requestedDelays; }

private:
    struct Timed
    {
        double due;
        quint64 order;
        Task task;
    };
    bool runNextDue();

    QList<Timed> m_mainTasks;
    QList<Task> m_backgroundTasks;
    QList<double> m_requestedDelays;
    double m_now = 0;
    quint64 m_nextOrder = 0;
};
