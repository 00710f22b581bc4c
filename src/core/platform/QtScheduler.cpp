#include "platform/QtScheduler.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <cmath>

QtScheduler::QtScheduler()
{
    if (QCoreApplication *application = QCoreApplication::instance())
        QObject::connect(application, &QCoreApplication::aboutToQuit, &m_mainThreadContext,
                         [this] { waitForBackgroundTasks(); });
}

QtScheduler::~QtScheduler() = default;

void QtScheduler::postToMain(Task task)
{
    QMetaObject::invokeMethod(&m_mainThreadContext, std::move(task), Qt::QueuedConnection);
}

void QtScheduler::postToMainAfter(double seconds, Task task)
{
    const int milliseconds = std::max(0, int(std::lround(seconds * 1000)));
    // QTimer::singleShot with a context object is safe to call from any thread: the timer is created
    // in the context's thread.
    QMetaObject::invokeMethod(
        &m_mainThreadContext,
        [this, milliseconds, task = std::move(task)]() mutable {
            QTimer::singleShot(milliseconds, &m_mainThreadContext, std::move(task));
        },
        Qt::QueuedConnection);
}

void QtScheduler::runInBackground(Task task)
{
    m_workers.start(std::move(task));
}

void QtScheduler::waitForBackgroundTasks()
{
    m_workers.waitForDone();
}
