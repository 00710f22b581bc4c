#pragma once

#include <functional>

// Where work runs. All state of the product lives on the main thread; anything started elsewhere posts
// its result back through postToMain. Delays go through here too, so tests run timed behaviour instantly.
class Scheduler
{
public:
    using Task = std::function<void()>;

    virtual ~Scheduler() = default;

    // Runs the task on the main thread after the current event has been handled.
    virtual void postToMain(Task task) = 0;
    // Runs the task on the main thread once `seconds` have passed.
    virtual void postToMainAfter(double seconds, Task task) = 0;
    // Runs the task on a worker thread. It must not touch main-thread state; it posts back instead.
    virtual void runInBackground(Task task) = 0;
};
