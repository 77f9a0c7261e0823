#pragma once

#include <chrono>
#include <functional>

namespace vorrano::platform {

using Task = std::function<void()>;

// The queue of the main thread: every screen, alert and delegate callback runs on it, one task at a time, in the order
// of submission.
//
// While a modal alert or open panel is up, or a pause runs, the queue holds back: tasks wait and are then run one by
// one, in order. An exception that leaves a task is written to the system log; the queue goes on.
// Once the main loop has ended, async() and after() drop their task and sync() returns unrun.
class MainQueue {
public:
    MainQueue() = default;
    MainQueue(const MainQueue&) = delete;
    MainQueue& operator=(const MainQueue&) = delete;
    virtual ~MainQueue() = default;

    // Any thread. Never runs the task inside the call.
    virtual void async(Task task) = 0;

    // Any thread; waits until the task has run. On the main thread it runs at once. Returns whether it ran.
    virtual bool sync(Task task) = 0;

    // Main thread. Submits the task after `delay`; a hold that is on at that time delays it further.
    virtual void after(std::chrono::nanoseconds delay, Task task) = 0;

    // Any thread.
    [[nodiscard]] virtual bool isMainThread() const = 0;
};

} // namespace vorrano::platform
