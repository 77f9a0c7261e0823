#pragma once

#include "platform/Mutex.h"
#include "platform/Timer.h"
#include "platform/asio/AsioSerialQueue.h"

#include <asio/steady_timer.hpp>

#include <chrono>
#include <memory>

namespace vorrano::asio_platform {

// A one-shot timer of a serial queue: Asio's steady timer, which hands the handler over to the strand. Needs no leeway.
//
// Threads, lifetime: as Timer says.
class AsioTimer final : public platform::Timer, public std::enable_shared_from_this<AsioTimer> {
public:
    AsioTimer(std::shared_ptr<AsioPool> pool, std::shared_ptr<asio::io_context> timers, Strand strand,
              std::chrono::nanoseconds delay, platform::Task handler);

    void start() override;
    void cancel() override;

private:
    void submit();
    void runHandler();
    [[nodiscard]] platform::Task takeHandler();

    const std::shared_ptr<AsioPool> m_pool;
    const std::shared_ptr<asio::io_context> m_timers;
    const Strand m_strand;
    const std::chrono::nanoseconds m_delay;

    platform::Mutex m_mutex;
    asio::steady_timer m_timer VORRANO_GUARDED_BY(m_mutex);
    platform::Task m_handler VORRANO_GUARDED_BY(m_mutex); // empty once it has run or was cancelled
    bool m_started VORRANO_GUARDED_BY(m_mutex) = false;
};

} // namespace vorrano::asio_platform
