#pragma once

#include "platform/MainQueue.h"
#include "platform/Timer.h"

#include <memory>

namespace vorrano::platform {

// A queue that runs one task at a time, in order, on background threads; on the main thread only for syncInPlace().
//
// Threads: every method on any thread unless it says otherwise. No task of the queue may wait for the main thread, for
// another queue or for the pool. An exception that leaves a task is written to the system log; the queue goes on.
// Lifetime: tasks that were submitted still run when the queue object is dropped; its timers do not.
class SerialQueue {
public:
    SerialQueue() = default;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    virtual ~SerialQueue() = default;

    virtual void async(Task task) = 0;

    // Runs the task inside the call when the queue is idle and the caller is a background thread; else as async().
    virtual void inPlaceOrAsync(Task task) = 0;

    // Only from a task of this queue: runs the given one on a pool thread next, before anything that waits. For a step
    // that may block and must not hold up a thread that lent itself to inPlaceOrAsync().
    virtual void continueOnPool(Task task) = 0;

    // Waits until the task has run; not from a task of this queue. On the main thread the task goes to a background
    // thread, which is had at once, whatever the others do.
    virtual void sync(Task task) = 0;

    // Like sync(), but runs the task inside the call when the queue is idle, on the main thread too. For a step that
    // calls nobody who may not be called there; where there is somebody, it goes through offMainThread().
    virtual void syncInPlace(Task task) = 0;

    // Only from a task of this queue: runs the given one inside the call on a background thread. On the main thread it
    // leaves it to the background thread that next works on the queue, which does so first; at the latest to one of the
    // pool two milliseconds later. So nobody is woken for what a reader comes by in time to do. It must not block. What
    // is still left when the queue object is dropped does not run.
    virtual void offMainThread(Task task) = 0;

    // A stopped timer whose handler is a task of this queue.
    [[nodiscard]] virtual std::shared_ptr<Timer> makeTimer(TimerSchedule schedule, Task handler) = 0;
};

} // namespace vorrano::platform
