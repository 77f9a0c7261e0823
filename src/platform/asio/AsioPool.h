#pragma once

#include "platform/MainQueue.h"
#include "platform/Mutex.h"

#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <list>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace vorrano::platform {
class SystemLog;
}

namespace vorrano::asio_platform {

// The threads behind the background queue: an io_context, and as many threads as its work needs at the same time.
//
// Work that is handed in while no thread is free gets a new thread at once. A thread that has done its work leaves when
// enough others are free.
// Threads: every method on any thread; join() on none of the pool's.
// Lifetime: its threads hold it too, so that a thread which join() left behind still finds it.
class AsioPool : public std::enable_shared_from_this<AsioPool> {
public:
    explicit AsioPool(platform::SystemLog& log);
    AsioPool(const AsioPool&) = delete;
    AsioPool& operator=(const AsioPool&) = delete;
    ~AsioPool() = default;

    // Runs `work` on a thread of the pool. Once the pool has been stopped it runs inside the call: all that is left to
    // do then is to drop the tasks in it, which run() does.
    template <class Work>
    void post(Work work)
    {
        platform::MutexLock lock(m_mutex);
        if (m_stopped) {
            lock.unlock();
            work();
            return;
        }
        reserveThread();
        asio::post(m_context, [this, work = std::move(work)]() mutable {
            {
                // What the work holds goes before its thread counts as free.
                auto once = std::move(work);
                once();
            }
            freeThread();
        });
    }

    // Runs the task here, unless the pool has been stopped. An exception that leaves it goes to the log.
    void run(const platform::Task& task) noexcept;

    [[nodiscard]] bool isOnItsThread() { return m_context.get_executor().running_in_this_thread(); }
    [[nodiscard]] asio::io_context& context() { return m_context; }

    // No task begins any more.
    void stop();
    [[nodiscard]] bool isStopped() const { return m_stopped.load(std::memory_order_acquire); }

    // After stop(): waits until every thread has left. False when `limit` passed first: the threads that are still busy
    // then are left behind, and no later call waits for them.
    bool join(std::optional<std::chrono::nanoseconds> limit);

private:
    using Threads = std::list<std::thread>;

    void reserveThread() VORRANO_REQUIRES(m_mutex);
    void freeThread();
    void addThread() VORRANO_REQUIRES(m_mutex);
    bool waitUntilAllLeft(std::optional<std::chrono::nanoseconds> limit) VORRANO_REQUIRES(m_mutex);
    void serve(Threads::iterator self);
    [[nodiscard]] bool leavesAsSurplus();
    void leave(Threads::iterator self);

    platform::SystemLog& m_log;
    asio::io_context m_context;
    asio::executor_work_guard<asio::io_context::executor_type> m_keepRunning;

    platform::Mutex m_mutex;
    std::condition_variable_any m_threadLeft;
    Threads m_threads VORRANO_GUARDED_BY(m_mutex);
    // The thread that left last; the next one to leave joins it.
    std::thread m_lastLeft VORRANO_GUARDED_BY(m_mutex);
    // Threads that are free, less the work that waits for one.
    int m_free VORRANO_GUARDED_BY(m_mutex) = 0;
    int m_alive VORRANO_GUARDED_BY(m_mutex) = 0;
    std::atomic<bool> m_stopped = false; // written under the lock
    bool m_leftSomeBehind VORRANO_GUARDED_BY(m_mutex) = false;
};

} // namespace vorrano::asio_platform
