#pragma once

#include <chrono>

namespace vorrano::platform {

// When a timer fires: `delay` after its start, up to `leeway` late.
struct TimerSchedule {
    std::chrono::nanoseconds delay{};
    std::chrono::nanoseconds leeway{};
};

// A one-shot timer of a serial queue, made stopped.
//
// Threads: every method on any thread; none waits for the handler. The handler is a task of the queue that made the
// timer. A second start() does nothing. After cancel() the handler does not begin any more, when cancel() was called by
// a task of the queue or before the time had come.
// Lifetime: dropping the last reference cancels. The handler is released when it has run or was cancelled.
class Timer {
public:
    Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    virtual ~Timer() = default;

    virtual void start() = 0;
    virtual void cancel() = 0;
};

} // namespace vorrano::platform
