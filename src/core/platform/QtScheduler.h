#pragma once

#include "platform/Scheduler.h"

#include <QObject>
#include <QThreadPool>

// The scheduler of the running application, on Qt's event loop and a thread pool of its own.
// Construct it on the main thread, once the application object exists; its tasks run in that thread's
// event loop. When the application is about to quit, it waits for the background tasks still running
// (a picture being written), while the services they use are all still there.
class QtScheduler final : public Scheduler
{
public:
    QtScheduler();
    ~QtScheduler() override;

    void postToMain(Task task) override;
    void postToMainAfter(double seconds, Task task) override;
    void runInBackground(Task task) override;

    // Blocks until no background task is left.
    void waitForBackgroundTasks();

private:
    QObject m_mainThreadContext;
    // Declared last, so that it is drained first: what the tasks post back still finds its context.
    QThreadPool m_workers;
};
