#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/System.h"

#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace vorrano::asio_platform {

// The background queue: a pool of threads that grows when none is free, and lets surplus ones go after a second.
//
// Threads: as BackgroundQueue says; stop() on any thread, joinWithin() and the destructor on none of the queue's own.
// The end: stop() lets no further task begin. Tasks that wait are dropped, timers cancelled, and those who wait in a
// serial queue's sync() go on without its task having run; from then on everything handed in is dropped and sync()
// returns unrun. Tasks that run go on to their end. The destructor stops, and waits for every one of them.
// Lifetime: the log outlives the queue. Serial queues and timers may outlive it; they do nothing any more then.
class AsioBackgroundQueue final : public platform::BackgroundQueue {
public:
    AsioBackgroundQueue(platform::SystemLog& log, std::thread::id mainThread);
    AsioBackgroundQueue(const AsioBackgroundQueue&) = delete;
    AsioBackgroundQueue& operator=(const AsioBackgroundQueue&) = delete;
    ~AsioBackgroundQueue() override;

    void async(platform::Task task) override;
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule,
                                                             platform::Task handler) override;
    [[nodiscard]] std::shared_ptr<platform::SerialQueue> makeSerialQueue(std::string label) override;

    void stop();

    // After stop(): waits until every thread has left. False when `limit` passed first: a task is stuck in the kernel,
    // and its thread is left behind, by the destructor too. The process has to end then without destroying what that
    // task may still use.
    bool joinWithin(std::chrono::nanoseconds limit);

private:
    class Parts;
    const std::unique_ptr<Parts> m_parts;
};

} // namespace vorrano::asio_platform
