#pragma once

#include "platform/SerialQueue.h"
#include "platform/asio/AsioPool.h"
#include "platform/asio/TimerClock.h"

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace vorrano::asio_platform {

// Lets the thread that waits in sync() go on: when the task has run, or was dropped because the pool has been stopped.
class SyncWaiter;
class SyncSignal {
public:
    SyncSignal() = default;
    explicit SyncSignal(std::shared_ptr<SyncWaiter> waiter);
    SyncSignal(SyncSignal&&) = default;
    SyncSignal& operator=(SyncSignal&&) = default;
    ~SyncSignal();

private:
    std::shared_ptr<SyncWaiter> m_waiter;
};

// The tasks of a serial queue. Lives on until the last task that was submitted has run.
//
// Whoever finds the queue idle takes it: a thread of the pool for async(), the caller itself for inPlaceOrAsync(), for
// syncInPlace(), and for sync() off the main thread. A caller runs its own task only, and before it what
// offMainThread() left to it; what else is there by then goes to the pool.
// Threads: as SerialQueue says.
class SerialTasks : public std::enable_shared_from_this<SerialTasks> {
public:
    SerialTasks(std::shared_ptr<AsioPool> pool, std::shared_ptr<TimerClock> clock, std::thread::id mainThread,
                std::string label);

    void async(platform::Task task);
    void inPlaceOrAsync(platform::Task task);
    void continueOnPool(platform::Task task);
    // std::logic_error when a task of this queue calls it.
    void sync(platform::Task task);
    void syncInPlace(platform::Task task);
    void offMainThread(platform::Task task);
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule, platform::Task handler);

    // The queue object is gone: its timers fire no more.
    void endTimers();

    // The pool has been stopped: drops what waits; from now on tasks are dropped and sync() returns unrun.
    void stop();

private:
    struct Step {
        // In this order: the task is destroyed before its waiter goes on.
        SyncSignal signal;
        platform::Task task;
    };

    using Steps = std::deque<Step>;

    void submit(Step step);
    bool takeIfIdle();
    void runInPlace(Step step);
    void runLeftSteps();
    void seeToLeftSteps();
    void drainOnPool();
    void drain();
    [[nodiscard]] std::optional<Step> nextStep();
    bool deliverTimer(const std::shared_ptr<TimerClock::Entry>& entry);
    [[nodiscard]] bool onMainThread() const { return std::this_thread::get_id() == m_mainThread; }

    const std::shared_ptr<AsioPool> m_pool;
    const std::shared_ptr<TimerClock> m_clock;
    const std::thread::id m_mainThread;
    // For debuggers.
    const std::string m_label;

    std::mutex m_mutex;
    // What offMainThread() left to a background thread: it comes first.
    Steps m_left;
    // What continueOnPool() put before what waits.
    Steps m_next;
    Steps m_waiting;
    // Due when m_left has waited long enough. One that is under way serves whatever is left meanwhile.
    std::shared_ptr<platform::Timer> m_leftTimer;
    bool m_busy = false;
    // The thread that runs a task of the queue now.
    std::thread::id m_runner;
    bool m_timersEnded = false;
    bool m_stopped = false;
};

// The queue as its users hold it.
class AsioSerialQueue final : public platform::SerialQueue {
public:
    explicit AsioSerialQueue(std::shared_ptr<SerialTasks> tasks);
    AsioSerialQueue(const AsioSerialQueue&) = delete;
    AsioSerialQueue& operator=(const AsioSerialQueue&) = delete;
    ~AsioSerialQueue() override;

    void async(platform::Task task) override;
    void inPlaceOrAsync(platform::Task task) override;
    void continueOnPool(platform::Task task) override;
    void sync(platform::Task task) override;
    void syncInPlace(platform::Task task) override;
    void offMainThread(platform::Task task) override;
    [[nodiscard]] std::shared_ptr<platform::Timer> makeTimer(platform::TimerSchedule schedule,
                                                             platform::Task handler) override;

private:
    const std::shared_ptr<SerialTasks> m_tasks;
};

} // namespace vorrano::asio_platform
