#pragma once

#include "platform/MainQueue.h"
#include "platform/Timer.h"

#include <memory>

namespace vorrano::platform {

// A queue that runs one task at a time, in the order of submission, on background threads and never on the main thread.
//
// Threads: every method on any thread. A task must not wait for the main thread, for another queue or for the pool. An
// exception that leaves a task is written to the system log; the queue goes on.
// Lifetime: tasks that were submitted still run when the queue object is dropped. When the background queue has ended,
// tasks are dropped and sync() returns without having run its task.
class SerialQueue {
public:
    SerialQueue() = default;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    virtual ~SerialQueue() = default;

    // Submits the task. It runs on a background thread, never inside the call; a thread is found at once, whatever the
    // other threads do.
    virtual void async(Task task) = 0;

    // Runs the task inside the call when the caller is a task of the background queue and this queue is idle. Otherwise
    // the same as async(). Tasks that others submit meanwhile do not run on the caller's thread.
    virtual void dispatch(Task task) = 0;

    // Submits the task like async() and waits until it has run. A task of this queue must not call it: it would wait
    // for itself (std::logic_error).
    virtual void sync(Task task) = 0;

    // A timer, not yet started, whose handler is a task of this queue.
    [[nodiscard]] virtual std::shared_ptr<Timer> makeTimer(TimerSchedule schedule, Task handler) = 0;
};

} // namespace vorrano::platform
