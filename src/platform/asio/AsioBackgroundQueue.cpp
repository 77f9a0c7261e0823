#include "platform/asio/AsioBackgroundQueue.h"

#include "platform/asio/AsioSerialQueue.h"
#include "platform/asio/SignalsBlocked.h"

#include <asio/post.hpp>

#include <optional>
#include <utility>

#include <pthread.h>

namespace vorrano::asio_platform {

namespace {

std::shared_ptr<asio::thread_pool> makeTimerThread()
{
    const SignalsBlocked forTheThread;
    auto thread = std::make_shared<asio::thread_pool>(1);
    asio::post(*thread, [] { pthread_setname_np(pthread_self(), "timers"); });
    return thread;
}

} // namespace

AsioBackgroundQueue::AsioBackgroundQueue(platform::SystemLog& log)
    : m_pool(std::make_shared<AsioPool>(log))
    , m_timers(makeTimerThread())
{}

AsioBackgroundQueue::~AsioBackgroundQueue()
{
    stop();
    m_timers->join();
    m_pool->join(std::nullopt);
}

void AsioBackgroundQueue::async(platform::Task task)
{
    m_pool->post([&pool = *m_pool, task = std::move(task)] { pool.run(task); });
}

std::shared_ptr<platform::SerialQueue> AsioBackgroundQueue::makeSerialQueue(std::string label)
{
    return std::make_shared<AsioSerialQueue>(m_pool, m_timers, std::move(label));
}

void AsioBackgroundQueue::stop()
{
    m_timers->stop();
    m_pool->stop();
}

bool AsioBackgroundQueue::joinWithin(std::chrono::nanoseconds limit) { return m_pool->join(limit); }

} // namespace vorrano::asio_platform
