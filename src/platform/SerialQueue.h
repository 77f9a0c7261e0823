#pragma once

#include "platform/MainQueue.h"
#include "platform/Timer.h"

#include <memory>

namespace vorrano::platform {

// A queue that runs one task at a time, in the order of submission, on background threads and never on the main thread.
//
// Threads: every method on any thread. A task sees what its submitter and the task before it wrote. When its turn has
// come it gets a thread of the background queue at once, a new one when all of them are busy; it waits for a thread
// only when the system refuses a new one. A task must not wait for the main thread or for another task, of whatever
// queue.
// Errors: an exception that leaves a task is written to the system log, and never reaches the submitter; the queue goes
// on.
// Lifetime: dropping the queue object does not wait. Tasks that were submitted still run, and timers that were started
// still fire.
// The end: once the background queue has been stopped, no task begins. A task that runs goes on to its end. Those that
// wait are destroyed when their turn comes, later ones inside the call that submits them.
// tests/contract runs the same tests over each implementation.
class SerialQueue {
public:
    SerialQueue() = default;
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;
    virtual ~SerialQueue() = default;

    // Submits the task. It never runs inside the call.
    virtual void async(Task task) = 0;

    // Runs the task inside the call when the caller is on a background thread (in a task of the background queue or of
    // another serial queue, a timer's handler among them) and this queue is idle: no task of it runs or waits.
    // Otherwise the same as async(). What is submitted while the task runs does not run on the caller's thread.
    virtual void dispatch(Task task) = 0;

    // Submits the task like async() and waits until it has been destroyed, which is after it has run. The caller sees
    // what it wrote. Once the background queue has been stopped the task is destroyed without having run, also when the
    // caller waits already: a caller who has to know lets the task note that it ran.
    // For the main thread and for tasks of the background queue. Throws std::logic_error in a task of this queue, which
    // would wait for itself; in a task of another serial queue nothing shows the mistake but a deadlock.
    virtual void sync(Task task) = 0;

    // A timer, not yet started, whose handler is a task of this queue, submitted when the timer fires (Timer.h).
    [[nodiscard]] virtual std::shared_ptr<Timer> makeTimer(TimerSchedule schedule, Task handler) = 0;
};

} // namespace vorrano::platform
