#pragma once

#include "platform/MainQueue.h"
#include "platform/SerialQueue.h"

#include <memory>
#include <string>

namespace vorrano::platform {

// The shared background queue of default priority. Tasks run at the same time, each on a thread of a pool. The pool
// grows when all of its threads are busy, so a task may block its thread for as long as it likes.
//
// Threads: every method on any thread. Background threads block all signals. An exception that leaves a task is written
// to the system log; the thread goes on.
class BackgroundQueue {
public:
    BackgroundQueue() = default;
    BackgroundQueue(const BackgroundQueue&) = delete;
    BackgroundQueue& operator=(const BackgroundQueue&) = delete;
    virtual ~BackgroundQueue() = default;

    // Runs the task on a thread of the pool, never inside the call.
    virtual void async(Task task) = 0;

    // A serial queue of its own over this pool; the label (a reverse-DNS name) is for debuggers.
    [[nodiscard]] virtual std::shared_ptr<SerialQueue> makeSerialQueue(std::string label) = 0;
};

} // namespace vorrano::platform
