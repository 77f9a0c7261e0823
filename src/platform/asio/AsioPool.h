#pragma once

#include "platform/System.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace vorrano::asio_platform {

// The threads behind the background queue: an io_context and as many threads as its work needs.
//
// Work that is handed in while no thread is free gets a new one at once. Free threads beyond two leave after a second.
// Threads: every method on any thread; join() on none of the pool's.
// Lifetime: held by its threads too, so that one that join() left behind still finds it.
class AsioPool : public std::enable_shared_from_this<AsioPool> {
public:
    explicit AsioPool(platform::SystemLog& log);
    AsioPool(const AsioPool&) = delete;
    AsioPool& operator=(const AsioPool&) = delete;
    ~AsioPool() = default;

    // Runs `work` on a thread of the pool; dropped once the pool has been stopped.
    template <class Work>
    void post(Work work)
    {
        if (stopped()) {
            return;
        }
        take();
        asio::post(m_context, [this, work = std::move(work)]() mutable {
            run(std::move(work));
            m_spare.fetch_add(1);
        });
    }

    // Runs `work` here; an exception that leaves it goes to the log.
    template <class Work>
    void guarded(Work& work) noexcept
    {
        try {
            work();
        } catch (const std::exception& thrown) {
            report(thrown.what());
        } catch (...) {
            report("no std::exception");
        }
    }

    // No work begins any more; what waits is dropped.
    void stop();
    [[nodiscard]] bool stopped() const { return m_stopped.load(std::memory_order_acquire); }

    // After stop(): waits until every thread has left. False when `limit` passed first: the threads that are still
    // busy then are left behind, and no later call waits for them.
    bool join(std::optional<std::chrono::nanoseconds> limit);

private:
    using Threads = std::list<std::thread>;

    template <class Work>
    void run(Work work) noexcept
    {
        if (!stopped()) {
            guarded(work);
        }
    }

    void take();
    void grow();
    void work(Threads::iterator self);
    void serve();
    [[nodiscard]] bool leaveIfSurplus();
    void leave(Threads::iterator self);
    void report(const char* what) noexcept;

    platform::SystemLog& m_log;
    asio::io_context m_context;
    asio::executor_work_guard<asio::io_context::executor_type> m_keepRunning;
    std::atomic<bool> m_stopped = false;

    // Threads that are free, less the tasks that wait for one.
    std::atomic<int> m_spare = 0;
    std::mutex m_mutex;
    std::condition_variable m_someoneLeft;
    Threads m_threads;
    // The thread that left last; the next one to leave joins it.
    std::thread m_left;
    int m_alive = 0;
    bool m_leftSomeBehind = false;
};

} // namespace vorrano::asio_platform
