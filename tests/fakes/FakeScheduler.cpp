#include "FakeScheduler.h"

#include <algorithm>

void FakeScheduler::postToMain(Task task)
{
    m_mainTasks.append({m_now, m_nextOrder++, std::move(task)});
}

void FakeScheduler::postToMainAfter(double seconds, Task task)
{
    m_requestedDelays.append(seconds);
    m_mainTasks.append({m_now + seconds, m_nextOrder++, std::move(task)});
}

void FakeScheduler::runInBackground(Task task)
{
    m_backgroundTasks.append(std::move(task));
}

bool FakeScheduler::runNextDue()
{
    auto next = std::min_element(m_mainTasks.begin(), m_mainTasks.end(), [](const Timed &a, const Timed &b) {
        return a.due != b.due ? a.due < b.due : a.order < b.order;
    });
    if (next == m_mainTasks.end() || next->due > m_now + 1e-12)
        return false;
    Task task = std::move(next->task);
    m_mainTasks.erase(next);
    task();
    return true;
}

void FakeScheduler::runUntilIdle()
{
    while (runNextDue()) {
    }
}

void FakeScheduler::advance(double seconds)
{
    const double target = m_now + seconds;
    for (;;) {
        runUntilIdle();
        auto next = std::min_element(m_mainTasks.begin(), m_mainTasks.end(),
                                     [](const Timed &a, const Timed &b) { return a.due < b.due; });
        if (next == m_mainTasks.end() || next->due > target + 1e-12)
            break;
        m_now = std::max(m_now, next->due);
    }
    m_now = target;
    runUntilIdle();
}

void FakeScheduler::runBackgroundTasks()
{
    while (!m_backgroundTasks.isEmpty()) {
        Task task = m_backgroundTasks.takeFirst();
        task();
    }
    runUntilIdle();
}
