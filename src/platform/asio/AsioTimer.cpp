#include "platform/asio/AsioTimer.h"

#include <asio/post.hpp>

#include <algorithm>
#include <chrono>
#include <utility>

namespace vorrano::asio_platform {

namespace {

using Clock = std::chrono::steady_clock;

// A cancelled timer that expires later than this is taken out, so that they do not gather.
constexpr std::chrono::seconds kLong{10};
// Timers with a leeway expire at the multiples of this part of it.
constexpr int kTimesPerLeeway = 4;

// The delay from now, or the end of time; rounded up within the leeway.
Clock::time_point expiryOf(const platform::TimerSchedule& schedule)
{
    const auto now = Clock::now();
    const auto left = Clock::time_point::max() - now;
    const auto delay = std::clamp<Clock::duration>(schedule.delay, Clock::duration::zero(), left);
    const auto grid = schedule.leeway / kTimesPerLeeway;
    if (grid <= Clock::duration::zero() || delay > left - grid) {
        return now + delay;
    }
    const auto due = now + delay + grid - Clock::duration(1);
    return due - due.time_since_epoch() % grid;
}

} // namespace

AsioTimer::AsioTimer(std::shared_ptr<AsioPool> pool, std::shared_ptr<asio::thread_pool> timers, Strand strand,
                     platform::TimerSchedule schedule, platform::Task handler)
    : m_pool(std::move(pool))
    , m_timers(std::move(timers))
    , m_strand(std::move(strand))
    , m_schedule(schedule)
    , m_handler(std::move(handler))
{}

void AsioTimer::start()
{
    const platform::MutexLock lock(m_mutex);
    if (m_timer || !m_handler) {
        return;
    }
    m_timer = std::make_shared<asio::steady_timer>(*m_timers, expiryOf(m_schedule));
    m_timer->async_wait([timer = weak_from_this(), held = m_timer](const asio::error_code& cancelled) {
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
    if (m_timer && m_schedule.delay > kLong) {
        asio::error_code never;
        m_timer->cancel(never);
    }
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
