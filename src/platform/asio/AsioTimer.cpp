#include "platform/asio/AsioTimer.h"

#include <asio/post.hpp>

#include <algorithm>
#include <utility>

namespace vorrano::asio_platform {

namespace {

using Clock = std::chrono::steady_clock;

// `delay` from now, or the end of time.
Clock::time_point after(std::chrono::nanoseconds delay)
{
    const auto now = Clock::now();
    return now + std::min(std::max(delay, std::chrono::nanoseconds(0)), Clock::time_point::max() - now);
}

} // namespace

AsioTimer::AsioTimer(std::shared_ptr<AsioPool> pool, std::shared_ptr<asio::io_context> timers, Strand strand,
                     std::chrono::nanoseconds delay, platform::Task handler)
    : m_pool(std::move(pool))
    , m_timers(std::move(timers))
    , m_strand(std::move(strand))
    , m_delay(delay)
    , m_timer(*m_timers)
    , m_handler(std::move(handler))
{}

void AsioTimer::start()
{
    const platform::MutexLock lock(m_mutex);
    if (std::exchange(m_started, true) || !m_handler) {
        return;
    }
    m_timer.expires_at(after(m_delay));
    m_timer.async_wait([timer = weak_from_this()](const asio::error_code& cancelled) {
        const auto alive = timer.lock();
        if (alive && !cancelled) {
            alive->submit();
        }
    });
}

void AsioTimer::cancel()
{
    // Released after the lock: the handler may hold the last reference to this timer.
    const auto released = takeHandler();
    const platform::MutexLock lock(m_mutex);
    m_timer.cancel();
}

void AsioTimer::submit()
{
    asio::post(m_strand, [timer = weak_from_this()] {
        if (const auto alive = timer.lock()) {
            alive->runHandler();
        }
    });
}

void AsioTimer::runHandler()
{
    if (const auto handler = takeHandler()) {
        m_pool->run(handler);
    }
}

platform::Task AsioTimer::takeHandler()
{
    const platform::MutexLock lock(m_mutex);
    return std::exchange(m_handler, nullptr);
}

} // namespace vorrano::asio_platform
