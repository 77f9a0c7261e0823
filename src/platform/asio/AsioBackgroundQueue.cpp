#include "platform/asio/AsioBackgroundQueue.h"

#include "platform/asio/AsioSerialQueue.h"

#include <optional>
#include <utility>

namespace vorrano::asio_platform {

AsioBackgroundQueue::AsioBackgroundQueue(platform::SystemLog& log)
    : m_pool(std::make_shared<AsioPool>(log))
{}

AsioBackgroundQueue::~AsioBackgroundQueue()
{
    stop();
    m_pool->join(std::nullopt);
}

void AsioBackgroundQueue::async(platform::Task task)
{
    m_pool->post([&pool = *m_pool, task = std::move(task)] { pool.run(task); });
}

std::shared_ptr<platform::SerialQueue> AsioBackgroundQueue::makeSerialQueue(std::string label)
{
    return std::make_shared<AsioSerialQueue>(m_pool, m_timers.context(), std::move(label));
}

void AsioBackgroundQueue::stop()
{
    m_timers.stop();
    m_pool->stop();
}

bool AsioBackgroundQueue::joinWithin(std::chrono::nanoseconds limit) { return m_pool->join(limit); }

} // namespace vorrano::asio_platform
