#include "platform/asio/AsioBackgroundQueue.h"

#include "platform/asio/AsioPool.h"
#include "platform/asio/AsioSerialQueue.h"
#include "platform/asio/TimerClock.h"

#include <algorithm>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

namespace vorrano::asio_platform {

class AsioBackgroundQueue::Parts {
public:
    Parts(platform::SystemLog& log, std::thread::id mainThread)
        : pool(std::make_shared<AsioPool>(log))
        , clock(std::make_shared<TimerClock>(pool))
        , m_mainThread(mainThread)
    {}

    std::shared_ptr<SerialTasks> makeSerialTasks(std::string label)
    {
        auto tasks = std::make_shared<SerialTasks>(pool, clock, m_mainThread, std::move(label));
        const std::lock_guard lock(m_mutex);
        std::erase_if(m_queues, [](const auto& queue) { return queue.expired(); });
        m_queues.push_back(tasks);
        if (pool->stopped()) {
            tasks->stop();
        }
        return tasks;
    }

    void stop()
    {
        pool->stop();
        clock->stop();
        std::vector<std::weak_ptr<SerialTasks>> queues;
        {
            const std::lock_guard lock(m_mutex);
            queues.swap(m_queues);
        }
        for (const auto& queue : queues) {
            if (const auto tasks = queue.lock()) {
                tasks->stop();
            }
        }
    }

    const std::shared_ptr<AsioPool> pool;
    const std::shared_ptr<TimerClock> clock;

private:
    const std::thread::id m_mainThread;
    std::mutex m_mutex;
    std::vector<std::weak_ptr<SerialTasks>> m_queues;
};

AsioBackgroundQueue::AsioBackgroundQueue(platform::SystemLog& log, std::thread::id mainThread)
    : m_parts(std::make_unique<Parts>(log, mainThread))
{}

AsioBackgroundQueue::~AsioBackgroundQueue()
{
    m_parts->stop();
    m_parts->pool->join(std::nullopt);
}

void AsioBackgroundQueue::async(platform::Task task) { m_parts->pool->post(std::move(task)); }

std::shared_ptr<platform::Timer> AsioBackgroundQueue::makeTimer(platform::TimerSchedule schedule,
                                                                platform::Task handler)
{
    return m_parts->clock->makeTimer(schedule, std::move(handler), {});
}

std::shared_ptr<platform::SerialQueue> AsioBackgroundQueue::makeSerialQueue(std::string label)
{
    return std::make_shared<AsioSerialQueue>(m_parts->makeSerialTasks(std::move(label)));
}

void AsioBackgroundQueue::stop() { m_parts->stop(); }

bool AsioBackgroundQueue::joinWithin(std::chrono::nanoseconds limit) { return m_parts->pool->join(limit); }

} // namespace vorrano::asio_platform
