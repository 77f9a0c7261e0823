#pragma once

#include <chrono>

namespace vorrano::platform {

// When a timer fires: first after `first` from its start, then every `interval`, each time up to `leeway` late.
struct TimerSchedule {
    std::chrono::nanoseconds first{};
    std::chrono::nanoseconds interval{};
    std::chrono::nanoseconds leeway{};
};

// A repeating timer of a queue, made stopped.
//
// Threads: every method on any thread; none waits for the handler. The handler runs on the queue that made the timer
// and never overlaps itself. After cancel() returns no further call of the handler begins (for a timer of a serial
// queue: when cancel() was called on that queue, or before the handler's turn came).
// Lifetime: dropping the last reference cancels. The handler is released when the timer has been cancelled.
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
