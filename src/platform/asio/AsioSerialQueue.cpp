#include "platform/asio/AsioSerialQueue.h"

#include "platform/asio/AsioTimer.h"

#include <asio/dispatch.hpp>
#include <asio/post.hpp>

#include <future>
#include <stdexcept>
#include <utility>

namespace vorrano::asio_platform {

namespace {

// A task on its way through a strand.
struct Step {
    std::shared_ptr<AsioPool> pool;
    platform::Task task;

    void operator()() const { pool->run(task); }
};

// The same, for a caller that waits. The promise is never kept: its end ends the wait, and comes when the step is
// destroyed, whether the task ran or was dropped. The task is destroyed before that. A semaphore of the standard
// library would look again and again before it sleeps, on a processor that the task may need.
struct AwaitedStep {
    std::promise<void> gone;
    Step step;

    void operator()() { step(); }
};

} // namespace

AsioSerialQueue::AsioSerialQueue(std::shared_ptr<AsioPool> pool, std::shared_ptr<asio::thread_pool> timers,
                                 std::string label)
    : m_pool(std::move(pool))
    , m_timers(std::move(timers))
    , m_label(std::move(label))
    , m_strand(PoolExecutor(m_pool))
{}

void AsioSerialQueue::async(platform::Task task) { asio::post(m_strand, Step{m_pool, std::move(task)}); }

void AsioSerialQueue::dispatch(platform::Task task)
{
    if (m_strand.running_in_this_thread()) {
        async(std::move(task));
        return;
    }
    // The task may drop this queue: the strand goes on with a copy of its own.
    const Strand strand(m_strand);
    asio::dispatch(strand, Step{m_pool, std::move(task)});
}

void AsioSerialQueue::sync(platform::Task task)
{
    if (m_strand.running_in_this_thread()) {
        throw std::logic_error("a task of a serial queue waits for its own queue");
    }
    std::promise<void> promise;
    const auto gone = promise.get_future();
    asio::post(m_strand, AwaitedStep{std::move(promise), {m_pool, std::move(task)}});
    gone.wait();
}

std::shared_ptr<platform::Timer> AsioSerialQueue::makeTimer(platform::TimerSchedule schedule, platform::Task handler)
{
    return std::make_shared<AsioTimer>(m_pool, m_timers, m_strand, schedule, std::move(handler));
}

} // namespace vorrano::asio_platform
