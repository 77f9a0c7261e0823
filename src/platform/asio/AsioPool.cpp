#include "platform/asio/AsioPool.h"

#include "platform/Guarded.h"
#include "platform/asio/SignalsBlocked.h"

#include <system_error>

#include <pthread.h>

namespace vorrano::asio_platform {

namespace {

// Free threads that stay.
constexpr int kSpareThreads = 4;

} // namespace

AsioPool::AsioPool(platform::SystemLog& log)
    : m_log(log)
    , m_keepRunning(m_context.get_executor())
{}

void AsioPool::run(const platform::Task& task) noexcept
{
    if (isStopped()) {
        return;
    }
    platform::guarded(m_log, task);
}

void AsioPool::reserveThread()
{
    if (--m_free < 0) {
        addThread();
    }
}

void AsioPool::freeThread()
{
    const platform::MutexLock lock(m_mutex);
    ++m_free;
}

void AsioPool::addThread()
{
    const auto place = m_threads.emplace(m_threads.end());
    try {
        const SignalsBlocked forTheThread;
        *place = std::thread([self = shared_from_this(), place] { self->serve(place); });
        ++m_alive;
        ++m_free;
    } catch (const std::system_error& refused) {
        // The work waits for a thread that becomes free.
        m_threads.erase(place);
        platform::logUncaught(m_log, refused.what());
    }
}

void AsioPool::serve(Threads::iterator self)
{
    pthread_setname_np(pthread_self(), "background");
    while (m_context.run_one() > 0 && !leavesAsSurplus()) {
    }
    leave(self);
}

bool AsioPool::leavesAsSurplus()
{
    const platform::MutexLock lock(m_mutex);
    if (m_free <= kSpareThreads) {
        return false;
    }
    --m_free;
    return true;
}

void AsioPool::leave(Threads::iterator self)
{
    std::thread before;
    {
        const platform::MutexLock lock(m_mutex);
        if (!m_stopped) {
            before = std::exchange(m_lastLeft, std::move(*self));
            m_threads.erase(self);
        }
        --m_alive;
        m_threadLeft.notify_all();
    }
    if (before.joinable()) {
        before.join();
    }
}

void AsioPool::stop()
{
    const platform::MutexLock lock(m_mutex);
    m_stopped.store(true, std::memory_order_release);
    // The threads leave when the work that was handed in is done.
    m_keepRunning.reset();
}

bool AsioPool::join(std::optional<std::chrono::nanoseconds> limit)
{
    platform::MutexLock lock(m_mutex);
    if (m_leftSomeBehind) {
        return false;
    }
    m_leftSomeBehind = !waitUntilAllLeft(limit);
    auto threads = std::exchange(m_threads, {});
    threads.push_back(std::exchange(m_lastLeft, {}));
    const bool complete = !m_leftSomeBehind;
    lock.unlock();
    for (auto& thread : threads) {
        if (complete && thread.joinable()) {
            thread.join();
        } else if (thread.joinable()) {
            thread.detach();
        }
    }
    if (complete) {
        // Work that waited for a thread which the system refused.
        m_context.restart();
        platform::guarded(m_log, [this] { m_context.poll(); });
    }
    return complete;
}

bool AsioPool::waitUntilAllLeft(std::optional<std::chrono::nanoseconds> limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit.value_or(std::chrono::nanoseconds(0));
    while (m_alive > 0) {
        if (!limit) {
            m_threadLeft.wait(m_mutex);
        } else if (m_threadLeft.wait_until(m_mutex, deadline) == std::cv_status::timeout) {
            return m_alive == 0;
        }
    }
    return true;
}

} // namespace vorrano::asio_platform
