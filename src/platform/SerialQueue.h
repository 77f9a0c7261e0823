#pragma once

#include "platform/MainQueue.h"
#include "platform/Timer.h"

#include <memory>

namespace vorrano::platform {

// A queue that runs one task at a time, in the order of submission, on background threads and never on the main thread.
//
// Threads: every method on any thread. What one task wrote, the next one sees. A task must not wait for the main
// thread, for a task of another serial queue (no sync() there), or for a task of the background queue. An exception
// that leaves a task is written to the system log; the queue goes on.
// Lifetime: tasks that were submitted still run when the queue object is dropped, and timers that were started still
// fire. After the end of the background queue (its stop()) no task begins: tasks are dropped, possibly inside the call
// that submits them. tests/contract holds every maker of serial queues to this.
class SerialQueue {
public:
    SerialQueue() = default;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    virtual ~SerialQueue() = default;

    // Submits the task. It runs on a background thread, never inside the call. It gets a thread at once, even when all
    // others are busy; it waits for one only when the system refuses another thread.
    virtual void async(Task task) = 0;

    // Runs the task inside the call when the caller is on a background thread (in a task of the background queue or of
    // another serial queue, a timer's handler among them) and this queue is idle: no task of it runs or waits.
    // Otherwise the same as async(). Tasks that others submit meanwhile do not run on the caller's thread.
    virtual void dispatch(Task task) = 0;

    // Submits the task like async(), and returns once it has run, or thrown, and has been destroyed. After the stop()
    // of the background queue it returns without having run it; the task itself has to note that it ran. A task of this
    // queue must not call it: it would wait for itself (std::logic_error).
    virtual void sync(Task task) = 0;

    // A timer, not yet started, whose handler is a task of this queue.
    [[nodiscard]] virtual std::shared_ptr<Timer> makeTimer(TimerSchedule schedule, Task handler) = 0;
};

} // namespace vorrano::platform
