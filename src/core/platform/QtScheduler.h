#pragma once

#include "platform/Scheduler.h"

#include <QObject>
#include <QPointer>

// The scheduler of the running application, on Qt's event loop and global thread pool.
// Construct it on the main thread; its tasks run in that thread's event loop.
class QtScheduler final : public Scheduler
{
public:
    QtScheduler();
    ~QtScheduler() override;

    void postToMain(Task task) override;
    void postToMainAfter(double seconds, Task task) override;
    void runInBackground(Task task) override;

private:
    QObject m_mainThreadContext;
};
