#pragma once

#include "platform/Timer.h"
#include "platform/asio/AsioSerialQueue.h"

#include <asio/steady_timer.hpp>

#include <chrono>
#include <memory>
#include <mutex>

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

    std::mutex m_mutex; // of what follows
    asio::steady_timer m_timer;
    platform::Task m_handler; // empty once it has run or was cancelled
    bool m_started = false;
};

} // namespace vorrano::asio_platform
