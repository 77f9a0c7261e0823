#pragma once

#include "platform/SerialQueue.h"
#include "platform/asio/PoolExecutor.h"

#include <asio/strand.hpp>
#include <asio/thread_pool.hpp>

#include <memory>
#include <string>

namespace vorrano::asio_platform {

using Strand = asio::strand<PoolExecutor>;

// A serial queue: a strand of Asio's over the pool.
//
// Threads, lifetime: as SerialQueue says; it may outlive the background queue.
class AsioSerialQueue final : public platform::SerialQueue {
public:
    AsioSerialQueue(std::shared_ptr<AsioPool> pool, std::shared_ptr<asio::thread_pool> timers, std::string label);

    void async(platform::Task task) override;
    void dispatch(platform::Task task) override;
    void sync(platform::Task task) override;
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule,
                                                             platform::Task handler) override;

private:
    const std::shared_ptr<AsioPool> m_pool;
    const std::shared_ptr<asio::thread_pool> m_timers;
    const std::string m_label; // for debuggers
    const Strand m_strand;
};

} // namespace vorrano::asio_platform
