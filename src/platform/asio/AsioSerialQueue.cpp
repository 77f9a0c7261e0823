#include "platform/asio/AsioSerialQueue.h"

#include <atomic>
#include <chrono>
#include <stdexcept>
#include <utility>

namespace vorrano::asio_platform {

namespace {

// How long what was left to a background thread waits for one to come by.
constexpr std::chrono::milliseconds kPatience{1};

} // namespace

class SyncWaiter {
public:
    void wait() const { m_done.wait(0, std::memory_order_acquire); }

    void signal()
    {
        m_done.store(1, std::memory_order_release);
        m_done.notify_one();
    }

private:
    std::atomic<int> m_done = 0;
};

SyncSignal::SyncSignal(std::shared_ptr<SyncWaiter> waiter)
    : m_waiter(std::move(waiter))
{}

SyncSignal::~SyncSignal()
{
    if (m_waiter) {
        m_waiter->signal();
    }
}

SerialTasks::SerialTasks(std::shared_ptr<AsioPool> pool, std::shared_ptr<TimerClock> clock, std::thread::id mainThread,
                         std::string label)
    : m_pool(std::move(pool))
    , m_clock(std::move(clock))
    , m_mainThread(mainThread)
    , m_label(std::move(label))
{}

void SerialTasks::async(platform::Task task) { submit({{}, std::move(task)}); }

void SerialTasks::inPlaceOrAsync(platform::Task task)
{
    if (!onMainThread() && takeIfIdle()) {
        runInPlace({{}, std::move(task)});
    } else {
        submit({{}, std::move(task)});
    }
}

void SerialTasks::continueOnPool(platform::Task task)
{
    const std::lock_guard lock(m_mutex);
    m_next.push_back({{}, std::move(task)});
}

void SerialTasks::sync(platform::Task task)
{
    if (!onMainThread() && takeIfIdle()) {
        runInPlace({{}, std::move(task)});
        return;
    }
    {
        const std::lock_guard lock(m_mutex);
        if (m_runner == std::this_thread::get_id()) {
            throw std::logic_error("a task of a serial queue waits for its own queue");
        }
    }
    const auto waiter = std::make_shared<SyncWaiter>();
    submit({SyncSignal(waiter), std::move(task)});
    waiter->wait();
}

void SerialTasks::syncInPlace(platform::Task task)
{
    if (takeIfIdle()) {
        runInPlace({{}, std::move(task)});
    } else {
        sync(std::move(task));
    }
}

void SerialTasks::offMainThread(platform::Task task)
{
    if (!onMainThread()) {
        task();
        return;
    }
    const std::lock_guard lock(m_mutex);
    if (m_stopped) {
        return;
    }
    m_left.push_back({{}, std::move(task)});
    if (!m_leftTimer) {
        m_leftTimer = m_clock->makeTimer({kPatience, {}, kPatience},
                                         [weak = weak_from_this()] {
                                             if (const auto self = weak.lock()) {
                                                 self->seeToLeftSteps();
                                             }
                                         },
                                         {});
        m_leftTimer->start();
    }
}

// On a thread of the pool.
void SerialTasks::seeToLeftSteps()
{
    {
        const std::lock_guard lock(m_mutex);
        m_leftTimer = nullptr;
        if (m_left.empty()) {
            return;
        }
    }
    if (takeIfIdle()) {
        drain();
    } else {
        async([] {});
    }
}

// The queue is the caller's from now on, if it was idle and has nothing that the caller may not run.
bool SerialTasks::takeIfIdle()
{
    const std::lock_guard lock(m_mutex);
    if (m_busy || m_stopped || (onMainThread() && !m_left.empty())) {
        return false;
    }
    m_busy = true;
    m_runner = std::this_thread::get_id();
    return true;
}

void SerialTasks::submit(Step step)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_stopped) {
            return;
        }
        m_waiting.push_back(std::move(step));
        if (std::exchange(m_busy, true)) {
            return;
        }
    }
    drainOnPool();
}

void SerialTasks::runInPlace(Step step)
{
    runLeftSteps();
    m_pool->guarded(step.task);
    {
        const std::lock_guard lock(m_mutex);
        m_runner = {};
        m_busy = !m_next.empty() || !m_waiting.empty();
        if (!m_busy) {
            return;
        }
    }
    drainOnPool();
}

void SerialTasks::runLeftSteps()
{
    Steps left;
    {
        const std::lock_guard lock(m_mutex);
        left.swap(m_left);
    }
    for (const Step& step : left) {
        m_pool->guarded(step.task);
    }
}

void SerialTasks::drainOnPool()
{
    m_pool->post([self = shared_from_this()] { self->drain(); });
}

void SerialTasks::drain()
{
    while (auto step = nextStep()) {
        m_pool->guarded(step->task);
    }
}

std::optional<SerialTasks::Step> SerialTasks::nextStep()
{
    const std::lock_guard lock(m_mutex);
    Steps& steps = !m_left.empty() ? m_left : !m_next.empty() ? m_next : m_waiting;
    if (steps.empty()) {
        m_runner = {};
        m_busy = false;
        return std::nullopt;
    }
    m_runner = std::this_thread::get_id();
    std::optional<Step> step(std::move(steps.front()));
    steps.pop_front();
    return step;
}

std::shared_ptr<platform::Timer> SerialTasks::makeTimer(platform::TimerSchedule schedule, platform::Task handler)
{
    return m_clock->makeTimer(schedule, std::move(handler), [weak = weak_from_this()](const auto& entry) {
        const auto self = weak.lock();
        return self && self->deliverTimer(entry);
    });
}

bool SerialTasks::deliverTimer(const std::shared_ptr<TimerClock::Entry>& entry)
{
    {
        const std::lock_guard lock(m_mutex);
        if (m_timersEnded || m_stopped) {
            return false;
        }
    }
    async([this, entry] {
        {
            const std::lock_guard lock(m_mutex);
            if (m_timersEnded) {
                return;
            }
        }
        m_clock->runTurn(entry);
    });
    return true;
}

void SerialTasks::endTimers()
{
    const std::lock_guard lock(m_mutex);
    m_timersEnded = true;
}

void SerialTasks::stop()
{
    Steps left;
    Steps next;
    Steps waiting;
    const std::lock_guard lock(m_mutex);
    m_stopped = true;
    left.swap(m_left);
    next.swap(m_next);
    waiting.swap(m_waiting);
}

AsioSerialQueue::AsioSerialQueue(std::shared_ptr<SerialTasks> tasks)
    : m_tasks(std::move(tasks))
{}

AsioSerialQueue::~AsioSerialQueue() { m_tasks->endTimers(); }

void AsioSerialQueue::async(platform::Task task) { m_tasks->async(std::move(task)); }
void AsioSerialQueue::continueOnPool(platform::Task task) { m_tasks->continueOnPool(std::move(task)); }

// A task that runs inside these may drop the queue object, which then holds the tasks no more.
void AsioSerialQueue::inPlaceOrAsync(platform::Task task) { std::shared_ptr(m_tasks)->inPlaceOrAsync(std::move(task)); }
void AsioSerialQueue::sync(platform::Task task) { std::shared_ptr(m_tasks)->sync(std::move(task)); }
void AsioSerialQueue::syncInPlace(platform::Task task) { std::shared_ptr(m_tasks)->syncInPlace(std::move(task)); }

void AsioSerialQueue::offMainThread(platform::Task task) { m_tasks->offMainThread(std::move(task)); }

std::shared_ptr<platform::Timer> AsioSerialQueue::makeTimer(platform::TimerSchedule schedule, platform::Task handler)
{
    return m_tasks->makeTimer(schedule, std::move(handler));
}

} // namespace vorrano::asio_platform
