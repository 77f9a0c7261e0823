#pragma once

#include "platform/BackgroundQueue.h"
#include "platform/asio/AsioPool.h"

#include <asio/thread_pool.hpp>

#include <chrono>
#include <memory>
#include <string>

namespace vorrano::asio_platform {

// The background queue: a pool of threads that grows when none is free, and a thread for timers.
//
// Threads: as BackgroundQueue says; stop() on any thread, joinWithin() and the destructor on none of the queue's own.
// The end: after stop() no task begins and no timer fires. Tasks that wait are dropped when their turn comes, and who
// waits for one in sync() goes on then; what is handed in later is dropped at once. Tasks that run go on to their end.
// The destructor stops, and waits for every one of them.
// Lifetime: the log outlives the queue. Serial queues and timers may outlive it; they do nothing then.
class AsioBackgroundQueue final : public platform::BackgroundQueue {
public:
    explicit AsioBackgroundQueue(platform::SystemLog& log);
    AsioBackgroundQueue(const AsioBackgroundQueue&) = delete;
    AsioBackgroundQueue& operator=(const AsioBackgroundQueue&) = delete;
    ~AsioBackgroundQueue() override;

    void async(platform::Task task) override;
    [[nodiscard]] std::shared_ptr<platform::SerialQueue> makeSerialQueue(std::string label) override;

    void stop();

    // After stop(): waits until every thread has left. False when `limit` passed first: a task is stuck in the kernel,
    // and its thread is left behind, by the destructor too. The process has to end then without destroying what that
    // task may still use.
    bool joinWithin(std::chrono::nanoseconds limit);

private:
    const std::shared_ptr<AsioPool> m_pool;
    // Its one thread only hands expired timers over to their queues, so no handler delays another timer. It is apart
    // from the pool, as Asio wakes a second thread of a pool at each expiry.
    const std::shared_ptr<asio::thread_pool> m_timers;
};

} // namespace vorrano::asio_platform
