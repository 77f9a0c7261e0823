#pragma once

#include "platform/Mutex.h"
#include "platform/Timer.h"
#include "platform/asio/AsioSerialQueue.h"

#include <asio/steady_timer.hpp>
#include <asio/thread_pool.hpp>

#include <memory>

namespace vorrano::asio_platform {

// A one-shot timer of a serial queue: Asio's steady timer, which hands the handler over to the strand.
//
// Nearly all timers are cancelled: each request has one. So a cancelled timer is left to expire, without its handler,
// unless that takes long, and timers with a leeway expire at common times. Otherwise each start and each cancel would
// wake the timers' thread.
// Threads, lifetime: as Timer says.
class AsioTimer final : public platform::Timer, public std::enable_shared_from_this<AsioTimer> {
public:
    AsioTimer(std::shared_ptr<AsioPool> pool, std::shared_ptr<asio::thread_pool> timers, Strand strand,
              platform::TimerSchedule schedule, platform::Task handler);
    AsioTimer(const AsioTimer&) = delete;
    AsioTimer& operator=(const AsioTimer&) = delete;
    ~AsioTimer() override { AsioTimer::cancel(); }

    void start() override;
    void cancel() override;

private:
    void submit();
    void runHandler();
    [[nodiscard]] platform::Task takeHandler();

    const std::shared_ptr<AsioPool> m_pool;
    const std::shared_ptr<asio::thread_pool> m_timers;
    const Strand m_strand;
    const platform::TimerSchedule m_schedule;

    platform::Mutex m_mutex;
    // Held by its own wait too. Null before the start.
    std::shared_ptr<asio::steady_timer> m_timer VORRANO_GUARDED_BY(m_mutex);
    platform::Task m_handler VORRANO_GUARDED_BY(m_mutex); // empty once it has run or was cancelled
};

} // namespace vorrano::asio_platform
